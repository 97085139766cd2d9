// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <sstream>
#include <string>
#include <string_view>

namespace tessaly::tests {

using Notes = std::map<std::string, std::string>;  ///< text by name

/// Several notes in one text: a line "-- Calendar/20190521.txt" begins each, its lines follow; one
/// that ends in "%" has no line break behind it.
inline Notes notesIn(std::string_view text) {
    constexpr std::string_view opener = "-- ";
    std::istringstream stream{std::string{text}};
    Notes notes;
    std::string name;
    for (std::string line; std::getline(stream, line);) {
        if (line.starts_with(opener)) {
            name = line.substr(opener.size());
            notes[name];
        } else {
            notes[name] += line.ends_with('%') ? line.substr(0, line.size() - 1) : line + "\n";
        }
    }
    return notes;
}

/// The text that `notesIn` reads so.
inline std::string shown(const Notes& notes) {
    std::string text;
    for (const auto& [name, bytes] : notes) {
        text += "-- " + name + "\n" + bytes + (bytes.ends_with('\n') ? "" : "%\n");
    }
    return text;
}

}  // namespace tessaly::tests
