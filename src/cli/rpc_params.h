// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/day.h"
#include "base/enum_names.h"
#include "base/failure.h"
#include "base/locale_formats.h"
#include "base/text_range.h"
#include "cli/json_request.h"
#include "cli/rpc_settings.h"
#include "ports/clock.h"

namespace tessaly::cli {

/// The params of one request, each read as the type that the method wants. One that is missing or
/// of another type is kept as the failure, the first one, and reads as some harmless value: the
/// method runs to its end, and what it has worked out is thrown away.
class RpcParams {
public:
    /// `params`: nothing reads as an object without fields. `clock` tells the
    /// time when the request does not. Fields other than `known` are a failure.
    RpcParams(std::optional<JsonValue> params, std::span<const std::string_view> known,
              ports::Clock& clock);

    /// In words for the user, with the param's name.
    const std::optional<base::Failure>& failure() const { return _failure; }
    /// What a method refuses for a reason of its own.
    void refuse(base::Failure failure);
    void refuse(std::string_view name, const std::string& why);

    bool has(std::string_view name) const;
    void refuseTogether(std::string_view one, std::string_view other);

    /// The longest text and line that are taken: what is made of them is much larger.
    static constexpr std::size_t maxTextBytes = std::size_t{16} << 20U;
    static constexpr std::size_t maxLineBytes = std::size_t{1} << 20U;

    std::string_view text(std::string_view name);
    std::optional<std::string_view> textIfAny(std::string_view name);
    /// A text without "\n".
    std::string_view line(std::string_view name);
    std::vector<std::string> texts(std::string_view name);
    /// Texts without "\n".
    std::vector<std::string> lines(std::string_view name);
    bool boolean(std::string_view name, bool otherwise);
    int integer(std::string_view name, int lowest, int highest);
    int integer(std::string_view name, int lowest, int highest, int otherwise);
    /// {"location", "length"}
    base::TextRange range(std::string_view name);
    /// "2019-05-21"
    base::Day day(std::string_view name);
    std::optional<base::Day> dayIfAny(std::string_view name);
    /// "2019-05-21T14:07", maybe with seconds.
    base::LocalTime time(std::string_view name);

    template <class Enum>
    Enum choice(std::string_view name);
    template <class Enum>
    Enum choice(std::string_view name, Enum otherwise) {
        return has(name) ? choice<Enum>(name) : otherwise;
    }

    /// The params "settings", "now" and "clock".
    RpcSettings& settings();
    base::LocalTime now();
    base::HourCycle hourCycle();

private:
    std::optional<JsonValue> find(std::string_view name) const;
    /// As `find`; a missing one is a failure.
    std::optional<JsonValue> get(std::string_view name);
    std::size_t unit(std::string_view name, const JsonValue& range, std::string_view field);
    std::string_view asLine(std::string_view name, std::string_view text);
    void refuseName(std::string_view name, std::string_view text,
                    std::span<const std::string_view> names);

    std::optional<JsonValue> _params;
    ports::Clock& _clock;
    std::optional<base::Failure> _failure;
    std::optional<RpcSettings> _settings;
};

template <class Enum>
Enum RpcParams::choice(std::string_view name) {
    const auto word = text(name);
    const auto value = base::fromRawValue<Enum>(word);
    if (value) {
        return *value;
    }
    std::vector<std::string_view> names;
    for (const auto& row : base::EnumNames<Enum>::rows) {
        names.push_back(row.text);
    }
    refuseName(name, word, names);
    return base::EnumNames<Enum>::rows[0].value;
}

}  // namespace tessaly::cli
