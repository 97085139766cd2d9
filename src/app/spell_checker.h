// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "app/background.h"
#include "base/failure.h"

namespace tessaly::app {

struct Ports;

/// Which words are spelt right, by the dictionaries of the user's languages and the user's own word
/// list. Dictionaries are loaded with the first question, and asked in the background, one question
/// after the other; answers are kept. Main thread.
class SpellChecker {
public:
    /// What `ports` tells of outlives it.
    explicit SpellChecker(const Ports& ports);
    ~SpellChecker();

    enum class Verdict { unknown, right, wrong };
    /// What is known so far, at once.
    Verdict verdict(const std::string& word) const;

    /// Has the dictionaries asked for words; `done` is told when `verdict` knows them.
    void lookUp(std::vector<std::string> words, std::function<void()> done);

    static constexpr std::size_t mostSuggestions = 6;
    /// What may have been meant, the likeliest first; at once where it was asked before.
    using TakeSuggestions = std::function<void(const std::vector<std::string>& suggestions)>;
    void suggest(const std::string& word, TakeSuggestions take);

    /// Counts as right until the program ends, however its letters' case is raised.
    void ignore(const std::string& word);
    /// Likewise, for good: the word goes into the user's word list. Told is only a failure.
    void addWord(const std::string& word, std::function<void(const base::Failure&)> failed);

    /// Of the user's own words, in the folder of settings.
    static constexpr std::string_view wordListName = "words.txt";

private:
    struct Worker;

    std::unordered_map<std::string, bool> _answers;
    std::unordered_set<std::string> _accepted;
    std::unordered_map<std::string, std::vector<std::string>> _suggestions;
    std::shared_ptr<Worker> _worker;
    Background _background;  ///< the last member: what it runs tells the others
};

}  // namespace tessaly::app
