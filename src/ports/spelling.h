// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tessaly::ports {

/// The dictionaries of the languages that a user writes in. Words are UTF-8, without blanks. One
/// thread at a time; each call may take some milliseconds, and `suggestions` a quarter of a second.
class Spelling {
public:
    virtual ~Spelling() = default;

    /// Whether one of the dictionaries has the word, or none could: none is of its script.
    virtual bool knows(std::string_view word) = 0;

    /// What may have been meant by a word that is not known, the likeliest first.
    virtual std::vector<std::string> suggestions(std::string_view word) = 0;
};

/// Loads the dictionaries, which takes some 100 ms each. Null: there are none. Any thread.
using SpellingDictionaries = std::function<std::unique_ptr<Spelling>()>;

}  // namespace tessaly::ports
