// SPDX-License-Identifier: MIT
#include "app/spell_checker.h"

#include <algorithm>
#include <utility>

#include "app/services.h"
#include "app/word_list.h"
#include "base/utf8.h"
#include "ports/spelling.h"

namespace tessaly::app {

namespace {

/// Some MB; a user who has seen more words begins anew.
constexpr std::size_t mostAnswers = 50'000;

}  // namespace

/// What belongs to the background.
struct SpellChecker::Worker {
    explicit Worker(const Ports& all)
        : load(all.spelling),
          list(all.files, all.changes,
               all.folders.config + "/" + std::string(SpellChecker::wordListName)) {}

    /// Null: there are no dictionaries.
    ports::Spelling* dictionaries() {
        if (!std::exchange(isLoaded, true) && load) {
            spelling = load();
        }
        return spelling.get();
    }

    const ports::SpellingDictionaries load;
    const WordList list;
    std::unique_ptr<ports::Spelling> spelling;
    bool isLoaded = false;
    bool isListRead = false;
};

SpellChecker::SpellChecker(const Ports& ports)
    : _worker(std::make_shared<Worker>(ports)),
      _background(std::string(bundleIdentifier) + ".SpellChecker", ports.executor,
                  ports.mainQueue) {}

SpellChecker::~SpellChecker() = default;

SpellChecker::Verdict SpellChecker::verdict(const std::string& word) const {
    // What is written with small letters may begin a sentence, or stand in a title.
    if (_accepted.contains(word) || _accepted.contains(base::lowerCased(word))) {
        return Verdict::right;
    }
    const auto known = _answers.find(word);
    return known == _answers.end() ? Verdict::unknown
           : known->second         ? Verdict::right
                                   : Verdict::wrong;
}

void SpellChecker::lookUp(std::vector<std::string> words, std::function<void()> done) {
    if (_answers.size() > mostAnswers) {
        _answers.clear();
        _suggestions.clear();
    }
    _background.run([this, worker = _worker, words = std::move(words),
                     done = std::move(done)]() -> Background::Then {
        ports::Spelling* dictionaries = worker->dictionaries();
        std::vector<std::string> own;
        if (!std::exchange(worker->isListRead, true)) {
            own = worker->list.words();
        }
        std::vector<std::pair<std::string, bool>> answers;
        for (const std::string& word : words) {
            answers.emplace_back(word, dictionaries == nullptr || dictionaries->knows(word));
        }
        return [this, done, own = std::move(own), answers = std::move(answers)] {
            _accepted.insert(own.begin(), own.end());
            for (const auto& [word, isRight] : answers) {
                _answers[word] = isRight;
            }
            done();
        };
    });
}

void SpellChecker::suggest(const std::string& word, TakeSuggestions take) {
    if (const auto known = _suggestions.find(word); known != _suggestions.end()) {
        return take(known->second);
    }
    _background.run([this, worker = _worker, word, take = std::move(take)]() -> Background::Then {
        std::vector<std::string> found;
        if (ports::Spelling* dictionaries = worker->dictionaries()) {
            found = dictionaries->suggestions(word);
        }
        found.resize(std::min(found.size(), mostSuggestions));
        return [this, word, take, found = std::move(found)] {
            _suggestions[word] = found;
            take(found);
        };
    });
}

void SpellChecker::ignore(const std::string& word) {
    _accepted.insert(word);
}

void SpellChecker::addWord(const std::string& word,
                           std::function<void(const base::Failure&)> failed) {
    _accepted.insert(word);
    const auto add = [worker = _worker, word, failed = std::move(failed)]() -> Background::Then {
        const auto added = worker->list.add(word);
        if (added) {
            return {};
        }
        return [failed, failure = added.failure()] { failed(failure); };
    };
    _background.run(add, Background::AtEnd::run);
}

}  // namespace tessaly::app
