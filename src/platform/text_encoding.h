// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

struct UConverter;  // ICU's

namespace tessaly::platform {

/// The encoding of somebody else's file. Not for two threads at once.
class TextEncoding {
public:
    /// As dictionaries name it: "UTF-8", "ISO8859-1", "microsoft-cp1251".
    explicit TextEncoding(std::string_view name);

    /// Whether it is one that we know.
    bool isKnown() const { return _isUtf8 || _converter != nullptr; }
    /// Nothing: it has no bytes for this text.
    std::optional<std::string> fromUtf8(std::string_view text) const;
    /// Bytes that mean nothing read as U+FFFD.
    std::string toUtf8(std::string_view bytes) const;

private:
    bool _isUtf8;
    std::unique_ptr<UConverter, void (*)(UConverter*)> _converter;
};

}  // namespace tessaly::platform
