// SPDX-License-Identifier: MIT
#include "app/candidate_lines.h"

#include <algorithm>
#include <array>

#include "base/utf8.h"

namespace tessaly::app {
namespace {

/// A character beyond ASCII that folding makes an ASCII one of.
struct Disguise {
    char letter;
    std::string_view character;
};

// The Greek question mark, the capital I with a dot, the Kelvin sign and the Greek grave accent;
// there are no others. Folding brings no two ASCII characters together that were apart.
constexpr std::array<Disguise, 4> disguises{
    {{';', "\u037E"}, {'i', "\u0130"}, {'k', "\u212A"}, {'`', "\u1FEF"}}};

constexpr std::size_t none = std::string_view::npos;

/// Goes down a text from one line of interest to the next.
class LinePicker {
public:
    explicit LinePicker(std::string_view text) : _text(text) {}

    /// Takes the line that `place` lies in; places come in order. Returns where the next begins.
    std::size_t take(std::size_t place, CandidateLines::Lines& lines) {
        const std::size_t before = place == 0 ? none : _text.rfind('\n', place - 1);
        const std::size_t start = before == none ? 0 : before + 1;
        const std::size_t end = std::min(_text.find('\n', place), _text.size());
        const std::string_view between = _text.substr(_counted, start - _counted);
        _index += static_cast<std::size_t>(std::count(between.begin(), between.end(), '\n'));
        _counted = start;
        if (!lines.indexes.empty()) {
            lines.text += '\n';
        } else if (start > 0) {
            // Only what a text begins with is a byte-order mark.
            lines.text += '\n';
            lines.indexes.push_back(0);
        }
        lines.text.append(_text.substr(start, end - start));
        lines.indexes.push_back(_index);
        return end + 1;
    }

private:
    const std::string_view _text;
    std::size_t _counted = 0;  // a line's start
    std::size_t _index = 0;    // of that line
};

}  // namespace

CandidateLines::CandidateLines(const search::NoteMatcher& matcher) : _matcher(matcher) {
    const std::string& asked = matcher.candidate().text();
    _canBeTold = !asked.empty() && base::isAscii(asked) && asked.find('\n') == asked.npos;
    for (const Disguise& disguise : disguises) {
        if (asked.find(disguise.letter) != asked.npos) {
            _disguises.push_back(disguise.character);
        }
    }
}

bool CandidateLines::areNoneIn(std::string_view bytes) const {
    return !_matcher.candidate().isIn(bytes) &&
           std::none_of(_disguises.begin(), _disguises.end(),
                        [&](std::string_view character) { return bytes.find(character) != none; });
}

CandidateLines::Lines CandidateLines::of(std::string_view text) const {
    std::vector<std::size_t> next(1 + _disguises.size(), 0);
    const auto findFrom = [&](std::size_t from) {
        for (std::size_t i = 0; i < next.size(); ++i) {
            if (next[i] != none && (from == 0 || next[i] < from)) {
                next[i] = i == 0 ? _matcher.candidate().find(text, from)
                                 : text.find(_disguises[i - 1], from);
            }
        }
        return *std::min_element(next.begin(), next.end());
    };
    Lines lines;
    LinePicker picker(text);
    for (std::size_t place = findFrom(0); place != none && place < text.size();) {
        const std::size_t end = picker.take(place, lines);
        place = end < text.size() ? findFrom(end) : none;
    }
    return lines;
}

}  // namespace tessaly::app
