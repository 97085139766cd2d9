// SPDX-License-Identifier: MIT
#include "cli/json_request.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "base/localisation.h"
#include "base/utf8.h"
#include "cli/malformed.h"

namespace tessaly::cli {

using base::Failure;
using nlohmann::json;

namespace {

const json& nodeOf(const void* node) {
    return *static_cast<const json*>(node);
}

/// How deep brackets are nested. The library writes values by recursion, so that the depth must be
/// known before.
int depthOf(std::string_view text) {
    int depth = 0;
    int deepest = 0;
    bool isInText = false;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char c = text[at];
        if (isInText) {
            at += c == '\\' ? 1 : 0;
            isInText = c != '"';
        } else if (c == '"') {
            isInText = true;
        } else if (c == '[' || c == '{') {
            deepest = std::max(deepest, ++depth);
        } else if (c == ']' || c == '}') {
            --depth;
        }
    }
    return deepest;
}

}  // namespace

struct JsonDocument::Tree {
    json root;
};

JsonDocument::JsonDocument(std::unique_ptr<Tree> tree) : _tree(std::move(tree)) {}
JsonDocument::~JsonDocument() = default;
JsonDocument::JsonDocument(JsonDocument&&) noexcept = default;
JsonDocument& JsonDocument::operator=(JsonDocument&&) noexcept = default;

base::Result<JsonDocument> JsonDocument::read(std::string_view text) {
    if (!base::isUtf8(text)) {
        return malformed(base::tr("the line is not UTF-8"));
    }
    if (depthOf(text) > maxDepth) {
        return malformed(base::tr("the line is nested too deep"));
    }
    try {
        return JsonDocument{std::make_unique<Tree>(Tree{json::parse(text)})};
    } catch (const json::parse_error& error) {
        return malformed(fmt::format(
            fmt::runtime(base::tr("the line is no JSON: trouble at byte {}")), error.byte));
    } catch (const json::exception&) {  // a number that no computer holds
        return malformed(base::tr("the line is no JSON: a number is too large"));
    }
}

JsonValue JsonDocument::root() const {
    return JsonValue{&_tree->root};
}

bool JsonValue::isNull() const {
    return nodeOf(_node).is_null();
}

bool JsonValue::isObject() const {
    return nodeOf(_node).is_object();
}

std::optional<bool> JsonValue::boolean() const {
    const json& node = nodeOf(_node);
    return node.is_boolean() ? std::optional{node.get<bool>()} : std::nullopt;
}

std::optional<std::int64_t> JsonValue::integer() const {
    const json& node = nodeOf(_node);
    const bool fits =
        node.is_number_integer() &&
        (!node.is_number_unsigned() || std::in_range<std::int64_t>(node.get<std::uint64_t>()));
    return fits ? std::optional{node.get<std::int64_t>()} : std::nullopt;
}

std::optional<double> JsonValue::number() const {
    const json& node = nodeOf(_node);
    return node.is_number() ? std::optional{node.get<double>()} : std::nullopt;
}

std::optional<std::string_view> JsonValue::text() const {
    const json& node = nodeOf(_node);
    if (!node.is_string()) {
        return std::nullopt;
    }
    return node.get_ref<const std::string&>();
}

std::optional<std::vector<std::string>> JsonValue::texts() const {
    const json& node = nodeOf(_node);
    const auto isText = [](const json& item) { return item.is_string(); };
    if (!node.is_array() || !std::all_of(node.begin(), node.end(), isText)) {
        return std::nullopt;
    }
    return node.get<std::vector<std::string>>();
}

std::optional<JsonValue> JsonValue::field(std::string_view name) const {
    const json& node = nodeOf(_node);
    const auto found = node.is_object() ? node.find(name) : node.end();
    return found == node.end() ? std::nullopt : std::optional{JsonValue{&*found}};
}

std::vector<std::string> JsonValue::fieldNames() const {
    std::vector<std::string> names;
    const json& node = nodeOf(_node);
    if (node.is_object()) {
        for (const auto& item : node.items()) {
            names.push_back(item.key());
        }
    }
    return names;
}

std::string JsonValue::dumped() const {
    return nodeOf(_node).dump(-1, ' ', true);
}

}  // namespace tessaly::cli
