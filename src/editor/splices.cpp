// SPDX-License-Identifier: MIT
#include "editor/splices.h"

#include <algorithm>
#include <utility>

#include "base/utf8.h"

namespace tessaly::editor {

std::size_t locationAfter(std::string_view text, const Splices& splices, std::size_t at,
                          Side side) {
    std::size_t location = base::utf16Length(text.substr(0, at));
    for (const Splice& splice : splices) {
        if (splice.at > at || (splice.at == at && side == Side::before)) {
            break;
        }
        const std::size_t gone = std::min(splice.length, at - splice.at);
        location += base::utf16Length(splice.with);
        location -= base::utf16Length(text.substr(splice.at, gone));
    }
    return location;
}

Edit editOf(std::string_view text, const Splices& splices, base::TextRange selection) {
    const std::size_t start = splices.front().at;
    std::size_t end = start;
    std::string replacement;
    for (const Splice& splice : splices) {
        replacement += text.substr(end, splice.at - end);
        replacement += splice.with;
        end = splice.at + splice.length;
    }
    return {{base::utf16Length(text.substr(0, start)),
             base::utf16Length(text.substr(start, end - start))},
            std::move(replacement),
            selection};
}

}  // namespace tessaly::editor
