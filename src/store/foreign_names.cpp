// SPDX-License-Identifier: MIT
#include "store/foreign_names.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <set>
#include <span>
#include <utility>

#include "base/normalise.h"
#include "base/regex.h"
#include "base/temporary_name.h"
#include "base/utf8.h"
#include "store/conflict_patterns.h"

namespace tessaly::store {
namespace {

struct Ending {
    std::string_view text;
    NameKind kind;
};

constexpr std::array endings{
    Ending{"~", NameKind::backup},
    Ending{".bak", NameKind::backup},
    Ending{".kate-swp", NameKind::backup},
    Ending{".sbak", NameKind::backup},
    Ending{".swp", NameKind::backup},
    Ending{".!sync", NameKind::temporary},
    Ending{".crdownload", NameKind::temporary},
    Ending{".filepart", NameKind::temporary},
    Ending{".part", NameKind::temporary},
    Ending{".partial", NameKind::temporary},
    Ending{".tmp", NameKind::temporary},
    Ending{".nextcloud", NameKind::placeholder},
    Ending{".owncloud", NameKind::placeholder},
};

// What an editor writes to learn whether it may write in a folder.
constexpr std::string_view probe = "4913";

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isTemporaryByItsStart(std::string_view name) {
    constexpr std::string_view ofSyncthing = "~syncthing~";
    constexpr std::string_view ofOffice = "~$";
    if (name.starts_with(ofOffice)) {
        // A sum of money begins a note: "~$100 a month.txt".
        return name.size() > ofOffice.size() && !isDigit(name[ofOffice.size()]);
    }
    return name.starts_with(ofSyncthing);
}

bool isBetweenHashes(std::string_view name) {
    return name.size() > 2 && name.front() == '#' && name.back() == '#';
}

/// A name taken apart around its last mark. The views are into the name.
struct MarkedName {
    const ConflictPattern* pattern;
    std::string_view stem;
    std::string_view device;
    std::string_view extension;

    ConflictName conflict() const {
        return {std::string(stem).append(extension), std::string(device), pattern->deviceOf,
                pattern->client};
    }
};

std::string_view bytesIn(std::string_view name, const std::optional<base::TextRange>& range) {
    if (!range) {
        return {};
    }
    const std::size_t start = base::byteOffset(name, range->location);
    return name.substr(start, base::byteOffset(name, range->end()) - start);
}

std::optional<MarkedName> matched(std::size_t index, std::string_view name) {
    const ConflictPattern& pattern = conflictPatterns()[index];
    if (name.find(pattern.hint) == name.npos) {
        return std::nullopt;
    }
    const auto match = compiledConflictPattern(index).find(base::toUtf16(name));
    if (!match) {
        return std::nullopt;
    }
    // The whole, the stem, perhaps a device, perhaps an extension.
    std::span groups = std::span(match->groups).subspan(1);
    MarkedName marked{&pattern, bytesIn(name, groups.front()), {}, {}};
    groups = groups.subspan(1);
    if (pattern.place == ConflictPattern::Place::beforeExtension) {
        marked.extension = bytesIn(name, groups.back());
        groups = groups.first(groups.size() - 1);
    }
    if (!groups.empty()) {
        marked.device = bytesIn(name, groups.front());
    }
    return marked;
}

// The mark furthest to the right leaves the longest stem.
std::optional<MarkedName> lastMark(std::string_view name) {
    std::optional<MarkedName> last;
    if (!mayBeConflictName(name)) {
        return last;
    }
    for (std::size_t index = 0; index < conflictPatterns().size(); ++index) {
        const auto marked = matched(index, name);
        if (marked && (!last || marked->stem.size() > last->stem.size())) {
            last = marked;
        }
    }
    return last;
}

// The same mark when its device begins one divider earlier; nothing when it cannot.
std::optional<MarkedName> withLongerDevice(MarkedName marked) {
    const char divider = marked.pattern->divider;
    const std::size_t at = divider == '\0' ? std::string_view::npos : marked.stem.rfind(divider);
    if (at == std::string_view::npos || at == 0) {
        return std::nullopt;
    }
    const char* const deviceEnd = marked.device.data() + marked.device.size();
    const char* const deviceStart = marked.stem.data() + at + 1;
    marked.device = {deviceStart, static_cast<std::size_t>(deviceEnd - deviceStart)};
    marked.stem = marked.stem.substr(0, at);
    return marked;
}

/// One search for the note that a conflict copy is a version of.
class OriginalSearch {
public:
    explicit OriginalSearch(const std::function<bool(std::string_view)>& exists)
        : _exists(exists) {}

    std::optional<ConflictName> find(std::string_view name) {
        for (auto marked = lastMark(name); marked; marked = withLongerDevice(*marked)) {
            ConflictName conflict = marked->conflict();
            // Many devices and marks can be read in many ways that end in the same few originals.
            if (!_seen.insert(conflict.original).second) {
                continue;
            }
            if (auto inner = find(conflict.original)) {
                conflict.original = std::move(inner->original);
                return conflict;
            }
            if (auto known = knownAs(conflict.original)) {
                conflict.original = *std::move(known);
                return conflict;
            }
        }
        return std::nullopt;
    }

private:
    std::optional<std::string> knownAs(const std::string& original) const {
        for (std::string spelling : {original, base::nfc(original)}) {
            if (_exists(spelling)) {
                return spelling;
            }
        }
        return std::nullopt;
    }

    const std::function<bool(std::string_view)>& _exists;
    std::set<std::string> _seen;
};

}  // namespace

NameKind nameKind(std::string_view name) {
    if (name.starts_with('.')) {
        return base::nameOfTemporary(name) ? NameKind::temporary : NameKind::hidden;
    }
    if (isTemporaryByItsStart(name)) {
        return NameKind::temporary;
    }
    if (isBetweenHashes(name) || name == probe) {
        return NameKind::backup;
    }
    const auto ending = std::find_if(endings.begin(), endings.end(), [&](const Ending& row) {
        return name.size() > row.text.size() && name.ends_with(row.text);
    });
    return ending == endings.end() ? NameKind::ordinary : ending->kind;
}

std::optional<std::string_view> nameOfPlaceholder(std::string_view name) {
    if (nameKind(name) != NameKind::placeholder) {
        return std::nullopt;
    }
    return name.substr(0, name.rfind('.'));
}

std::optional<ConflictName> conflictName(std::string_view name) {
    const auto marked = lastMark(name);
    return marked ? std::optional(marked->conflict()) : std::nullopt;
}

std::optional<ConflictName> conflictCopyOf(
    std::string_view name, const std::function<bool(std::string_view name)>& exists) {
    return OriginalSearch(exists).find(name);
}

}  // namespace tessaly::store
