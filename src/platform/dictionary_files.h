// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace tessaly::platform {

/// Where dictionaries for spelling may lie, the first preferred, and the languages that the user
/// wants ("de_DE", "en"), the first preferred.
struct DictionaryPlaces {
    std::vector<std::string> folders;
    std::vector<std::string> languages;
};

/// By the environment: the folders of $DICPATH, of the user and of the system; languages by
/// LANGUAGE and LC_ALL, LC_MESSAGES or LANG. Who wants none writes English.
DictionaryPlaces dictionaryPlaces();

struct DictionaryFiles {
    std::string language;  ///< "de_DE"
    std::string affixes;   ///< absolute paths
    std::string words;
};

/// One for each language that has a dictionary; where the language's own country has none, the
/// country where most speak it, or else any.
std::vector<DictionaryFiles> findDictionaries(const DictionaryPlaces& places);

}  // namespace tessaly::platform
