// SPDX-License-Identifier: MIT
#include "tasks/line_edit.h"

#include <algorithm>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "base/localisation.h"
#include "tasks/line_matching.h"
#include "tasks/text_lines.h"

namespace tessaly::tasks {
namespace {

using base::Failure;
using Kind = LineEdit::Kind;
using Edits = std::span<const LineEdit>;
using Indices = std::vector<std::size_t>;

bool addsLine(const LineEdit& edit) {
    return !removesLine(edit);
}

LinePlaces placesOf(Edits edits, const TextLines& lines) {
    LinePlaces places;
    for (const LineEdit& edit : edits) {
        places.want(edit.before);
        places.want(edit.after);
    }
    places.fill(lines);
    return places;
}

Failure notFound(const LineEdit& edit, const LinePlaces& places) {
    return {Failure::Kind::changed,
            edit.before + ": " +
                (places.of(edit.before).empty()
                     ? base::tr("this line is no longer there")
                     : base::tr("several lines read so, and none where it stood"))};
}

// The lines that stay, as they will read.
TextLines keptLines(const TextLines& lines, const LineMatching& matching, Edits edits) {
    TextLines kept;
    kept.reserve(lines.size());
    for (std::size_t at = 0; at < lines.size(); ++at) {
        const std::size_t edit = matching.editOf(at);
        if (edit == nowhere) {
            kept.push_back(lines[at]);
        } else if (edits[edit].kind == Kind::replace) {
            kept.push_back({edits[edit].after, lines[at].end, edit});
        }
    }
    return kept;
}

/// Inserts that follow each other, and how many of the lines that stay stand before them.
struct Block {
    Indices edits;
    std::size_t slot = 0;
};

std::vector<Block> blocksOf(Edits edits) {
    Indices inserts;
    for (std::size_t at = 0; at < edits.size(); ++at) {
        if (edits[at].kind == Kind::insert) {
            inserts.push_back(at);
        }
    }
    std::stable_sort(inserts.begin(), inserts.end(), [&](std::size_t a, std::size_t b) {
        return edits[a].newIndex < edits[b].newIndex;
    });
    std::vector<Block> blocks;
    for (std::size_t count = 0; count < inserts.size(); ++count) {
        const std::size_t place = edits[inserts[count]].newIndex;
        const std::size_t slot = place - std::min(place, count);
        if (blocks.empty() || blocks.back().slot < slot) {
            blocks.push_back({{}, slot});
        }
        blocks.back().edits.push_back(inserts[count]);
    }
    return blocks;
}

bool standsBehind(const TextLines& kept, std::size_t slot, std::string_view anchor) {
    return slot <= kept.size() && (slot == 0 ? anchor.empty() : kept[slot - 1].text == anchor);
}

// Puts the blocks where their neighbours are. An empty line is no neighbour to go by.
void findSlots(std::vector<Block>& blocks, const TextLines& kept, Edits edits) {
    LinePlaces places;
    std::vector<Block*> lost;
    for (Block& block : blocks) {
        const std::string_view anchor = edits[block.edits.front()].anchor;
        if (!standsBehind(kept, block.slot, anchor) && !anchor.empty()) {
            places.want(anchor);
            lost.push_back(&block);
        }
    }
    if (!lost.empty()) {
        places.fill(kept);
    }
    for (Block* const block : lost) {
        const Indices& found = places.of(edits[block->edits.front()].anchor);
        block->slot = found.size() == 1 ? found.front() + 1 : block->slot;
    }
    for (Block& block : blocks) {
        block.slot = std::min(block.slot, kept.size());
    }
    std::stable_sort(blocks.begin(), blocks.end(),
                     [](const Block& a, const Block& b) { return a.slot < b.slot; });
}

TextLines allLines(const TextLines& kept, Edits edits) {
    std::vector<Block> blocks = blocksOf(edits);
    findSlots(blocks, kept, edits);
    TextLines all;
    all.reserve(kept.size() + edits.size());
    auto block = blocks.begin();
    for (std::size_t slot = 0; slot <= kept.size(); ++slot) {
        for (; block != blocks.end() && block->slot == slot; ++block) {
            for (const std::size_t edit : block->edits) {
                all.push_back({edits[edit].after, {}, edit});
            }
        }
        if (slot < kept.size()) {
            all.push_back(kept[slot]);
        }
    }
    for (std::size_t at = 0; at < edits.size(); ++at) {
        if (edits[at].kind == Kind::append) {
            all.push_back({edits[at].after, {}, at});
        }
    }
    return all;
}

/// Whether lines stand behind each other in a text.
class Neighbours {
public:
    explicit Neighbours(const TextLines& lines) {
        std::string_view anchor;
        for (const TextLine& line : lines) {
            _pairs.insert(pairOf(anchor, line.text));
            anchor = line.text;
        }
    }

    bool has(std::string_view anchor, std::string_view line) const {
        return _pairs.count(pairOf(anchor, line)) > 0;
    }

private:
    static std::string pairOf(std::string_view anchor, std::string_view line) {
        return std::string(anchor).append("\n").append(line);
    }

    std::unordered_set<std::string> _pairs;
};

// Lines that only moved within the text leave the numbers as they are.
bool seemMoved(const TextLines& lines, Edits edits) {
    const Neighbours neighbours(lines);
    std::size_t atNewPlace = 0;
    std::size_t atOldPlace = 0;
    for (const LineEdit& edit : edits) {
        if (removesLine(edit)) {
            atOldPlace += neighbours.has(edit.anchor, edit.before) ? 1 : 0;
        } else {
            atNewPlace += neighbours.has(edit.anchor, edit.after) ? 1 : 0;
        }
    }
    return atNewPlace > atOldPlace;
}

// By how many lines of each text the edits change a text.
std::unordered_map<std::string_view, std::ptrdiff_t> differences(Edits edits) {
    std::unordered_map<std::string_view, std::ptrdiff_t> difference;
    for (const LineEdit& edit : edits) {
        if (takesLine(edit)) {
            --difference[edit.before];
        }
        if (addsLine(edit)) {
            ++difference[edit.after];
        }
    }
    return difference;
}

bool isBlank(std::string_view line) {
    return line.find_first_not_of(" \t\r") == line.npos;
}

// Whether there are more of the lines of which the edits make more, or fewer of those of which they
// make fewer; nothing when there are no such lines. Blank lines are anybody's.
std::optional<bool> hasChanged(const LinePlaces& places, Edits edits,
                               bool (&makesSo)(const LineEdit&), std::ptrdiff_t sign) {
    const auto difference = differences(edits);
    std::optional<bool> result;
    for (const LineEdit& edit : edits) {
        const std::string& line = addsLine(edit) ? edit.after : edit.before;
        if (!makesSo(edit) || isBlank(line) || difference.at(line) * sign <= 0) {
            continue;
        }
        const auto now = static_cast<std::ptrdiff_t>(places.of(line).size());
        const auto before = static_cast<std::ptrdiff_t>(edit.alike);
        result = result.value_or(false) || (now - before) * sign > 0;
    }
    return result;
}

}  // namespace

base::Result<EditedLines> withEdits(std::string_view text, Edits edits, Strictness strictness) {
    const TextLines lines = linesIn(text);
    const LinePlaces places = placesOf(edits, lines);
    const LineMatching matching(edits, lines, places);
    std::vector<LineEdit> made(edits.begin(), edits.end());
    for (std::size_t at = 0; at < edits.size(); ++at) {
        LineEdit& edit = made[at];
        edit.alike = places.of(addsLine(edit) ? edit.after : edit.before).size();
        edit.index = matching.lineOf(at);
        if (takesLine(edit) && edit.index == nowhere && strictness == Strictness::allOrNothing) {
            return notFound(edit, places);
        }
        if (takesLine(edit) && edit.index != nowhere) {
            edit.anchor = anchorOf(lines, edit.index);
        }
    }
    const TextLines all = allLines(keptLines(lines, matching, edits), edits);
    for (std::size_t at = 0; at < all.size(); ++at) {
        if (all[at].edit != nowhere) {
            made[all[at].edit].newIndex = at;
            made[all[at].edit].anchor = anchorOf(all, at);
        }
    }
    std::erase_if(made,
                  [](const LineEdit& edit) { return takesLine(edit) && edit.index == nowhere; });
    for (LineEdit& edit : made) {
        edit.index = takesLine(edit) ? edit.index : 0;
    }
    return EditedLines{joinedLines(all, text), std::move(made)};
}

std::vector<LineEdit> inverse(Edits edits) {
    std::vector<LineEdit> back;
    back.reserve(edits.size());
    for (const LineEdit& edit : edits) {
        const Kind kind = edit.kind == Kind::replace ? Kind::replace
                          : removesLine(edit)        ? Kind::insert
                                                     : Kind::remove;
        back.push_back({kind, edit.newIndex, edit.index, edit.after, edit.before, edit.anchor, 0});
    }
    return back;
}

bool seemMade(std::string_view text, Edits edits) {
    const TextLines lines = linesIn(text);
    const LinePlaces places = placesOf(edits, lines);
    if (const auto more = hasChanged(places, edits, addsLine, 1)) {
        return *more;
    }
    if (const auto fewer = hasChanged(places, edits, removesLine, -1)) {
        return *fewer;
    }
    return seemMoved(lines, edits);
}

}  // namespace tessaly::tasks
