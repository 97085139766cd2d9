// SPDX-License-Identifier: MIT
#include "cli/json_line.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "base/utf8.h"
#include "cli/safe_text.h"

namespace tessaly::cli {

using nlohmann::ordered_json;

struct JsonObject::Value {
    ordered_json object = ordered_json::object();
};

JsonObject::JsonObject() : _value(std::make_unique<Value>()) {}
JsonObject::~JsonObject() = default;
JsonObject::JsonObject(JsonObject&&) noexcept = default;
JsonObject& JsonObject::operator=(JsonObject&&) noexcept = default;

JsonObject& JsonObject::add(std::string_view key, std::string_view text) {
    _value->object[std::string{key}] = text;
    return *this;
}

JsonObject& JsonObject::add(std::string_view key, double value) {
    _value->object[std::string{key}] = value;
    return *this;
}

JsonObject& JsonObject::add(std::string_view key, JsonObject object) {
    _value->object[std::string{key}] = std::move(object._value->object);
    return *this;
}

JsonObject& JsonObject::add(std::string_view key, const std::vector<std::string>& texts) {
    _value->object[std::string{key}] = texts;
    return *this;
}

JsonObject& JsonObject::add(std::string_view key, std::vector<JsonObject> objects) {
    ordered_json array = ordered_json::array();
    for (JsonObject& object : objects) {
        array.push_back(std::move(object._value->object));
    }
    _value->object[std::string{key}] = std::move(array);
    return *this;
}

JsonObject& JsonObject::addBool(std::string_view key, bool value) {
    _value->object[std::string{key}] = value;
    return *this;
}

JsonObject& JsonObject::addNumber(std::string_view key, std::int64_t value) {
    _value->object[std::string{key}] = value;
    return *this;
}

JsonObject& JsonObject::addNull(std::string_view key) {
    _value->object[std::string{key}] = nullptr;
    return *this;
}

std::string JsonObject::text() const {
    const std::string dumped =
        _value->object.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
    std::string safe;
    safe.reserve(dumped.size());
    for (std::size_t at = 0; at < dumped.size();) {
        const base::CodePoint point = base::codePointAt(dumped, at);
        if (isUnsafe(point.value)) {
            safe += fmt::format("\\u{:04x}", static_cast<unsigned>(point.value));
        } else {
            safe.append(dumped, at, point.size);
        }
        at += point.size;
    }
    return safe;
}

}  // namespace tessaly::cli
