// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <random>
#include <string>
#include <vector>

#include "search/brute_force.h"

namespace tessaly::tests {

/// Notes and queries that searches easily get wrong, the same for the same seed: several scripts in
/// composed and decomposed forms and in both cases, characters that change their length in lower
/// case, tags, dates, task lines of all kinds, line ends of all kinds, control characters.
class HostileNotes {
public:
    explicit HostileNotes(unsigned seed) : _random(seed) {}

    /// About half of them of days, and half in ASCII; by filename, then by day.
    std::vector<PlainNote> notes(std::size_t count);
    /// What is asked of such notes: mostly of parts of them.
    Asked asked(const std::vector<PlainNote>& notes);

    std::size_t below(std::size_t bound);
    bool oneIn(std::size_t count) { return below(count) == 0; }

private:
    std::string word();
    std::string line();
    std::string text();
    PlainNote note(std::size_t index);
    base::Day day();

    std::string partOf(const std::vector<PlainNote>& notes);
    search::SearchQuery query(const std::vector<PlainNote>& notes);
    search::FilterConditions filter();
    search::LineKinds kinds();
    search::DayRange days();

    std::mt19937 _random;
    bool _isPlain = false;  // words of ASCII alone, as most notes need no folding
};

}  // namespace tessaly::tests
