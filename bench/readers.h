// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <memory>

#include "corpus.h"

namespace tessaly::bench {

/// What reading a text found: readers that answer the same question must agree on it.
struct Counts {
    std::size_t tasksAndLists = 0;
    std::size_t headingsAndQuotes = 0;
    std::size_t hashtags = 0;
    std::size_t mentions = 0;
    std::size_t dates = 0;  ///< schedule tags, back-links and plain dates
    std::size_t doneTags = 0;
};

/// A way to read a corpus. What it needs beforehand (compiled patterns, another encoding) is made
/// when it is created and is not part of `read`.
class Reader {
public:
    virtual ~Reader() = default;
    virtual Counts read() = 0;
};

/// Our scanner, over the whole text at once. The corpus outlives the reader, here and below.
std::unique_ptr<Reader> makeTessalyReader(const Corpus& corpus);

/// ICU's engine with the grammar's own patterns, line by line over UTF-16.
std::unique_ptr<Reader> makeIcuReader(const Corpus& corpus);

/// PCRE2's just-in-time compiler with the same patterns, line by line over UTF-8. `[:punct:]` is
/// written `\p{P}`, since there it would take in ASCII symbols too. One difference stays: its `\s`
/// also takes U+180E, which is no white space any more.
std::unique_ptr<Reader> makePcre2Reader(const Corpus& corpus);

/// A CommonMark parser whose callbacks do nothing, note by note: another question, so no counts.
std::unique_ptr<Reader> makeMd4cReader(const Corpus& corpus);

}  // namespace tessaly::bench
