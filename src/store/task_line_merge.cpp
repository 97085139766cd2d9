// SPDX-License-Identifier: MIT
#include "store/task_line_merge.h"

#include <algorithm>
#include <array>
#include <deque>
#include <map>
#include <utility>
#include <vector>

#include "base/utf8.h"
#include "store/task_line.h"

namespace tessaly::store {

namespace {

/// What came of a field that has one value; nothing when both sides changed it differently.
template <typename Value>
std::optional<Value> mergedValue(const Value& base, const Value& mine, const Value& theirs) {
    if (mine == base || mine == theirs) {
        return theirs;
    }
    return theirs == base ? std::optional(mine) : std::nullopt;
}

/// How often a tag stands in each version.
struct CoreTagCount {
    int inBase = 0;
    int inMine = 0;
    int inTheirs = 0;
    std::string_view family;

    /// Nothing when one side added what the other took out.
    std::optional<int> merged() const {
        if (const auto value = mergedValue(inBase, inMine, inTheirs)) {
            return value;
        }
        if ((inMine > inBase) != (inTheirs > inBase)) {
            return std::nullopt;
        }
        return inMine > inBase ? std::max(inMine, inTheirs) : std::min(inMine, inTheirs);
    }
};
using CoreTagCounts = std::map<std::string_view, CoreTagCount>;

void countTags(const TaskLine& line, int CoreTagCount::*version, CoreTagCounts& counts) {
    for (const TaskTag& tag : line.tags) {
        CoreTagCount& found = counts[tag.core];
        ++(found.*version);
        found.family = tag.family;
    }
}

/// A task has one of each of these: two different ones are two answers to the same question.
constexpr std::array<std::string_view, 3> singleFamilies{">", "@done", "@repeat"};

bool isChangedDifferently(const CoreTagCounts& counts, std::string_view family) {
    bool byMine = false;
    bool byTheirs = false;
    bool differ = false;
    for (const auto& [core, count] : counts) {
        if (count.family == family) {
            byMine = byMine || count.inMine != count.inBase;
            byTheirs = byTheirs || count.inTheirs != count.inBase;
            differ = differ || count.inMine != count.inTheirs;
        }
    }
    return byMine && byTheirs && differ;
}

/// How often each tag is to stand, or may still be taken.
using TagBudget = std::map<std::string_view, int>;

std::optional<TagBudget> mergedTags(const TaskLine& base, const TaskLine& mine,
                                    const TaskLine& theirs) {
    CoreTagCounts counts;
    countTags(base, &CoreTagCount::inBase, counts);
    countTags(mine, &CoreTagCount::inMine, counts);
    countTags(theirs, &CoreTagCount::inTheirs, counts);
    for (const std::string_view family : singleFamilies) {
        if (isChangedDifferently(counts, family)) {
            return std::nullopt;
        }
    }
    TagBudget budget;
    for (const auto& [core, count] : counts) {
        const std::optional<int> merged = count.merged();
        if (!merged) {
            return std::nullopt;
        }
        if (*merged > 0) {
            budget.emplace(core, *merged);
        }
    }
    return budget;
}

TagBudget tagsOf(const TaskLine& line) {
    TagBudget budget;
    for (const TaskTag& tag : line.tags) {
        ++budget[tag.core];
    }
    return budget;
}

/// Takes one tag from the budget; false when none is left.
bool spend(TagBudget& budget, std::string_view core) {
    const auto found = budget.find(core);
    if (found == budget.end() || found->second == 0) {
        return false;
    }
    --found->second;
    return true;
}

/// The tags of `line` that `other` has too, and where they stand.
std::vector<std::pair<std::string_view, std::size_t>> sharedTags(const TaskLine& line,
                                                                 const TaskLine& other) {
    TagBudget shared = tagsOf(other);
    std::vector<std::pair<std::string_view, std::size_t>> found;
    for (const TaskTag& tag : line.tags) {
        if (spend(shared, tag.core)) {
            found.emplace_back(tag.core, tag.place);
        }
    }
    return found;
}

/// Whether the words are the same, and the tags that both have stand at the same places in them.
bool hasSameText(const TaskLine& one, const TaskLine& other) {
    return one.text == other.text && sharedTags(one, other) == sharedTags(other, one);
}

/// Whether at least half of the shorter text is in the other, at its start and end.
bool isSimilar(std::string_view one, std::string_view other) {
    if (one.size() > other.size()) {
        std::swap(one, other);
    }
    const auto same = std::mismatch(one.begin(), one.end(), other.begin()).first;
    const auto prefix = static_cast<std::size_t>(same - one.begin());
    const std::string_view rest = one.substr(prefix);
    const auto end = std::mismatch(rest.rbegin(), rest.rend(), other.rbegin()).first;
    const auto suffix = static_cast<std::size_t>(end - rest.rbegin());
    return 2 * (prefix + suffix) >= one.size();
}

/// Whether nobody put a text in the task's place that is not a version of its own.
bool isOneTask(const TaskLine& base, const TaskLine& mine, const TaskLine& theirs) {
    return isSimilar(base.text, mine.text) && isSimilar(base.text, theirs.text);
}

/// The side whose text stands, with the merged tags in it.
class ContentWriter {
public:
    ContentWriter(const TaskLine& frame, const TaskLine& other)
        : _frame(frame), _other(other), _isSameText(frame.text == other.text) {}

    std::string write(TagBudget budget) {
        choose(std::move(budget));
        auto added = _added.begin();
        for (const TaskTag& tag : _kept) {
            for (; added != _added.end() && placeOf(*added) < tag.place; ++added) {
                insert(*added);
            }
            textUpTo(tag.place);
            _content.append(tag.lead).append(tag.core).append(tag.trail);
        }
        for (; added != _added.end(); ++added) {
            insert(*added);
        }
        textUpTo(_frame.text.size());
        return std::string(base::trimmedEnd(_content));
    }

private:
    /// Which tags of the frame stay and which of the other's come. One that goes gives its place to
    /// one of its family that comes.
    void choose(TagBudget budget) {
        std::vector<bool> stays;
        for (const TaskTag& tag : _frame.tags) {
            stays.push_back(spend(budget, tag.core));
        }
        std::map<std::string_view, std::deque<TaskTag>> comingByFamily;
        TagBudget coming;
        for (const TaskTag& tag : _other.tags) {
            if (spend(budget, tag.core)) {
                comingByFamily[tag.family].push_back(tag);
                ++coming[tag.core];
            }
        }
        for (std::size_t i = 0; i < stays.size(); ++i) {
            TaskTag tag = _frame.tags[i];
            std::deque<TaskTag>& heirs = comingByFamily[tag.family];
            if (!stays[i] && !heirs.empty()) {
                tag.core = heirs.front().core;
                heirs.pop_front();
                spend(coming, tag.core);
                stays[i] = true;
            }
            if (stays[i]) {
                _kept.push_back(tag);
            }
        }
        for (const TaskTag& tag : _other.tags) {
            if (spend(coming, tag.core)) {
                _added.push_back(tag);
            }
        }
    }

    std::size_t placeOf(const TaskTag& added) const {
        return _isSameText ? added.place : _frame.text.size();
    }

    void textUpTo(std::size_t place) {
        _content.append(_frame.text, _written, place - _written);
        _written = place;
    }

    void insert(const TaskTag& tag) {
        textUpTo(placeOf(tag));
        const bool isBehindBlank = base::trimmedEnd(_content).size() != _content.size();
        if (!_content.empty() && !isBehindBlank) {
            _content += tag.lead.empty() && !isGlued(tag) ? " " : tag.lead;
        }
        _content += tag.core;
        if (_written == 0 && !_frame.text.empty()) {
            _content += tag.trail.empty() ? " " : tag.trail;
        }
    }

    /// Whether the tag stands right behind a character of the text, as in "(#tag)".
    bool isGlued(const TaskTag& tag) const {
        return _isSameText && tag.lead.empty() && tag.place != 0 &&
               (_kept.empty() || _kept.back().place < tag.place);
    }

    const TaskLine& _frame;
    const TaskLine& _other;
    bool _isSameText;
    std::vector<TaskTag> _kept;
    std::vector<TaskTag> _added;
    std::string _content;
    std::size_t _written = 0;  // of the frame's text
};

/// The line as it would be read again must be what was meant: a tag may join with its neighbours to
/// something else.
bool readsAs(const std::string& line, std::string_view box, const std::string& text,
             const TagBudget& tags) {
    const std::optional<TaskLine> read = readTaskLine(line);
    return read && read->box == box && read->text == text && tagsOf(*read) == tags;
}

std::optional<std::string> mergeFields(const TaskLine& base, const TaskLine& mine,
                                       const TaskLine& theirs) {
    const bool mineSame = hasSameText(base, mine);
    if (!mineSame && !hasSameText(base, theirs) && !hasSameText(mine, theirs)) {
        return std::nullopt;
    }
    const bool theirsLead = mineSame && !hasSameText(base, theirs);
    const TaskLine& frame = theirsLead ? theirs : mine;
    const auto prefix = mergedValue(base.prefix, mine.prefix, theirs.prefix);
    const auto box = mergedValue(base.box, mine.box, theirs.box);
    const auto tags = mergedTags(base, mine, theirs);
    if (!prefix || !box || !tags) {
        return std::nullopt;
    }
    std::string line(*prefix);
    line += *box;
    line += ContentWriter(frame, theirsLead ? mine : theirs).write(*tags);
    line += mergedValue(base.tail, mine.tail, theirs.tail).value_or(frame.tail);
    return readsAs(line, *box, frame.text, *tags) ? std::optional(std::move(line)) : std::nullopt;
}

}  // namespace

std::optional<std::string> mergeTaskLine(std::string_view base, std::string_view mine,
                                         std::string_view theirs) {
    const std::optional<TaskLine> baseTask = readTaskLine(base);
    const std::optional<TaskLine> mineTask = readTaskLine(mine);
    const std::optional<TaskLine> theirTask = readTaskLine(theirs);
    if (!baseTask || !mineTask || !theirTask) {
        return std::nullopt;
    }
    if (const auto whole = mergedValue(base, mine, theirs)) {
        return std::string(*whole);
    }
    if (!isOneTask(*baseTask, *mineTask, *theirTask)) {
        return std::nullopt;
    }
    return mergeFields(*baseTask, *mineTask, *theirTask);
}

std::optional<std::string> taskText(std::string_view line) {
    std::optional<TaskLine> task = readTaskLine(line);
    if (!task || task->text.empty()) {
        return std::nullopt;
    }
    return std::move(task->text);
}

}  // namespace tessaly::store
