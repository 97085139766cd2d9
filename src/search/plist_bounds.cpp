// SPDX-License-Identifier: MIT
#include "search/plist_bounds.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>

namespace tessaly::search {
namespace {

constexpr std::size_t trailerBytes = 32;
constexpr int deepest = 64;
// An object takes about so much memory beside its bytes; shared ones are read as often as they are
// named.
constexpr std::uint64_t bytesOfObject = 64;
constexpr std::uint64_t mostBytes = 8ULL * maxPlistBytes;

/// Walks a binary property list as a reader does that copies an object wherever it is named.
class BinaryWalk {
public:
    explicit BinaryWalk(std::string_view bytes) : _bytes(bytes) {}

    bool isModest() {
        const std::size_t trailer = _bytes.size() - trailerBytes;
        const auto top = number(trailer + 16, 8);
        const auto table = number(trailer + 24, 8);
        _offsetSize = static_cast<unsigned char>(_bytes[trailer + 6]);
        _referenceSize = static_cast<unsigned char>(_bytes[trailer + 7]);
        if (!isSize(_offsetSize) || !isSize(_referenceSize) || *table > trailer) {
            return false;
        }
        _offsets = *table;
        return visit(*top, 0);
    }

private:
    struct Content {
        std::uint64_t start = 0;
        std::uint64_t count = 0;
    };

    static bool isSize(std::size_t size) { return size >= 1 && size <= 8; }

    std::optional<std::uint64_t> number(std::uint64_t at, std::size_t size) const {
        if (at > _bytes.size() || _bytes.size() - at < size) {
            return std::nullopt;
        }
        std::uint64_t value = 0;
        for (const char byte : _bytes.substr(at, size)) {
            value = value << 8U | static_cast<unsigned char>(byte);
        }
        return value;
    }

    bool spend(std::uint64_t bytes) {
        const bool isEnough = bytes <= _left;
        _left -= isEnough ? bytes : _left;
        return isEnough;
    }

    // The content behind a marker, whose count may stand in a number of its own.
    std::optional<Content> contentAt(std::uint64_t at, std::uint64_t marker) const {
        if ((marker & 0xFU) != 0xFU) {
            return Content{at + 1, marker & 0xFU};
        }
        const auto size = number(at + 1, 1);
        if (!size || (*size & 0xFU) > 3) {
            return std::nullopt;
        }
        const std::size_t width = std::size_t{1} << (*size & 0xFU);
        const auto count = number(at + 2, width);
        return count ? std::optional(Content{at + 2 + width, *count}) : std::nullopt;
    }

    bool visit(std::uint64_t object, int depth) {
        if (depth > deepest || object > _bytes.size()) {
            return false;
        }
        const auto at = number(_offsets + object * _offsetSize, _offsetSize);
        const auto marker = at ? number(*at, 1) : std::nullopt;
        const auto content = marker ? contentAt(*at, *marker) : std::nullopt;
        if (!content || content->count > _bytes.size() || !spend(bytesOfObject)) {
            return false;
        }
        switch (*marker >> 4U) {
            case 0x4: return spend(content->count);
            case 0x5: return spend(content->count) && isText(*content, 1);
            case 0x6: return spend(2 * content->count) && isText(*content, 2);
            case 0xA:
            case 0xC: return visitAll(*content, depth);
            case 0xD: return visitAll({content->start, 2 * content->count}, depth);
            default: return true;
        }
    }

    // The library ends a text at NUL, and loses half pairs.
    bool isText(const Content& units, std::size_t size) const {
        bool isWithinPair = false;
        for (std::uint64_t i = 0; i < units.count; ++i) {
            const auto unit = number(units.start + size * i, size);
            const bool isLow = unit && (*unit & 0xFC00U) == 0xDC00U;
            if (!unit || *unit == 0 || isLow != isWithinPair) {
                return false;
            }
            isWithinPair = (*unit & 0xFC00U) == 0xD800U;
        }
        return !isWithinPair;
    }

    bool visitAll(const Content& references, int depth) {
        for (std::uint64_t i = 0; i < references.count; ++i) {
            const auto object = number(references.start + i * _referenceSize, _referenceSize);
            if (!object || !visit(*object, depth + 1)) {
                return false;
            }
        }
        return true;
    }

    std::string_view _bytes;
    std::size_t _offsetSize = 0;
    std::size_t _referenceSize = 0;
    std::uint64_t _offsets = 0;
    std::uint64_t _left = mostBytes;
};

/// How often something may stand in XML.
struct XmlLimit {
    std::string_view text;
    std::size_t most;
};
// The library's time grows with the square of the first two; the others nest.
constexpr std::array xmlLimits{
    XmlLimit{"&", 1000},
    XmlLimit{"<", 20000},
    XmlLimit{"<array", 1000},
    XmlLimit{"<dict", 1000},
};

bool isWithin(const XmlLimit& limit, std::string_view bytes) {
    std::size_t count = 0;
    for (std::size_t at = bytes.find(limit.text); at != bytes.npos && count <= limit.most;
         at = bytes.find(limit.text, at + 1)) {
        ++count;
    }
    return count <= limit.most;
}

}  // namespace

bool isModestBinaryPlist(std::string_view bytes) {
    return bytes.size() <= maxPlistBytes && bytes.size() >= binaryMagic.size() + trailerBytes &&
           BinaryWalk(bytes).isModest();
}

bool isModestXmlPlist(std::string_view bytes) {
    return bytes.size() <= maxPlistBytes &&
           std::all_of(xmlLimits.begin(), xmlLimits.end(),
                       [&](const XmlLimit& limit) { return isWithin(limit, bytes); });
}

}  // namespace tessaly::search
