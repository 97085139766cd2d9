// SPDX-License-Identifier: MIT
#include "grammar/note_title.h"

#include "base/utf8.h"
#include "grammar/calendar_day.h"

namespace tessaly::grammar {

namespace {

std::string_view titleIn(std::string_view text) {
    text = base::trimmedStart(base::withoutByteOrderMark(text));
    while (text.starts_with('#')) {
        text.remove_prefix(1);
    }
    return base::trimmed(text.substr(0, text.find('\n')));
}

std::string_view baseNameOf(std::string_view path) {
    path = path.substr(path.rfind('/') + 1);
    const std::size_t dot = path.rfind('.');
    const std::string_view extension = dot == std::string_view::npos ? "" : path.substr(dot);
    return extension == ".txt" || extension == ".md" ? path.substr(0, dot) : path;
}

}  // namespace

std::string noteTitle(std::string_view text, std::string_view baseName) {
    const std::string_view title = titleIn(text);
    return std::string(title.empty() ? baseName : title);
}

NoteTitle titleOfNote(const NoteText& note) {
    const std::string_view title =
        dayOfNotePath(note.filename) ? std::string_view{} : titleIn(note.text);
    if (title.empty()) {
        return {std::string(baseNameOf(note.filename)), {}};
    }
    const auto start = static_cast<std::size_t>(title.data() - note.text.data());
    return {std::string(title),
            {base::utf16Length(note.text.substr(0, start)), base::utf16Length(title)}};
}

}  // namespace tessaly::grammar
