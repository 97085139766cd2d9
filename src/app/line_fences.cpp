// SPDX-License-Identifier: MIT
#include "app/line_fences.h"

#include <algorithm>
#include <cstddef>

#include "base/utf8.h"

namespace tessaly::app {

namespace {

constexpr std::size_t leastSigns = 3;

FenceState fenceOfSign(char sign) {
    return sign == '`'   ? FenceState::backticks
           : sign == '~' ? FenceState::tildes
                         : FenceState::outside;
}

}  // namespace

FenceState fenceOpenedBy(std::string_view line) {
    const std::string_view text = base::trimmedStart(line);
    const FenceState opened = text.empty() ? FenceState::outside : fenceOfSign(text.front());
    if (opened == FenceState::outside) {
        return opened;
    }
    const std::size_t run = std::min(text.find_first_not_of(text.front()), text.size());
    const bool isCode =
        opened == FenceState::backticks && text.find('`', run) != std::string_view::npos;
    return run < leastSigns || isCode ? FenceState::outside : opened;
}

bool closesFence(std::string_view line, FenceState open) {
    const std::string_view text = base::trimmed(line);
    return text.size() >= leastSigns && fenceOfSign(text.front()) == open &&
           text.find_first_not_of(text.front()) == std::string_view::npos;
}

bool isRule(std::string_view line) {
    const std::string_view text = base::trimmed(line);
    if (text.empty() || std::string_view("-*_").find(text.front()) == std::string_view::npos) {
        return false;
    }
    const char signsAndBlanks[] = {text.front(), ' ', '\t', '\0'};
    return text.find_first_not_of(signsAndBlanks) == std::string_view::npos &&
           std::count(text.begin(), text.end(), text.front()) >=
               static_cast<std::ptrdiff_t>(leastSigns);
}

bool isTableRow(std::string_view line) {
    const std::string_view text = base::trimmedStart(line);
    return text.starts_with('|') && text.find('|', 1) != std::string_view::npos;
}

FenceState fenceAfter(std::string_view line, FenceState before) {
    if (before == FenceState::outside) {
        return fenceOpenedBy(line);
    }
    return closesFence(line, before) ? FenceState::outside : before;
}

}  // namespace tessaly::app
