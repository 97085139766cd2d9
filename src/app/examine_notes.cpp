// SPDX-License-Identifier: MIT
#include "app/examine_notes.h"

#include <array>
#include <iterator>
#include <utility>

#include <fmt/format.h>

#include "app/back_links.h"
#include "base/localisation.h"
#include "store/note_document.h"
#include "store/note_names.h"
#include "store/paths.h"
#include "store/stray_notes.h"

namespace tessaly::app {
namespace {

using Level = Finding::Level;

/// What may be wrong with a note, in the order in which it is told.
enum Doubt : std::size_t { notUtf8, stray, noDay, doubts };

/// What one worker has seen.
struct Seen {
    std::size_t calendarNotes = 0;
    std::size_t generalNotes = 0;
    std::array<std::vector<Finding>, doubts> findings;
    BackLinks links;
    std::vector<std::string> folders;

    void add(const store::NoteFile& file, const grammar::MarkerSettings& markers);
    void join(Seen&& other);
};

std::string strayText(base::Day day) {
    return fmt::format(fmt::runtime(base::tr("Belongs to {0} by its name, but is not shown there")),
                       base::tagText(day));
}

void Seen::add(const store::NoteFile& file, const grammar::MarkerSettings& markers) {
    const bool isCalendar = file.type == base::NoteType::calendar;
    ++(isCalendar ? calendarNotes : generalNotes);
    const std::string path =
        std::string{base::folderName(file.type)}.append("/").append(file.filename);
    const bool isText = store::decodedText(file.bytes).has_value();
    links.add(file, isText, markers);
    if (!isText) {
        findings[notUtf8].push_back(
            {Level::warning, "notUtf8", base::tr("Not UTF-8; it is read as an empty note"), path});
    }
    if (!isCalendar || store::dayOfCalendarFilename(file.filename)) {
        return;
    }
    if (const auto day = store::dayOfStray(file.filename)) {
        findings[stray].push_back({Level::note, "stray", strayText(*day), path});
    } else {
        findings[noDay].push_back(
            {Level::note, "noDay",
             base::tr("Lies among the calendar notes, but its name is no day"), path});
    }
}

void Seen::join(Seen&& other) {
    calendarNotes += other.calendarNotes;
    generalNotes += other.generalNotes;
    for (std::size_t doubt = 0; doubt < doubts; ++doubt) {
        std::move(other.findings[doubt].begin(), other.findings[doubt].end(),
                  std::back_inserter(findings[doubt]));
    }
    links.join(std::move(other.links));
    std::move(other.folders.begin(), other.folders.end(), std::back_inserter(folders));
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

std::string conflictText(const store::ConflictCopy& copy) {
    std::string text;
    if (copy.device.empty()) {
        text = base::tr("Another version of {0}, set aside by {1}");
    } else if (copy.deviceOf == store::DeviceOf::copy) {
        text = base::tr("Another version of {0}, set aside by {1}; it is from {2}");
    } else {
        text = base::tr("Another version of {0}, set aside by {1}; the current one is from {2}");
    }
    return fmt::format(fmt::runtime(text), copy.original, copy.client, copy.device);
}

void tellConflictCopies(const store::ReadReport& report, Findings& findings) {
    std::vector<Finding> kind;
    for (const store::ConflictCopy& copy : report.conflictCopies) {
        kind.push_back({Level::note,
                        "conflictCopy",
                        conflictText(copy),
                        copy.path,
                        {"tessaly", "conflicts", copy.original}});
    }
    findings.addKind(std::move(kind));
}

void tellTemporaries(const store::ReadReport& report, Findings& findings) {
    std::vector<Finding> kind;
    for (const std::string& path : report.temporaries) {
        kind.push_back(
            {Level::note, "temporary",
             base::tr("Left by a write that was interrupted; the next change settles it"), path});
    }
    findings.addKind(std::move(kind));
}

// A note is passed over as malformed for its name alone; its bytes may be anything.
bool isForItsName(const store::SkippedFile& file) {
    return file.failure.kind == base::Failure::Kind::malformed;
}

// A note in conflict may be there under its versions' names alone.
void tellBrokenLinks(BackLinks& links, const store::ReadReport& report, Findings& findings) {
    if (report.cancelled) {
        return;
    }
    for (const store::SkippedFile& file : report.skipped) {
        links.addUnread(file.path);
    }
    for (const store::ConflictCopy& copy : report.conflictCopies) {
        links.addUnread(copy.original);
    }
    findings.addKind(links.broken());
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

std::vector<std::string> examineNotes(Services& services, store::NoteReader::Options options,
                                      Findings& findings) {
    options.types = {base::NoteType::calendar, base::NoteType::note};
    store::NoteReader reader(services.dataStore(), services.ports().executor);
    std::vector<Seen> byWorker(reader.workers());
    options.visitFolder = [&byWorker](std::size_t worker, base::NoteType type,
                                      std::string_view folder) {
        byWorker[worker].folders.push_back(store::joined(base::folderName(type), folder));
    };
    const grammar::MarkerSettings markers = services.markerSettings();
    const auto report =
        reader.readAll(options, [&](std::size_t worker, const store::NoteFile& file) {
            byWorker[worker].add(file, markers);
        });
    Seen all;
    for (Seen& seen : byWorker) {
        all.join(std::move(seen));
    }
    tellCounts(all, services.dateStrings().formats(), findings);
    for (std::vector<Finding>& kind : all.findings) {
        findings.addKind(std::move(kind));
    }
    tellConflictCopies(report, findings);
    tellTemporaries(report, findings);
    tellSkipped(report, findings);
    tellBrokenLinks(all.links, report, findings);
    return std::move(all.folders);
}

}  // namespace tessaly::app
