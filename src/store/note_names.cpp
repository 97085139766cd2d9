// SPDX-License-Identifier: MIT
#include "store/note_names.h"

#include <algorithm>
#include <array>

#include <fmt/format.h>

#include "base/graphemes.h"
#include "base/log.h"
#include "base/regex.h"
#include "base/utf8.h"
#include "store/foreign_names.h"

namespace tessaly::store {
namespace {

constexpr std::array<std::string_view, 2> extensions{".txt", ".md"};
constexpr std::size_t maxTitleCharacters = 100;
// Room for " NN" and the extension behind a name.
constexpr std::size_t maxNameBytes = maxFilenameBytes - 3 - 1 - noteExtension.size();
// A name needs far less of a line, and a pattern's time may grow with the square of its length.
constexpr std::size_t maxTitleBytes = 4096;

const base::Regex& forbiddenCharacters() {
    static const base::Regex regex(uR"([#/\\?%*|"<>:.@#])");
    return regex;
}

const base::Regex& whiteSpaceRuns() {
    static const base::Regex regex(uR"(\s+)");
    return regex;
}

std::string_view extensionOf(std::string_view filename) {
    for (const std::string_view extension : extensions) {
        if (filename.ends_with(extension)) {
            return extension;
        }
    }
    return {};
}

std::string_view firstLine(std::string_view text) {
    return text.substr(0, text.find('\n'));
}

// As `patterns::leadingHashes`, which takes line breaks at the start of the text too.
std::string_view withoutLeadingHashes(std::string_view title) {
    title = base::trimmedStart(title);
    return firstLine(title.substr(std::min(title.find_first_not_of('#'), title.size())));
}

// Where a marker or box that begins at `at` ends; `at` itself when none does. A run of digits is
// looked at once, as a whole.
std::size_t markerEnd(std::string_view line, std::size_t at) {
    constexpr std::string_view signs = "*->#";
    constexpr std::string_view states = "x->";
    const auto isAny = [&](std::size_t place, std::string_view of) {
        return place < line.size() && of.find(line[place]) != of.npos;
    };
    if (isAny(at, signs)) {
        return at + 1;
    }
    return isAny(at, "[") && isAny(at + 1, states) && isAny(at + 2, "]") ? at + 3 : at;
}

// As `patterns::markersAndBoxes` with nothing put in their place.
std::string withoutMarkers(std::string_view title) {
    const std::string_view line = firstLine(title);
    std::string kept;
    for (std::size_t at = 0; at < line.size();) {
        const std::size_t digits = std::min(line.find_first_not_of("0123456789", at), line.size());
        if (digits > at) {
            const bool isNumber =
                digits < line.size() && (line[digits] == '.' || line[digits] == ')');
            kept += isNumber ? std::string_view{} : line.substr(at, digits - at);
            at = digits + (isNumber ? 1 : 0);
            continue;
        }
        const std::size_t end = markerEnd(line, at);
        if (end == at) {
            kept += line[at++];
        }
        at = std::max(at, end);
    }
    return kept;
}

std::string withoutForbiddenCharacters(std::string_view line) {
    const std::u16string kept = forbiddenCharacters().replaceAll(base::toUtf16(line), u"");
    std::string name = base::toUtf8(whiteSpaceRuns().replaceAll(kept, u" "));
    std::erase(name, '\0');
    return name;
}

}  // namespace

std::string calendarFilename(base::Day day) {
    return base::fileText(day) + ".txt";
}

bool isNoteFilename(std::string_view filename) {
    return !extensionOf(filename).empty() && nameKind(filename) == NameKind::ordinary;
}

std::string_view baseName(std::string_view filename) {
    filename.remove_prefix(filename.rfind('/') + 1);
    filename.remove_suffix(extensionOf(filename).size());
    return filename;
}

std::optional<std::string> filenameFromTitle(std::string_view title, StripListMarkers strip) {
    if (!forbiddenCharacters().valid() || !whiteSpaceRuns().valid()) {
        base::log("Couldn't find a good filename");
        return std::nullopt;
    }
    title = base::withoutByteOrderMark(title);
    const std::string whole = strip == StripListMarkers::yes
                                  ? withoutMarkers(title)
                                  : std::string(withoutLeadingHashes(title));
    const std::string_view line = base::cutToBytes(base::trimmed(whole), maxTitleBytes);
    const std::string name =
        withoutForbiddenCharacters(base::firstGraphemes(base::trimmed(line), maxTitleCharacters));
    const std::string_view cut = base::cutToBytes(base::trimmed(name), maxNameBytes);
    const std::string_view result = base::trimmedEnd(cut);
    return result.empty() ? std::nullopt : std::optional<std::string>(result);
}

std::string untitledName(const base::LocalTime& now) {
    static constexpr std::array<std::string_view, 13> months{
        "", "Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    return fmt::format("Untitled - {:02}-{}-{:04} {:02}-{:02}-{:02}",
                       static_cast<unsigned>(now.day.day()),
                       months[static_cast<unsigned>(now.day.month())],
                       static_cast<int>(now.day.year()), now.hour, now.minute, now.second);
}

}  // namespace tessaly::store
