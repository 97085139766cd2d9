// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>
#include <vector>

#include "app/line_look.h"
#include "base/text_range.h"

namespace tessaly::app {

/// The words of a line, whose look is given, that a dictionary can be asked for, in order; UTF-16
/// units of the line. Left out is what is no word of a language: code, tags, dates, addresses and
/// paths, names of notes, what holds a digit or another sign, single letters, short abbreviations
/// in capitals. Linear.
std::vector<base::TextRange> spellingWords(std::string_view line, const LineLook& look);

}  // namespace tessaly::app
