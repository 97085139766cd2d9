// SPDX-License-Identifier: MIT
// Any bytes are a note. The first byte chooses the marker settings, the others are the text. What
// is wrong is printed, and ends the program.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "base/utf8.h"
#include "grammar/line_scanner.h"
#include "grammar/pattern_oracle.h"
#include "grammar/todo_helper.h"

namespace {

using namespace tessaly;
using grammar::MarkerSettings;

constexpr std::size_t longestCompared = 2 << 10;  // the patterns' time grows with the square
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

void insist(bool holds, const char* what, std::string_view expected, std::string_view found) {
    if (!holds) {
        std::fprintf(stderr, "%s\nexpected: %.*s\nfound:    %.*s\n", what,
                     static_cast<int>(expected.size()), expected.data(),
                     static_cast<int>(found.size()), found.data());
        std::abort();
    }
}

/// With U+FFFD for every byte that is no UTF-8, as the patterns see it.
std::string repaired(std::string_view text) {
    return base::toUtf8(base::toUtf16(text));
}

void compareWithPatterns(std::string_view line, const MarkerSettings& settings) {
    const std::string expected = grammar::testing::readByPatterns(repaired(line), settings);
    const std::string found = repaired(grammar::testing::readByScanner(line, settings));
    insist(expected == found, "the scanner differs from the patterns", expected, found);
}

bool sameMark(const grammar::Mark& a, const grammar::Mark& b) {
    return a.kind == b.kind && a.start == b.start && a.end == b.end;
}

/// A line reads the same in its text as alone.
void compareWithLineAlone(const grammar::ScannedLine& scanned, const MarkerSettings& settings) {
    std::vector<grammar::Mark> marks;
    grammar::findMarks(scanned.text, marks);
    const grammar::LineClass line = grammar::classifyLine(scanned.text, settings);
    insist(std::equal(marks.begin(), marks.end(), scanned.marks.begin(), scanned.marks.end(),
                      sameMark),
           "a line's marks depend on its text", scanned.text, "");
    insist(line.type == scanned.line.type && line.contentStart == scanned.line.contentStart,
           "a line's kind depends on its text", scanned.text, "");
}

void readText(std::string_view text, const MarkerSettings& settings) {
    grammar::NoteScanner scanner;
    scanner.start(text, settings);
    while (const grammar::ScannedLine* line = scanner.next()) {
        compareWithLineAlone(*line, settings);
        if (line->text.size() <= longestCompared) {
            compareWithPatterns(line->text, settings);
        }
    }
}

void printBack(std::string_view text, const MarkerSettings& settings) {
    std::string printed = text.starts_with(byteOrderMark) ? std::string(byteOrderMark) : "";
    const char* separator = "";
    for (const grammar::Todo& todo :
         grammar::TodoHelper::parseNoteContent({text, "Notes/Fuzz.txt"}, settings)) {
        printed += separator + todo.base;
        separator = "\n";
    }
    insist(printed == text, "the records' lines are not the text", text, printed);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const MarkerSettings settings{(data[0] & 1) != 0, (data[0] & 2) != 0, (data[0] & 4) != 0};
    const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
    readText(text, settings);
    printBack(text, settings);
    return 0;
}
