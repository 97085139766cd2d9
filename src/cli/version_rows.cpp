// SPDX-License-Identifier: MIT
#include "cli/version_rows.h"

#include <algorithm>
#include <array>
#include <vector>

#include <fmt/format.h>

#include "base/enum_names.h"
#include "base/graphemes.h"
#include "base/localisation.h"
#include "cli/json_times.h"
#include "cli/note_text.h"
#include "cli/safe_text.h"
#include "cli/spans.h"
#include "store/paths.h"

namespace tessaly::cli {

namespace {

using base::tr;
using ports::FileVersion;

std::string sizeOf(Context& context, const FileVersion& version) {
    const std::string name(store::lastComponent(version.url));
    const auto found =
        context.services.ports().files.surveyNames(store::parentOf(version.url), {&name, 1});
    if (!found || !found->front()) {
        return "?";
    }
    return sizeInWords(context, found->front()->stamp.size);
}

std::string writerOf(const FileVersion& version) {
    const std::string& device = version.localizedNameOfSavingComputer;
    if (version.client.empty() || device.empty()) {
        return safeText(version.client + device);
    }
    return safeText(fmt::format("{} ({})", version.client, device));
}

constexpr std::size_t versionColumns = 5;
using Row = std::array<std::string, versionColumns>;

Row rowOf(Context& context, const app::ConflictedNote& note, std::size_t index) {
    const FileVersion& version = note.versions[index];
    return {std::to_string(index + 1), dateInWords(context, version.modificationDate),
            sizeOf(context, version), writerOf(version),
            safeText(store::lastComponent(version.url))};
}

constexpr std::array<bool, versionColumns> isRight{true, true, true, false, false};

std::string paddedCell(const std::string& text, std::size_t width, std::size_t column) {
    const std::string blanks(width - base::terminalWidth(text), ' ');
    return isRight[column] ? blanks + text : text + blanks;
}

Spans spansOf(const Row& row, const std::array<std::size_t, versionColumns>& widths,
              bool isCurrent) {
    Spans spans;
    for (std::size_t column = 0; column < versionColumns; ++column) {
        const bool isLast = column + 1 == versionColumns;
        const Style style = column == 0 ? Style::date : column < 3 ? Style::dim : Style::plain;
        spans.push_back({style, "  " + (isLast ? row[column]
                                               : paddedCell(row[column], widths[column], column))});
    }
    if (isCurrent) {
        spans.push_back({Style::done, "  " + tr("(as it is now)")});
    }
    return spans;
}

}  // namespace

std::string nameOf(const app::ConflictedNote& note) {
    return store::joined(base::folderName(note.type), note.filename);
}

std::string dateInWords(Context& context, base::Instant time) {
    const base::LocalTime local = context.services.ports().clock.local(time);
    const grammar::DateStringHelper& words = context.services.dateStrings();
    return fmt::format("{} {}", words.dateWithYear(local.day), words.time(local));
}

void printVersions(Context& context, const app::ConflictedNote& note) {
    std::vector<Row> rows;
    std::array<std::size_t, versionColumns> widths{};
    for (std::size_t index = 0; index < note.versions.size(); ++index) {
        const Row& row = rows.emplace_back(rowOf(context, note, index));
        for (std::size_t column = 0; column < versionColumns; ++column) {
            widths[column] = std::max(widths[column], base::terminalWidth(row[column]));
        }
    }
    context.out.line(drawn({{Style::section, safeText(nameOf(note))}}, context.terminal));
    for (std::size_t index = 0; index < rows.size(); ++index) {
        Spans line = spansOf(rows[index], widths, !note.versions[index].isConflict);
        if (context.terminal.isTerminal) {
            line = cutTo(line, context.terminal.columns, context.terminal);
        }
        context.out.line(drawn(line, context.terminal));
    }
}

JsonObject recordOf(const app::ConflictedNote& note, std::size_t index) {
    const FileVersion& version = note.versions[index];
    JsonObject object;
    object.add("type", base::rawValue(note.type))
        .add("filename", note.filename)
        .add("path", note.path)
        .add("number", index + 1)
        .add("url", version.url)
        .add("modificationDate", rfc3339(version.modificationDate))
        .add("localizedNameOfSavingComputer", version.localizedNameOfSavingComputer)
        .add("isConflict", version.isConflict)
        .add("isResolved", version.isResolved)
        .add("client", version.client);
    return object;
}

}  // namespace tessaly::cli
