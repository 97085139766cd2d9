// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace tessaly::base {

/// The user's words for an English text. The English text is the key; a text without a
/// translation, or before `openCatalogue`, reads as itself. The texts are gathered from the
/// sources by xgettext: call it with a literal. Any thread.
std::string tr(const char* english);

/// As `tr`, for an English word that means different things in different places: `context` tells
/// the translator which.
std::string tr(const char* context, const char* english);

/// The form for `count` of a text that has a singular and a plural.
std::string trPlural(const char* singular, const char* plural, unsigned long count);

/// Marks a literal for xgettext where no call can stand, in a constant table; `tr` translates it
/// where it is shown.
constexpr const char* N_(const char* english) {
    return english;
}

/// Makes `tr` speak the languages of `languages` ("de_DE:de", most wanted first), from the
/// catalogues below `folder` (FOLDER/de/LC_MESSAGES/tessaly.mo). It needs no locale to be
/// installed on the machine. Call it once, at start, before there is a second thread. Only
/// messages and the character set are switched: numbers keep their C form.
void openCatalogue(const std::string& folder, const std::string& languages);

}  // namespace tessaly::base
