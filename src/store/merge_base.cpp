// SPDX-License-Identifier: MIT
#include "store/merge_base.h"

#include <algorithm>
#include <deque>
#include <functional>
#include <unordered_map>
#include <utility>
#include <vector>

#include "store/line_diff.h"
#include "store/line_ends.h"

namespace tessaly::store {

namespace {

// A recurring word, a tick or a rule is soon written on two devices; a line of this length hardly
// ever, and three of them only where a template is filled in.
constexpr std::size_t longLine = 12;
constexpr std::size_t certain = 3;

/// A text's lines, and how often each occurs.
struct CountedText {
    std::string plain;
    std::vector<std::string_view> lines;
    std::unordered_map<std::string_view, std::size_t> counts;

    explicit CountedText(std::string_view text)
        : plain(plainText(text)), lines(linesOfText(plain)) {
        if (lines.back().empty()) {
            lines.pop_back();
        }
        for (const std::string_view line : lines) {
            ++counts[line];
        }
    }
    CountedText(const CountedText&) = delete;
    CountedText& operator=(const CountedText&) = delete;

    bool isSame(const CountedText& other) const { return lines == other.lines; }
    std::size_t count(std::string_view line) const {
        const auto found = counts.find(line);
        return found == counts.end() ? 0 : found->second;
    }
};

using Texts = std::deque<CountedText>;  // stays in place: the lines point into each text

Texts textsOf(std::span<const std::string_view> bytes) {
    Texts texts;
    for (const std::string_view text : bytes) {
        texts.emplace_back(text);
    }
    return texts;
}

/// How many of the earlier texts may be the one that the versions were made from.
std::size_t endOfCandidates(const Texts& earlier, const Texts& versions) {
    const auto isVersion = [&](const CountedText& text) {
        return std::any_of(versions.begin(), versions.end(),
                           [&](const CountedText& version) { return version.isSame(text); });
    };
    const auto last = std::find_if_not(earlier.rbegin(), earlier.rend(), isVersion);
    return static_cast<std::size_t>(earlier.rend() - last);
}

/// Where the long lines that all versions have first occur among the earlier texts.
std::vector<std::size_t> birthsOfSharedLines(const Texts& earlier, const Texts& versions) {
    std::vector<std::size_t> births;
    for (const auto& [line, count] : versions.front().counts) {
        const auto hasLine = [text = line](const CountedText& other) {
            return other.count(text) > 0;
        };
        if (line.size() < longLine || !std::all_of(versions.begin(), versions.end(), hasLine)) {
            continue;
        }
        const auto first = std::find_if(earlier.begin(), earlier.end(), hasLine);
        if (first != earlier.end()) {
            births.push_back(static_cast<std::size_t>(first - earlier.begin()));
        }
    }
    return births;
}

/// The oldest text that the versions may have been made from. A line is born on one device, so
/// that all versions were made from the text before its birth, or from a later one.
std::size_t firstCandidate(const Texts& earlier, const Texts& versions, std::size_t end) {
    std::vector<std::size_t> births = birthsOfSharedLines(earlier, versions);
    if (births.size() < certain) {
        return 0;
    }
    const auto deciding = births.begin() + (certain - 1);
    std::nth_element(births.begin(), deciding, births.end(), std::greater<>());
    return *deciding == 0 ? 0 : std::min(*deciding - 1, end - 1);
}

/// How often a line is in the base at most.
std::size_t certainCount(std::string_view line, std::span<const CountedText* const> candidates,
                         const Texts& versions) {
    std::size_t least = candidates.front()->count(line);
    for (const CountedText* const text : candidates) {
        least = std::min(least, text->count(line));
    }
    if (versions.size() == 2) {
        return least;
    }
    // Three and more are joined one after the other: of a line that one has twice and the next has
    // not, the one that is left would count as the base's for the third.
    const bool isRepeated =
        std::any_of(versions.begin(), versions.end(),
                    [&](const CountedText& version) { return version.count(line) > 1; });
    return isRepeated ? 0 : std::min<std::size_t>(least, 1);
}

std::string certainLines(std::span<const CountedText* const> candidates, const Texts& versions) {
    std::string text;
    std::unordered_map<std::string_view, std::size_t> taken;
    for (const std::string_view line : candidates.front()->lines) {
        if (taken[line]++ < certainCount(line, candidates, versions)) {
            text.append(line).append(1, '\n');
        }
    }
    return text;
}

}  // namespace

std::optional<MergeBase> mergeBase(std::span<const std::string_view> earlier,
                                   std::span<const std::string_view> versions) {
    const Texts known = textsOf(earlier);
    const Texts joined = textsOf(versions);
    const std::size_t end = joined.empty() ? 0 : endOfCandidates(known, joined);
    if (end == 0) {
        return std::nullopt;
    }
    const std::size_t first = firstCandidate(known, joined, end);
    std::vector<const CountedText*> candidates;
    for (std::size_t i = first; i < end; ++i) {
        candidates.push_back(&known[i]);
    }
    std::string text = certainLines(candidates, joined);
    return text.empty() ? std::nullopt : std::optional(MergeBase{first, std::move(text)});
}

}  // namespace tessaly::store
