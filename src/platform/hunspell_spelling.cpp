// SPDX-License-Identifier: MIT
#include "platform/hunspell_spelling.h"

#include <algorithm>
#include <array>
#include <exception>
#include <set>
#include <utility>

#include <hunspell/hunspell.hxx>
#include <unicode/uscript.h>

#include "base/normalise.h"
#include "base/utf8.h"
#include "platform/text_encoding.h"

namespace tessaly::platform {

namespace {

constexpr std::string_view curledApostrophe = "\u2019";

/// Dictionaries have the plain apostrophe, if any, and composed letters.
std::string asInDictionaries(std::string_view word) {
    std::string plain = base::nfc(word);
    for (auto at = plain.find(curledApostrophe); at != std::string::npos;
         at = plain.find(curledApostrophe, at)) {
        plain.replace(at, curledApostrophe.size(), "'");
    }
    return plain;
}

/// The scripts that a language is written in, by ICU's numbers.
std::set<int> scriptsOf(const std::string& language) {
    std::array<UScriptCode, 8> codes{};
    UErrorCode status = U_ZERO_ERROR;
    const int count = uscript_getCode(language.c_str(), codes.data(), codes.size(), &status);
    return U_SUCCESS(status) ? std::set<int>(codes.begin(), codes.begin() + count)
                             : std::set<int>();
}

class HunspellDictionary {
public:
    explicit HunspellDictionary(const DictionaryFiles& files)
        : _hunspell(files.affixes.c_str(), files.words.c_str()),
          _encoding(_hunspell.get_dict_encoding()),
          _scripts(scriptsOf(files.language)) {}

    bool isUsable() const { return _encoding.isKnown(); }

    bool isOfScript(int script) const { return _scripts.empty() || _scripts.contains(script); }

    bool has(const std::string& word) {
        const auto bytes = _encoding.fromUtf8(word);
        return bytes && _hunspell.spell(*bytes);
    }

    std::vector<std::string> suggest(const std::string& word) {
        std::vector<std::string> found;
        if (const auto bytes = _encoding.fromUtf8(word)) {
            for (const std::string& each : _hunspell.suggest(*bytes)) {
                found.push_back(_encoding.toUtf8(each));
            }
        }
        return found;
    }

private:
    Hunspell _hunspell;
    const TextEncoding _encoding;
    const std::set<int> _scripts;
};

/// Null: it cannot be used.
std::unique_ptr<HunspellDictionary> openDictionary(const DictionaryFiles& files) {
    try {
        auto dictionary = std::make_unique<HunspellDictionary>(files);
        return dictionary->isUsable() ? std::move(dictionary) : nullptr;
    } catch (const std::exception&) {
        return nullptr;
    }
}

int scriptOf(std::string_view word) {
    UErrorCode status = U_ZERO_ERROR;
    return word.empty()
               ? USCRIPT_UNKNOWN
               : uscript_getScript(static_cast<UChar32>(base::codePointAt(word, 0).value), &status);
}

class HunspellSpelling final : public ports::Spelling {
public:
    using Dictionaries = std::vector<std::unique_ptr<HunspellDictionary>>;
    explicit HunspellSpelling(Dictionaries dictionaries) : _dictionaries(std::move(dictionaries)) {}

    bool knows(std::string_view word) override {
        const std::string plain = asInDictionaries(word);
        const int script = scriptOf(plain);
        bool isOfNone = true;
        for (const auto& dictionary : _dictionaries) {
            if (dictionary->isOfScript(script)) {
                isOfNone = false;
                if (dictionary->has(plain)) {
                    return true;
                }
            }
        }
        return isOfNone;
    }

    /// The best of each dictionary before the second best of any.
    std::vector<std::string> suggestions(std::string_view word) override {
        const std::string plain = asInDictionaries(word);
        std::vector<std::vector<std::string>> all;
        std::size_t longest = 0;
        for (const auto& dictionary : _dictionaries) {
            all.push_back(dictionary->suggest(plain));
            longest = std::max(longest, all.back().size());
        }
        std::vector<std::string> found;
        for (std::size_t i = 0; i < longest; ++i) {
            for (const auto& ofOne : all) {
                if (i < ofOne.size() &&
                    std::find(found.begin(), found.end(), ofOne[i]) == found.end()) {
                    found.push_back(ofOne[i]);
                }
            }
        }
        return found;
    }

private:
    const Dictionaries _dictionaries;
};

}  // namespace

ports::SpellingDictionaries hunspellSpelling(DictionaryPlaces places) {
    return [places = std::move(places)]() -> std::unique_ptr<ports::Spelling> {
        HunspellSpelling::Dictionaries dictionaries;
        for (const DictionaryFiles& files : findDictionaries(places)) {
            if (auto dictionary = openDictionary(files)) {
                dictionaries.push_back(std::move(dictionary));
            }
        }
        if (dictionaries.empty()) {
            return nullptr;
        }
        return std::make_unique<HunspellSpelling>(std::move(dictionaries));
    };
}

}  // namespace tessaly::platform
