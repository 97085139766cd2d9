// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "base/text_range.h"

namespace tessaly::grammar {

/// A note as text: UTF-8, with or without a byte-order mark, and its file, relative to the data
/// folder ("Calendar/20190305.txt").
struct NoteText {
    std::string_view text;
    std::string_view filename;
};

/// What a note is called, and where its text says so (UTF-16 units; empty when it does not).
struct NoteTitle {
    std::string text;
    base::TextRange range;
};

/// The title of a general note: its first line without the white space and the "#" before it,
/// trimmed (blank lines at the start are white space); when nothing is left, `baseName`. A
/// byte-order mark is passed over.
std::string noteTitle(std::string_view text, std::string_view baseName);

/// As `noteTitle`, by the note's path. A calendar note is called by its base name.
NoteTitle titleOfNote(const NoteText& note);

}  // namespace tessaly::grammar
