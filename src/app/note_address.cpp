// SPDX-License-Identifier: MIT
#include "app/note_address.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include <fmt/format.h>

#include "app/near_titles.h"
#include "base/localisation.h"
#include "base/normalise.h"
#include "base/utf8.h"
#include "grammar/note_title.h"
#include "store/foreign_names.h"
#include "store/note_document.h"
#include "store/note_names.h"

namespace tessaly::app {
namespace {

constexpr std::size_t titlesSuggested = 3;

NoteAddress calendarAddress(base::Day day) {
    return {base::NoteType::calendar, store::calendarFilename(day), day};
}

/// A kind's folder and a name below it, as `text` may mean them.
struct NotePlaceInText {
    base::NoteType type;
    std::string_view name;
};

std::optional<NotePlaceInText> placeWithFolder(std::string_view text) {
    for (const base::NoteType type : {base::NoteType::calendar, base::NoteType::note}) {
        const std::string_view folder = base::folderName(type);
        if (text.size() > folder.size() && text.substr(0, folder.size()) == folder &&
            text[folder.size()] == '/') {
            return NotePlaceInText{type, text.substr(folder.size() + 1)};
        }
    }
    return std::nullopt;
}

std::vector<NotePlaceInText> placesOf(std::string_view text) {
    std::vector<NotePlaceInText> places;
    if (const auto place = placeWithFolder(text)) {
        places.push_back(*place);
    }
    if (store::dayOfCalendarFilename(text)) {
        places.push_back({base::NoteType::calendar, text});
    }
    places.push_back({base::NoteType::note, text});
    return places;
}

/// The file names that a name with or without extension stands for, most likely first.
std::vector<std::string> filenamesOf(std::string_view name) {
    const std::string whole{name};
    return {whole, whole + ".txt", whole + ".md"};
}

// A note's name, or one that a sync client made of it, which may have put its mark behind the
// extension.
bool isNamedLikeNote(std::string_view name) {
    const auto copy = store::conflictName(name);
    return store::isNoteFilename(name) || (copy && store::isNoteFilename(copy->original));
}

bool isNote(store::DataStore& dataStore, base::NoteType type, const std::string& filename) {
    const auto slash = filename.rfind('/');
    if (!isNamedLikeNote(std::string_view{filename}.substr(slash + 1))) {
        return false;
    }
    const auto path = dataStore.pathOf(type, filename);
    if (!path) {
        return false;
    }
    const auto kind = dataStore.files().kindOf(*path);
    return kind && *kind == ports::FolderEntry::Kind::file;
}

std::optional<base::Day> dayOf(const NotePlaceInText& place) {
    if (place.type != base::NoteType::calendar) {
        return std::nullopt;
    }
    const auto day = store::dayOfCalendarFilename(place.name);
    return day ? day : base::dayFromFileText(place.name);
}

std::optional<NoteAddress> addressOfFile(store::DataStore& dataStore, std::string_view text) {
    const std::vector<NotePlaceInText> places = placesOf(text);
    for (const NotePlaceInText& place : places) {
        for (std::string& filename : filenamesOf(place.name)) {
            if (isNote(dataStore, place.type, filename)) {
                const auto day = place.type == base::NoteType::calendar
                                     ? store::dayOfCalendarFilename(filename)
                                     : std::nullopt;
                return NoteAddress{place.type, std::move(filename), day};
            }
        }
    }
    // A day's note need not be there.
    const auto day = dayOf(places.front());
    return day ? std::optional(calendarAddress(*day)) : std::nullopt;
}

struct TitledNote {
    std::string filename;
    std::string title;
};

/// Nothing: the reading was cancelled.
std::optional<std::vector<TitledNote>> generalNotes(Services& services,
                                                    store::NoteReader::Options options) {
    const store::NoteCache& cache = services.noteCache();
    std::vector<std::vector<TitledNote>> byWorker(cache.workers());
    options.types = {base::NoteType::note};
    const auto report =
        cache.visit(options, [&byWorker](std::size_t worker, const store::NoteFile& file) {
            const auto text = store::decodedText(file.bytes).value_or("");
            byWorker[worker].push_back({std::string{file.filename},
                                        grammar::noteTitle(text, store::baseName(file.filename))});
        });
    if (report.cancelled) {
        return std::nullopt;
    }
    std::vector<TitledNote> notes;
    for (auto& some : byWorker) {
        std::move(some.begin(), some.end(), std::back_inserter(notes));
    }
    std::sort(notes.begin(), notes.end(),
              [](const auto& a, const auto& b) { return a.filename < b.filename; });
    return notes;
}

/// How well a note answers to a text; the first are the best.
enum class Fit { filename, title, filenameInOtherCase, titleInOtherCase, none };

class Wanted {
public:
    explicit Wanted(std::string_view text)
        : _title(base::nfc(text)), _folded(base::foldedForNames(text)) {
        const auto place = placeWithFolder(text);
        const bool inNotes = place && place->type == base::NoteType::note;
        for (const std::string& filename : filenamesOf(inNotes ? place->name : text)) {
            _filenames.push_back(base::nfc(filename));
            _foldedFilenames.push_back(base::foldedForNames(filename));
        }
    }

    Fit fitOf(const TitledNote& note) const {
        if (holds(_filenames, base::nfc(note.filename))) {
            return Fit::filename;
        }
        if (base::nfc(note.title) == _title) {
            return Fit::title;
        }
        if (holds(_foldedFilenames, base::foldedForNames(note.filename))) {
            return Fit::filenameInOtherCase;
        }
        return base::foldedForNames(note.title) == _folded ? Fit::titleInOtherCase : Fit::none;
    }

private:
    static bool holds(const std::vector<std::string>& list, const std::string& name) {
        return std::find(list.begin(), list.end(), name) != list.end();
    }

    std::string _title;
    std::string _folded;
    std::vector<std::string> _filenames;
    std::vector<std::string> _foldedFilenames;
};

std::vector<std::string> bestFits(std::string_view text, const std::vector<TitledNote>& notes) {
    const Wanted wanted(text);
    std::vector<std::string> best;
    Fit bestFit = Fit::none;
    for (const TitledNote& note : notes) {
        const Fit fit = wanted.fitOf(note);
        if (fit < bestFit) {
            bestFit = fit;
            best.clear();
        }
        if (fit == bestFit && fit != Fit::none) {
            best.push_back(note.filename);
        }
    }
    return best;
}

base::Failure noSuchNote(std::string_view text, const std::vector<TitledNote>& notes) {
    std::vector<std::string> titles;
    titles.reserve(notes.size());
    for (const TitledNote& note : notes) {
        titles.push_back(note.title);
    }
    std::vector<std::string> near = nearTitles(text, titles, titlesSuggested);
    for (std::string& title : near) {
        title = fmt::format(fmt::runtime(base::tr("“{}”")), title);
    }
    const std::string words = near.empty()
                                  ? base::tr("there is no note called “{0}”")
                                  : base::tr("there is no note called “{0}”; did you mean {1}?");
    return {base::Failure::Kind::notFound,
            fmt::format(fmt::runtime(words), text, fmt::join(near, ", "))};
}

base::Result<NoteAddress> addressOfTitle(Services& services, std::string_view text,
                                         store::NoteReader::Options options) {
    const auto notes = generalNotes(services, std::move(options));
    if (!notes) {
        return base::Failure{base::Failure::Kind::cancelled, {}};
    }
    std::vector<std::string> fits = bestFits(text, *notes);
    if (fits.empty()) {
        return noSuchNote(text, *notes);
    }
    if (fits.size() > 1) {
        return base::Failure{
            base::Failure::Kind::malformed,
            fmt::format(fmt::runtime(base::tr("several notes are called “{0}”: {1}")), text,
                        fmt::join(fits, ", "))};
    }
    return NoteAddress{base::NoteType::note, std::move(fits.front()), std::nullopt};
}

}  // namespace

base::Result<NoteAddress> findNote(Services& services, std::string_view text,
                                   store::NoteReader::Options options) {
    const std::string_view wanted = base::trimmed(text);
    if (const auto day = parseDay(wanted, services.today(), services.dateStrings().formats())) {
        return calendarAddress(*day);
    }
    if (auto file = addressOfFile(services.dataStore(), wanted)) {
        return *std::move(file);
    }
    return addressOfTitle(services, wanted, std::move(options));
}

}  // namespace tessaly::app
