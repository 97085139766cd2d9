// SPDX-License-Identifier: MIT
#include "base/localisation.h"

#include <algorithm>
#include <clocale>
#include <cstddef>
#include <cstdlib>
#include <libintl.h>
#include <string_view>

namespace tessaly::base {

namespace {

constexpr char domain[] = "tessaly";
/// What msgfmt puts between a context and its text.
constexpr char contextEnd = '\004';

/// The message functions stay silent in the C locale, whatever LANGUAGE says.
void enterLocale(int category) {
    const char* const name = std::setlocale(category, "");
    const std::string_view entered = name == nullptr ? "C" : name;
    if (entered == "C" || entered == "POSIX") {
        std::setlocale(category, "C.UTF-8");
    }
}

bool isEnglish(std::string_view language) {
    return language.substr(0, 2) == "en" &&
           (language.size() == 2 || language.find_first_of("_.@") == 2);
}

/// English has no catalogue, so the search must end at it and not go on to the next language.
std::string endedAtEnglish(const std::string& languages) {
    for (std::size_t start = 0; start < languages.size();) {
        const std::size_t end = std::min(languages.find(':', start), languages.size());
        if (isEnglish(std::string_view(languages).substr(start, end - start))) {
            return languages.substr(0, end) + ":C";
        }
        start = end + 1;
    }
    return languages;
}

}  // namespace

std::string tr(const char* english) {
    // The empty text is the key of the catalogue's header.
    return *english == '\0' ? "" : dgettext(domain, english);
}

std::string tr(const char* context, const char* english) {
    const std::string key = std::string(context) + contextEnd + english;
    const char* const found = dgettext(domain, key.c_str());
    return found == key.c_str() ? english : found;
}

std::string trPlural(const char* singular, const char* plural, unsigned long count) {
    return dngettext(domain, singular, plural, count);
}

void openCatalogue(const std::string& folder, const std::string& languages) {
    if (!languages.empty()) {
        setenv("LANGUAGE", endedAtEnglish(languages).c_str(), 1);
    }
    enterLocale(LC_CTYPE);
    enterLocale(LC_MESSAGES);
    bindtextdomain(domain, folder.c_str());
    bind_textdomain_codeset(domain, "UTF-8");
    textdomain(domain);
}

}  // namespace tessaly::base
