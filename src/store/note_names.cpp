// SPDX-License-Identifier: MIT
#include "store/note_names.h"

#include <array>

#include <fmt/format.h>

#include "base/graphemes.h"
#include "base/log.h"
#include "base/regex.h"
#include "base/utf8.h"
#include "grammar/patterns.h"

namespace tessaly::store {
namespace {

constexpr std::array<std::string_view, 2> extensions{".txt", ".md"};
constexpr std::size_t maxTitleCharacters = 100;
// Room for " NN" and the extension behind a name.
constexpr std::size_t maxNameBytes = maxFilenameBytes - 3 - 1 - noteExtension.size();
// A name needs far less, and a pattern's time may grow with the square of the line.
constexpr std::size_t maxTitleBytes = 1024;

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
    const std::string_view line = text.substr(0, text.find('\n'));
    return line.size() <= maxTitleBytes ? line : base::cutToBytes(line, maxTitleBytes);
}

// The pattern also takes line breaks at the start of the text. Only its first match counts: it
// would match again behind every line terminator.
std::string withoutLeadingHashes(std::string_view title, const base::Regex& leadingHashes) {
    const std::u16string line = base::toUtf16(firstLine(base::trimmedStart(title)));
    const auto match = leadingHashes.find(line);
    return base::toUtf8(line.substr(match ? match->groups[0]->length : 0));
}

std::string withoutMarkers(std::string_view title, const base::Regex& markersAndBoxes) {
    return base::toUtf8(markersAndBoxes.replaceAll(base::toUtf16(firstLine(title)), u""));
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
    return !filename.starts_with('.') && !extensionOf(filename).empty();
}

std::string_view baseName(std::string_view filename) {
    filename.remove_prefix(filename.rfind('/') + 1);
    filename.remove_suffix(extensionOf(filename).size());
    return filename;
}

std::optional<std::string> filenameFromTitle(std::string_view title, StripListMarkers strip) {
    namespace patterns = grammar::patterns;
    const base::Regex& leadIn = patterns::compiled(
        strip == StripListMarkers::yes ? patterns::markersAndBoxes : patterns::leadingHashes);
    if (!leadIn.valid() || !forbiddenCharacters().valid() || !whiteSpaceRuns().valid()) {
        base::log("Couldn't find a good filename");
        return std::nullopt;
    }
    const std::string line = strip == StripListMarkers::yes ? withoutMarkers(title, leadIn)
                                                            : withoutLeadingHashes(title, leadIn);
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
