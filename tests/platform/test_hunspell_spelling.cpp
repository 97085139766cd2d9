// SPDX-License-Identifier: MIT
#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <doctest/doctest.h>

#include "platform/hunspell_spelling.h"
#include "support/environment.h"
#include "support/temp_folder.h"

using namespace tessaly;
using platform::DictionaryPlaces;
using tests::Environment;
using tests::TempFolder;

namespace {

/// A dictionary of words that are bytes of its encoding.
void writeDictionary(const TempFolder& folder, const std::string& name, std::string_view encoding,
                     const std::vector<std::string>& words) {
    folder.write(name + ".aff", "SET " + std::string(encoding) + "\nTRY aeinor\n");
    std::string list = std::to_string(words.size()) + "\n";
    for (const std::string& word : words) {
        list += word + "\n";
    }
    folder.write(name + ".dic", list);
}

std::string namesOf(const DictionaryPlaces& places) {
    std::string names;
    for (const auto& files : platform::findDictionaries(places)) {
        names += (names.empty() ? "" : " ") + files.language;
    }
    return names;
}

}  // namespace

TEST_CASE("each language has the dictionary of its country, or the likeliest") {
    const TempFolder folder;
    for (const char* name : {"en_GB", "en_US", "en_ZA", "de_AT", "de_CH", "pt_PT", "eo"}) {
        writeDictionary(folder, name, "UTF-8", {"a"});
    }
    folder.write("fr_FR.dic", "1\na\n");  // without its other half
    struct Row {
        std::vector<std::string> languages;
        std::string_view found;
    };
    for (const Row& row : std::initializer_list<Row>{{{"en_GB"}, "en_GB"},
                                                     {{"en"}, "en_US"},
                                                     {{"en_AU", "en"}, "en_US"},
                                                     {{"de_DE", "en_GB"}, "de_AT en_GB"},
                                                     {{"eo"}, "eo"},
                                                     {{"pt_BR"}, "pt_PT"},
                                                     {{"fr_FR"}, ""},
                                                     {{}, ""}}) {
        CHECK(namesOf({{folder / "none", folder.path()}, row.languages}) == row.found);
    }
}

TEST_CASE("languages are those that the environment names") {
    struct Row {
        Environment::Value language, all, messages, lang;
        std::vector<std::string> languages;
    };
    const Environment::Value unset;
    for (const Row& row : std::initializer_list<Row>{
             {unset, unset, unset, "de_DE.UTF-8", {"de_DE"}},
             {unset, unset, "fr_FR.UTF-8@euro", "de_DE.UTF-8", {"fr_FR"}},
             {unset, "en_GB.UTF-8", "fr_FR", "de_DE", {"en_GB"}},
             {"de_DE:de:en", unset, unset, "de_DE.UTF-8", {"de_DE", "de", "en"}},
             {"de", unset, unset, "en_GB.UTF-8", {"de", "en_GB"}},
             {"de", unset, unset, "C.UTF-8", {"en"}},
             {unset, unset, unset, unset, {"en"}}}) {
        const Environment environment{{"LANGUAGE", row.language},
                                      {"LC_ALL", row.all},
                                      {"LC_MESSAGES", row.messages},
                                      {"LANG", row.lang}};
        CHECK(platform::dictionaryPlaces().languages == row.languages);
    }
    const Environment environment{{"DICPATH", "/first:relative:/second"},
                                  {"XDG_DATA_HOME", "/data"}};
    const auto folders = platform::dictionaryPlaces().folders;
    REQUIRE(folders.size() > 3);
    CHECK(folders[0] == "/first");
    CHECK(folders[1] == "/second");
    CHECK(folders[2] == "/data/hunspell");
}

TEST_CASE("a word is right if a dictionary of its script has it") {
    const TempFolder folder;
    writeDictionary(folder, "en_US", "UTF-8", {"word", "don't", "na\u00EFve"});
    writeDictionary(folder, "de_DE", "ISO8859-1",
                    {"Stra\xDF"
                     "e",
                     "\xFC"
                     "ber"});
    writeDictionary(folder, "ru_RU", "KOI8-R", {"\xCD\xC9\xD2"});
    writeDictionary(folder, "pl_PL", "no-such-encoding", {"slowo"});
    const DictionaryPlaces places{{folder.path()}, {"de_DE", "en_US", "ru_RU", "pl_PL"}};
    const auto spelling = platform::hunspellSpelling(places)();
    REQUIRE(spelling != nullptr);
    for (const char* right : {"word", "Word", "WORD", "don't", "don\u2019t", "nai\u0308ve",
                              "Stra\u00DFe", "\u00FCber", "\u043C\u0438\u0440",
                              // No dictionary is of these scripts.
                              "\u05E9\u05DC\u05D5\u05DD", "\u65E5\u672C"}) {
        CAPTURE(right);
        CHECK(spelling->knows(right));
    }
    for (const char* wrong : {"wrod", "strasse", "\u0440\u0438\u043C", "slowo"}) {
        CAPTURE(wrong);
        CHECK_FALSE(spelling->knows(wrong));
    }
    const auto has = [&](const char* word, const char* suggestion) {
        const auto found = spelling->suggestions(word);
        return std::find(found.begin(), found.end(), suggestion) != found.end();
    };
    CHECK(has("wrod", "word"));
    CHECK(has("\u00FCbr", "\u00FCber"));
    CHECK(platform::hunspellSpelling({{folder.path()}, {"fr_FR"}})() == nullptr);
    CHECK(platform::hunspellSpelling({{folder.path()}, {"pl_PL"}})() == nullptr);
}

TEST_CASE("dictionaries of the desktop are understood") {
    const auto spelling =
        platform::hunspellSpelling({{"/usr/share/hunspell"}, {"en_US", "de_DE"}})();
    if (spelling == nullptr) {
        MESSAGE("no dictionaries are installed");
        return;
    }
    for (const char* word :
         {"planner", "Children's", "Geburtstag", "h\u00F6flich", "Donaudampfschiff"}) {
        CAPTURE(word);
        CHECK(spelling->knows(word));
    }
    CHECK_FALSE(spelling->knows("plannner"));
}
