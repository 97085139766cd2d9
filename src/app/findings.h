// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "app/doctor.h"

namespace tessaly::app {

/// Findings of one kind that are told before the rest becomes a number.
inline constexpr std::size_t findingsOfOneKind = 20;

/// Gathers findings in the order in which they are told.
class Findings {
public:
    void add(Finding finding) { _findings.push_back(std::move(finding)); }

    /// Adds many of one kind, ordered by path; those behind the first `findingsOfOneKind` become
    /// one finding that tells how many they are.
    void addKind(std::vector<Finding> kind);

    std::vector<Finding> take() { return std::move(_findings); }

private:
    std::vector<Finding> _findings;
};

}  // namespace tessaly::app
