// SPDX-License-Identifier: MIT
#include "base/temporary_name.h"

#include <algorithm>
#include <cstddef>
#include <random>

namespace tessaly::base {

namespace {

constexpr std::size_t maxNameBytes = 255;
constexpr std::size_t randomLength = 8;
constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyz0123456789";
constexpr std::string_view prefix = ".~";
constexpr std::size_t suffixLength = 1 + randomLength + 1;  // ".RANDOM~"

std::string randomText() {
    thread_local std::random_device device;
    std::uniform_int_distribution<std::size_t> any(0, letters.size() - 1);
    std::string text(randomLength, '\0');
    std::generate(text.begin(), text.end(), [&] { return letters[any(device)]; });
    return text;
}

/// At most `bytes` bytes of `text`, without half a character, which some file systems refuse.
std::string_view cutName(std::string_view text, std::size_t bytes) {
    if (text.size() <= bytes) {
        return text;
    }
    while (bytes > 0 && (static_cast<unsigned char>(text[bytes]) & 0xC0) == 0x80) {
        --bytes;
    }
    return text.substr(0, bytes);
}

bool isSuffix(std::string_view text) {
    return text.front() == '.' && text.back() == '~' &&
           text.substr(1, randomLength).find_first_not_of(letters) == std::string_view::npos;
}

}  // namespace

std::string temporaryName(std::string_view name) {
    const std::string_view beside = nameOfTemporary(name).value_or(name);
    const std::size_t room = maxNameBytes - prefix.size() - suffixLength;
    std::string temporary(prefix);
    temporary += cutName(beside, room);
    return temporary + "." + randomText() + "~";
}

std::optional<std::string_view> nameOfTemporary(std::string_view temporaryName) {
    if (temporaryName.size() <= prefix.size() + suffixLength ||
        !temporaryName.starts_with(prefix) ||
        !isSuffix(temporaryName.substr(temporaryName.size() - suffixLength))) {
        return std::nullopt;
    }
    temporaryName.remove_prefix(prefix.size());
    temporaryName.remove_suffix(suffixLength);
    return temporaryName;
}

}  // namespace tessaly::base
