// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/failure.h"

namespace tessaly::cli {

/// A value in a JSON text; valid as long as its `JsonDocument`. Asked for what it is not, it gives
/// nothing; nothing is converted but a whole number to a fraction.
class JsonValue {
public:
    bool isNull() const;
    bool isObject() const;
    std::optional<bool> boolean() const;
    /// A whole number; nothing for a fraction, "2.0" among them, and past 64 bits.
    std::optional<std::int64_t> integer() const;
    std::optional<double> number() const;
    /// UTF-8, maybe with NUL in it.
    std::optional<std::string_view> text() const;
    /// Nothing also for a list that holds something else than texts.
    std::optional<std::vector<std::string>> texts() const;

    /// The value of a field; nothing where there is no such field.
    std::optional<JsonValue> field(std::string_view name) const;
    /// Of an object, in alphabetical order; of others, none.
    std::vector<std::string> fieldNames() const;

    /// As JSON in one line of ASCII characters.
    std::string dumped() const;

private:
    friend class JsonDocument;
    explicit JsonValue(const void* node) : _node(node) {}

    const void* _node;
};

/// A JSON text, read.
class JsonDocument {
public:
    /// Values may be nested so deep.
    static constexpr int maxDepth = 100;

    /// Failure `malformed`, in words for the user: no JSON, more than one value, not UTF-8, or
    /// nested too deep.
    static base::Result<JsonDocument> read(std::string_view text);

    ~JsonDocument();
    JsonDocument(JsonDocument&&) noexcept;
    JsonDocument& operator=(JsonDocument&&) noexcept;

    JsonValue root() const;

private:
    struct Tree;
    explicit JsonDocument(std::unique_ptr<Tree> tree);

    std::unique_ptr<Tree> _tree;
};

}  // namespace tessaly::cli
