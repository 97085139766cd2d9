// SPDX-License-Identifier: MIT
#include "cli/rpc_params.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "base/localisation.h"
#include "cli/rpc_times.h"
#include "settings/nearest_name.h"

namespace tessaly::cli {

using base::Failure;
using base::tr;

namespace {

constexpr base::Day someDay{std::chrono::year{2000}, std::chrono::month{1}, std::chrono::day{1}};

template <class... Arguments>
std::string filled(const std::string& text, const Arguments&... arguments) {
    return fmt::format(fmt::runtime(text), arguments...);
}

std::string joined(std::span<const std::string_view> names) {
    return fmt::format("{}", fmt::join(names, ", "));
}

std::string unknownParam(std::string_view name, std::span<const std::string_view> known) {
    const auto nearest = settings::nearestName(name, known);
    if (!nearest.empty()) {
        return filled(tr("there is no such param; did you mean “{}”?"), nearest);
    }
    return filled(tr("there is no such param; there are: {}"), joined(known));
}

}  // namespace

RpcParams::RpcParams(std::optional<JsonValue> params, std::span<const std::string_view> known,
                     ports::Clock& clock)
    : _params(params), _clock(clock) {
    if (_params && !_params->isObject()) {
        refuse("params", tr("not an object"));
        return;
    }
    for (const std::string& name : _params ? _params->fieldNames() : std::vector<std::string>{}) {
        if (std::find(known.begin(), known.end(), name) == known.end()) {
            refuse(name, unknownParam(name, known));
        }
    }
}

void RpcParams::refuse(Failure failure) {
    if (!_failure) {
        _failure = std::move(failure);
    }
}

void RpcParams::refuse(std::string_view name, const std::string& why) {
    refuse({Failure::Kind::malformed, fmt::format("{}: {}", name, why)});
}

void RpcParams::refuseName(std::string_view name, std::string_view text,
                           std::span<const std::string_view> names) {
    const auto nearest = settings::nearestName(text, names);
    if (nearest.empty()) {
        return refuse(name, filled(tr("must be one of: {}"), joined(names)));
    }
    refuse(name, filled(tr("there is no “{}”; did you mean “{}”?"), text, nearest));
}

std::optional<JsonValue> RpcParams::find(std::string_view name) const {
    const auto value = _params ? _params->field(name) : std::nullopt;
    return value && !value->isNull() ? value : std::nullopt;
}

std::optional<JsonValue> RpcParams::get(std::string_view name) {
    const auto value = find(name);
    if (!value) {
        refuse(name, tr("this param is missing"));
    }
    return value;
}

bool RpcParams::has(std::string_view name) const {
    return find(name).has_value();
}

void RpcParams::refuseTogether(std::string_view one, std::string_view other) {
    if (has(one) && has(other)) {
        refuse(other, filled(tr("not together with “{}”"), one));
    }
}

std::string_view RpcParams::text(std::string_view name) {
    const auto value = get(name);
    const auto text = value ? value->text() : std::nullopt;
    if (value && !text) {
        refuse(name, tr("not a text"));
    } else if (text && text->size() > maxTextBytes) {
        refuse(name, tr("too long"));
        return {};
    }
    return text.value_or(std::string_view{});
}

std::optional<std::string_view> RpcParams::textIfAny(std::string_view name) {
    return has(name) ? std::optional{text(name)} : std::nullopt;
}

std::string_view RpcParams::asLine(std::string_view name, std::string_view text) {
    if (text.find('\n') != text.npos) {
        refuse(name, tr("more than one line"));
        return {};
    }
    if (text.size() > maxLineBytes) {
        refuse(name, tr("too long"));
        return {};
    }
    return text;
}

std::string_view RpcParams::line(std::string_view name) {
    return asLine(name, text(name));
}

std::vector<std::string> RpcParams::lines(std::string_view name) {
    std::vector<std::string> lines = texts(name);
    for (std::string& line : lines) {
        line.resize(asLine(name, line).size());
    }
    return lines;
}

std::vector<std::string> RpcParams::texts(std::string_view name) {
    const auto value = get(name);
    auto texts = value ? value->texts() : std::nullopt;
    if (value && !texts) {
        refuse(name, tr("not a list of texts"));
    }
    return std::move(texts).value_or(std::vector<std::string>{});
}

bool RpcParams::boolean(std::string_view name, bool otherwise) {
    const auto value = find(name);
    const auto boolean = value ? value->boolean() : otherwise;
    if (!boolean) {
        refuse(name, tr("neither true nor false"));
    }
    return boolean.value_or(otherwise);
}

int RpcParams::integer(std::string_view name, int lowest, int highest) {
    const auto value = get(name);
    const auto integer = value ? value->integer() : std::nullopt;
    if (integer && *integer >= lowest && *integer <= highest) {
        return static_cast<int>(*integer);
    }
    if (value) {
        refuse(name, filled(tr("not a whole number from {} to {}"), lowest, highest));
    }
    return lowest;
}

int RpcParams::integer(std::string_view name, int lowest, int highest, int otherwise) {
    return has(name) ? integer(name, lowest, highest) : otherwise;
}

std::size_t RpcParams::unit(std::string_view name, const JsonValue& range, std::string_view field) {
    const auto value = range.field(field);
    const auto unit = value ? value->integer() : std::nullopt;
    // Far above any text, and so small that a sum of two is a number still.
    constexpr std::int64_t highest = std::int64_t{1} << 53U;
    if (unit && *unit >= 0 && *unit <= highest) {
        return static_cast<std::size_t>(*unit);
    }
    refuse(name, tr("not {\"location\", \"length\"} with whole numbers from 0 on"));
    return 0;
}

base::TextRange RpcParams::range(std::string_view name) {
    const auto value = get(name);
    return value ? base::TextRange{unit(name, *value, "location"), unit(name, *value, "length")}
                 : base::TextRange{};
}

base::Day RpcParams::day(std::string_view name) {
    const auto text = get(name) ? std::optional{this->text(name)} : std::nullopt;
    const auto day = text ? base::dayFromTagText(*text) : std::nullopt;
    if (text && !day) {
        refuse(name, tr("not a day as 2019-12-31"));
    }
    return day.value_or(someDay);
}

std::optional<base::Day> RpcParams::dayIfAny(std::string_view name) {
    return has(name) ? std::optional{day(name)} : std::nullopt;
}

base::LocalTime RpcParams::time(std::string_view name) {
    const auto text = get(name) ? std::optional{this->text(name)} : std::nullopt;
    const auto time = text ? timeFromText(*text) : std::nullopt;
    if (text && !time) {
        refuse(name, tr("not a time as 2019-12-31T14:07"));
    }
    return time.value_or(base::LocalTime{someDay});
}

RpcSettings& RpcParams::settings() {
    if (_settings) {
        return *_settings;
    }
    _settings.emplace();
    const auto object = find("settings");
    if (object && !object->isObject()) {
        refuse("settings", tr("not an object"));
    } else if (const auto read = object ? _settings->read(*object) : base::Done{}; !read) {
        refuse("settings", read.failure().description);
    }
    return *_settings;
}

base::LocalTime RpcParams::now() {
    return has("now") ? time("now") : _clock.local(_clock.now());
}

base::HourCycle RpcParams::hourCycle() {
    const auto clock = find("clock");
    const auto hours = clock ? clock->integer() : 24;
    if (hours != 12 && hours != 24) {
        refuse("clock", tr("neither 12 nor 24"));
    }
    return hours == 12 ? base::HourCycle::twelve : base::HourCycle::twentyFour;
}

}  // namespace tessaly::cli
