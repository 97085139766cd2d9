// SPDX-License-Identifier: MIT
#include "platform/system_locale.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace tessaly::platform {

namespace {

/// "sr_RS.UTF-8@latin" in its parts: the character set is always UTF-8 here, and left out.
struct LocaleName {
    std::string_view language;
    std::string_view country;
    std::string_view modifier;
};

struct Modifier {
    std::string_view name;
    std::string_view script;
    std::string_view variant;
};

/// What the system's modifiers are in ICU's names. Others, such as "euro", say nothing about how
/// days and times look.
constexpr std::array<Modifier, 6> modifiers{{
    {"latin", "Latn", ""},
    {"cyrillic", "Cyrl", ""},
    {"devanagari", "Deva", ""},
    {"iqtelif", "Latn", ""},
    {"valencia", "", "VALENCIA"},
    {"saaho", "", "SAAHO"},
}};

std::string_view firstSet(std::initializer_list<const char*> variables) {
    for (const char* variable : variables) {
        const char* value = std::getenv(variable);
        if (value != nullptr && value[0] != '\0') {
            return value;
        }
    }
    return {};
}

/// Cuts `text` at the first `separator` and returns what stood behind it.
std::string_view cutBehind(std::string_view& text, char separator) {
    const auto at = text.find(separator);
    if (at == std::string_view::npos) {
        return {};
    }
    const auto behind = text.substr(at + 1);
    text = text.substr(0, at);
    return behind;
}

LocaleName parseLocale(std::string_view text) {
    LocaleName name;
    name.modifier = cutBehind(text, '@');
    cutBehind(text, '.');
    name.country = cutBehind(text, '_');
    name.language = text;
    return name;
}

bool isPosix(const LocaleName& name) {
    return name.language.empty() || name.language == "C" || name.language == "POSIX";
}

std::string joined(std::initializer_list<std::string_view> parts) {
    std::string text;
    for (const std::string_view part : parts) {
        if (!part.empty()) {
            text += (text.empty() ? "" : "_") + std::string(part);
        }
    }
    return text;
}

std::string icuName(const LocaleName& name) {
    if (isPosix(name)) {
        return ports::UserLocale{}.formats;
    }
    // ICU's own keywords ("calendar=buddhist") mean the same behind the "@" of a variable.
    if (name.modifier.find('=') != std::string_view::npos) {
        return joined({name.language, name.country}) + "@" + std::string(name.modifier);
    }
    for (const Modifier& modifier : modifiers) {
        if (modifier.name == name.modifier) {
            return joined({name.language, modifier.script, name.country, modifier.variant});
        }
    }
    return joined({name.language, name.country});
}

void addLanguage(std::vector<std::string>& languages, std::string language) {
    if (std::find(languages.begin(), languages.end(), language) == languages.end()) {
        languages.push_back(std::move(language));
    }
}

/// The names that catalogues of this locale may have, the closest first.
void addLanguages(std::vector<std::string>& languages, const LocaleName& name) {
    const std::string country = joined({name.language, name.country});
    const std::string language(name.language);
    if (!name.modifier.empty()) {
        addLanguage(languages, country + "@" + std::string(name.modifier));
        addLanguage(languages, language + "@" + std::string(name.modifier));
    }
    addLanguage(languages, country);
    addLanguage(languages, language);
}

std::string wantedLanguages(std::string_view list) {
    std::vector<std::string> languages;
    while (!list.empty()) {
        const auto rest = cutBehind(list, ':');
        const LocaleName name = parseLocale(list);
        list = rest;
        if (name.language == "en" || name.language == "C" || name.language == "POSIX") {
            break;
        }
        if (!name.language.empty()) {
            addLanguages(languages, name);
        }
    }
    std::string text;
    for (const std::string& language : languages) {
        text += (text.empty() ? "" : ":") + language;
    }
    return text;
}

std::string languages() {
    const std::string_view messages = firstSet({"LC_ALL", "LC_MESSAGES", "LANG"});
    if (messages == "C" || messages == "POSIX") {
        return {};
    }
    const std::string_view listed = firstSet({"LANGUAGE"});
    return wantedLanguages(listed.empty() ? messages : listed);
}

}  // namespace

ports::UserLocale systemLocale() {
    return {icuName(parseLocale(firstSet({"LC_ALL", "LC_TIME", "LANG"}))), languages()};
}

}  // namespace tessaly::platform
