// SPDX-License-Identifier: MIT
#include "platform/dictionary_files.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <string_view>

#include <unicode/uloc.h>

namespace tessaly::platform {

namespace {

/// By language, as the files' names tell it.
using Dictionaries = std::map<std::string, DictionaryFiles>;

std::string_view variableText(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::string_view() : std::string_view(value);
}

std::vector<std::string> partsOf(std::string_view text) {
    std::vector<std::string> parts;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(':'), text.size());
        if (end > 0) {
            parts.emplace_back(text.substr(0, end));
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return parts;
}

void addUnlessThere(std::vector<std::string>& texts, std::string text) {
    if (std::find(texts.begin(), texts.end(), text) == texts.end()) {
        texts.push_back(std::move(text));
    }
}

std::vector<std::string> dictionaryFolders() {
    std::vector<std::string> folders = partsOf(variableText("DICPATH"));
    const std::string home(variableText("HOME"));
    const std::string data(variableText("XDG_DATA_HOME"));
    folders.push_back((data.empty() ? home + "/.local/share" : data) + "/hunspell");
    folders.emplace_back("/usr/local/share/hunspell");
    folders.emplace_back("/usr/share/hunspell");
    folders.emplace_back("/usr/share/myspell/dicts");
    std::erase_if(folders, [](const std::string& folder) { return !folder.starts_with('/'); });
    return folders;
}

/// "de_DE" of "de_DE.UTF-8@euro"; empty: no language.
std::string languageNamed(std::string_view locale) {
    const std::string name(locale.substr(0, locale.find_first_of(".@")));
    return name == "C" || name == "POSIX" ? std::string() : name;
}

std::vector<std::string> writtenLanguages() {
    std::string messages;
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        if (const std::string_view value = variableText(variable); !value.empty()) {
            messages = languageNamed(value);
            break;
        }
    }
    std::vector<std::string> languages;
    if (!messages.empty()) {
        for (const std::string& each : partsOf(variableText("LANGUAGE"))) {
            if (auto language = languageNamed(each); !language.empty()) {
                addUnlessThere(languages, std::move(language));
            }
        }
        addUnlessThere(languages, messages);
    }
    if (languages.empty()) {
        languages.emplace_back("en");
    }
    return languages;
}

/// Those of a folder that is not there, or may not be read, are none.
void addDictionariesIn(const std::string& folder, Dictionaries& found) {
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        const std::filesystem::path words = entry->path();
        std::filesystem::path affixes = words;
        affixes.replace_extension(".aff");
        std::error_code ignored;
        if (words.extension() == ".dic" && std::filesystem::is_regular_file(affixes, ignored)) {
            const std::string name = words.stem().string();
            found.try_emplace(name, DictionaryFiles{name, affixes.string(), words.string()});
        }
    }
}

std::string bareLanguage(std::string_view language) {
    return std::string(language.substr(0, language.find_first_of("_-")));
}

/// "de_DE" for "de".
std::string withLikelyCountry(const std::string& language) {
    std::array<char, ULOC_FULLNAME_CAPACITY> likely{};
    std::array<char, ULOC_COUNTRY_CAPACITY> country{};
    UErrorCode status = U_ZERO_ERROR;
    uloc_addLikelySubtags(language.c_str(), likely.data(), likely.size(), &status);
    uloc_getCountry(likely.data(), country.data(), country.size(), &status);
    return U_SUCCESS(status) && country[0] != '\0' ? language + "_" + country.data() : language;
}

const DictionaryFiles* dictionaryOf(const std::string& language, const Dictionaries& all) {
    const std::string bare = bareLanguage(language);
    for (const std::string& name : {language, withLikelyCountry(bare), bare}) {
        if (const auto found = all.find(name); found != all.end()) {
            return &found->second;
        }
    }
    const auto any = std::find_if(
        all.begin(), all.end(), [&](const auto& each) { return bareLanguage(each.first) == bare; });
    return any == all.end() ? nullptr : &any->second;
}

}  // namespace

DictionaryPlaces dictionaryPlaces() {
    return {dictionaryFolders(), writtenLanguages()};
}

std::vector<DictionaryFiles> findDictionaries(const DictionaryPlaces& places) {
    Dictionaries all;
    for (const std::string& folder : places.folders) {
        addDictionariesIn(folder, all);
    }
    std::vector<DictionaryFiles> found;
    for (const std::string& language : places.languages) {
        const DictionaryFiles* files = dictionaryOf(language, all);
        const bool isNew =
            files != nullptr && std::none_of(found.begin(), found.end(), [&](const auto& each) {
                return each.language == files->language;
            });
        if (isNew) {
            found.push_back(*files);
        }
    }
    return found;
}

}  // namespace tessaly::platform
