// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tessaly::bench {

/// Notes held in memory, one behind the other, each ended by a line break.
struct Corpus {
    std::string text;
    std::vector<std::size_t> starts;  ///< byte at which each note begins, and the end of the text
};

/// Reads every note below `folder` whose bytes are UTF-8, but none in a folder called "Nasty", in
/// the order of their paths.
Corpus readCorpus(const std::string& folder);

/// The first notes of a corpus that together have at least `bytes`.
Corpus beginningOf(const Corpus& corpus, std::size_t bytes);

/// The lines of a text without their line breaks; no empty one behind the last break.
std::vector<std::string_view> linesOf(std::string_view text);

}  // namespace tessaly::bench
