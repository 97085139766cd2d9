// SPDX-License-Identifier: MIT
#include "app/examine_notes.h"

#include <array>
#include <iterator>
#include <utility>

#include <fmt/format.h>

#include "base/localisation.h"
#include "store/note_document.h"
#include "store/note_names.h"

namespace tessaly::app {
namespace {

using Level = Finding::Level;

/// What may be wrong with a note, in the order in which it is told.
enum Doubt : std::size_t { notUtf8, stray, conflictCopy, doubts };

/// What one worker has seen.
struct Seen {
    std::size_t calendarNotes = 0;
    std::size_t generalNotes = 0;
    std::array<std::vector<std::string>, doubts> paths;

    void add(const store::NoteFile& file);
    void join(Seen&& other);
};

bool isConflictCopy(std::string_view filename) {
    return filename.find("conflicted copy") != std::string_view::npos ||
           filename.find(".sync-conflict-") != std::string_view::npos;
}

void Seen::add(const store::NoteFile& file) {
    const bool isCalendar = file.type == base::NoteType::calendar;
    ++(isCalendar ? calendarNotes : generalNotes);
    const std::string path =
        std::string{base::folderName(file.type)}.append("/").append(file.filename);
    if (!store::decodedText(file.bytes)) {
        paths[notUtf8].push_back(path);
    }
    if (isConflictCopy(file.filename)) {
        paths[conflictCopy].push_back(path);
    } else if (isCalendar && !store::dayOfCalendarFilename(file.filename)) {
        paths[stray].push_back(path);
    }
}

void Seen::join(Seen&& other) {
    calendarNotes += other.calendarNotes;
    generalNotes += other.generalNotes;
    for (std::size_t doubt = 0; doubt < doubts; ++doubt) {
        std::move(other.paths[doubt].begin(), other.paths[doubt].end(),
                  std::back_inserter(paths[doubt]));
    }
}

void tellCounts(const Seen& seen, const base::LocaleFormats& formats, Findings& findings) {
    const auto number = [&formats](std::size_t count) {
        return formats.number(static_cast<long long>(count));
    };
    findings.add({Level::fine,
                  "notes",
                  fmt::format(fmt::runtime(base::tr("Calendar notes: {0}. Other notes: {1}.")),
                              number(seen.calendarNotes), number(seen.generalNotes)),
                  {}});
}

void tellDoubts(Seen& seen, Findings& findings) {
    const struct {
        Level level;
        const char* what;
        std::string text;
    } rows[doubts] = {
        {Level::warning, "notUtf8", base::tr("Not UTF-8; it is read as an empty note")},
        {Level::note, "stray", base::tr("Lies among the calendar notes, but its name is no day")},
        {Level::note, "conflictCopy", base::tr("Looks like one of two versions of a note")},
    };
    for (std::size_t doubt = 0; doubt < doubts; ++doubt) {
        std::vector<Finding> kind;
        for (std::string& path : seen.paths[doubt]) {
            kind.push_back(
                {rows[doubt].level, rows[doubt].what, rows[doubt].text, std::move(path)});
        }
        findings.addKind(std::move(kind));
    }
}

// A note is passed over as malformed for its name alone; its bytes may be anything.
bool isForItsName(const store::SkippedFile& file) {
    return file.failure.kind == base::Failure::Kind::malformed;
}

void tellSkipped(const store::ReadReport& report, Findings& findings) {
    std::vector<Finding> names;
    std::vector<Finding> others;
    for (const store::SkippedFile& file : report.skipped) {
        if (isForItsName(file)) {
            names.push_back({Level::warning, "nameNotUtf8",
                             base::tr("Not read, since its name is not UTF-8"), file.path});
        } else {
            others.push_back(
                {Level::warning, "skipped",
                 fmt::format(fmt::runtime(base::tr("Not read: {}")), file.failure.description),
                 file.path});
        }
    }
    findings.addKind(std::move(names));
    findings.addKind(std::move(others));
    if (report.cancelled) {
        findings.add({Level::note, "cancelled", base::tr("Not all notes have been looked at"), {}});
    }
}

}  // namespace

void examineNotes(Services& services, store::NoteReader::Options options, Findings& findings) {
    options.types = {base::NoteType::calendar, base::NoteType::note};
    store::NoteReader reader(services.dataStore(), services.ports().executor);
    std::vector<Seen> byWorker(reader.workers());
    const auto report =
        reader.readAll(options, [&byWorker](std::size_t worker, const store::NoteFile& file) {
            byWorker[worker].add(file);
        });
    Seen all;
    for (Seen& seen : byWorker) {
        all.join(std::move(seen));
    }
    tellCounts(all, services.dateStrings().formats(), findings);
    tellDoubts(all, findings);
    tellSkipped(report, findings);
}

}  // namespace tessaly::app
