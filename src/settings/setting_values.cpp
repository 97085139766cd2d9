// SPDX-License-Identifier: MIT
#include "settings/setting_values.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <vector>

#include <fmt/format.h>

#include "base/localisation.h"
#include "base/sort_type.h"
#include "base/todo_character.h"
#include "base/utf8.h"
#include "base/weekday.h"
#include "settings/list_text.h"

namespace tessaly::settings {

namespace {

using MaybeValue = std::optional<SettingValue>;

struct BooleanText {
    std::string_view text;
    bool value;
};
/// The first two are the ones that are written.
constexpr std::array<BooleanText, 8> booleanTexts{{{"on", true},
                                                   {"off", false},
                                                   {"true", true},
                                                   {"false", false},
                                                   {"yes", true},
                                                   {"no", false},
                                                   {"1", true},
                                                   {"0", false}}};

bool isInRange(const SettingRow& row, double value) {
    return std::isfinite(value) && value >= row.lowest && value <= row.highest;
}

bool isPlainText(std::string_view text) {
    return base::isUtf8(text) && text.find_first_of(std::string_view("\0\n\r", 3)) == text.npos;
}

MaybeValue booleanFromText(std::string_view text) {
    for (const BooleanText& row : booleanTexts) {
        if (row.text == text) {
            return row.value;
        }
    }
    return std::nullopt;
}

template <class Number>
MaybeValue numberFromText(std::string_view text) {
    Number value{};
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    return error == std::errc{} && stop == end ? MaybeValue(value) : std::nullopt;
}

MaybeValue plainFromText(std::string_view text) {
    return std::string(text);
}

MaybeValue listFromText(std::string_view text) {
    auto items = itemsFromText(text);
    return items ? MaybeValue(std::move(*items)) : std::nullopt;
}

template <class Type>
MaybeValue ofType(const SettingRow&, const SettingValue& stored) {
    return std::holds_alternative<Type>(stored) ? MaybeValue(stored) : std::nullopt;
}

MaybeValue acceptedInteger(const SettingRow& row, const SettingValue& stored) {
    const auto* value = std::get_if<std::int64_t>(&stored);
    return value != nullptr && isInRange(row, static_cast<double>(*value)) ? MaybeValue(*value)
                                                                           : std::nullopt;
}

MaybeValue acceptedNumber(const SettingRow& row, const SettingValue& stored) {
    const auto* whole = std::get_if<std::int64_t>(&stored);
    const auto* fraction = std::get_if<double>(&stored);
    if (whole == nullptr && fraction == nullptr) {
        return std::nullopt;
    }
    const double value = whole != nullptr ? static_cast<double>(*whole) : *fraction;
    return isInRange(row, value) ? MaybeValue(value) : std::nullopt;
}

MaybeValue acceptedText(const SettingRow& row, const SettingValue& stored) {
    const auto* text = std::get_if<std::string>(&stored);
    const bool fits =
        text != nullptr && isPlainText(*text) && isInRange(row, static_cast<double>(text->size()));
    return fits ? MaybeValue(*text) : std::nullopt;
}

MaybeValue acceptedFolder(const SettingRow& row, const SettingValue& stored) {
    const auto path = acceptedText(row, stored);
    if (!path) {
        return std::nullopt;
    }
    const auto& text = std::get<std::string>(*path);
    const bool isPath = text.empty() || text == "~" || text.starts_with("~/") || text[0] == '/';
    return isPath ? path : std::nullopt;
}

template <class Enum>
MaybeValue acceptedName(const SettingRow&, const SettingValue& stored) {
    const auto* name = std::get_if<std::string>(&stored);
    return name != nullptr && base::fromRawValue<Enum>(*name) ? MaybeValue(*name) : std::nullopt;
}

std::string booleanWords(const SettingRow&) {
    return fmt::format("{}, {}", booleanTexts[0].text, booleanTexts[1].text);
}

std::string rangeWords(const SettingRow& row) {
    return fmt::format("{} … {}", row.lowest, row.highest);
}

std::string textWords(const SettingRow& row) {
    return row.lowest > 0 ? base::tr("a text of one line, not empty")
                          : base::tr("a text of one line");
}

std::string folderWords(const SettingRow&) {
    return base::tr("a folder, from / or ~/ on; empty for none");
}

std::string listWords(const SettingRow&) {
    return base::tr("texts separated by commas");
}

template <class Enum>
std::string nameWords(const SettingRow&) {
    std::string words;
    for (const auto& row : base::EnumNames<Enum>::rows) {
        words += (words.empty() ? "" : ", ") + std::string(row.text);
    }
    return words;
}

/// All that tells one type of settings from another.
struct TypeRow {
    SettingType type;
    MaybeValue (*fromText)(std::string_view text);
    MaybeValue (*accepted)(const SettingRow& row, const SettingValue& stored);
    std::string (*allowed)(const SettingRow& row);
};

constexpr std::array<TypeRow, 9> types{{
    {SettingType::boolean, booleanFromText, ofType<bool>, booleanWords},
    {SettingType::integer, numberFromText<std::int64_t>, acceptedInteger, rangeWords},
    {SettingType::number, numberFromText<double>, acceptedNumber, rangeWords},
    {SettingType::text, plainFromText, acceptedText, textWords},
    {SettingType::folder, plainFromText, acceptedFolder, folderWords},
    {SettingType::textList, listFromText, ofType<std::vector<std::string>>, listWords},
    {SettingType::dayOfWeek, plainFromText, acceptedName<base::DayOfWeek>,
     nameWords<base::DayOfWeek>},
    {SettingType::todoCharacter, plainFromText, acceptedName<base::TodoCharacter>,
     nameWords<base::TodoCharacter>},
    {SettingType::sortType, plainFromText, acceptedName<base::SortType>, nameWords<base::SortType>},
}};

constexpr bool typesAreInOrder() {
    for (std::size_t i = 0; i < types.size(); ++i) {
        if (types[i].type != static_cast<SettingType>(i)) {
            return false;
        }
    }
    return true;
}
static_assert(typesAreInOrder());

const TypeRow& typeOf(const SettingRow& row) {
    return types[static_cast<std::size_t>(row.type)];
}

struct ToText {
    std::string operator()(bool value) const {
        return std::string(booleanTexts[value ? 0 : 1].text);
    }
    std::string operator()(std::int64_t value) const { return fmt::format("{}", value); }
    std::string operator()(double value) const { return fmt::format("{}", value); }
    std::string operator()(const std::string& value) const { return value; }
    std::string operator()(const std::vector<std::string>& value) const {
        return textOfItems(value);
    }
};

}  // namespace

MaybeValue acceptedValue(const SettingRow& row, const SettingValue& stored) {
    return typeOf(row).accepted(row, stored);
}

MaybeValue valueFromText(const SettingRow& row, std::string_view text) {
    const auto value = typeOf(row).fromText(text);
    return value ? acceptedValue(row, *value) : std::nullopt;
}

std::string textOf(const SettingValue& value) {
    return std::visit(ToText{}, value);
}

std::string allowedValues(const SettingRow& row) {
    return typeOf(row).allowed(row);
}

}  // namespace tessaly::settings
