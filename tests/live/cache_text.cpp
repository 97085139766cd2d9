// SPDX-License-Identifier: MIT
#include "live/cache_text.h"

#include <sstream>

#include "base/day.h"

namespace tessaly::tests {
namespace {

void addTags(std::ostream& text, const std::vector<std::string>& hashTags,
             const std::vector<std::string>& atTags) {
    for (const std::string& tag : hashTags) {
        text << ' ' << tag;
    }
    for (const std::string& tag : atTags) {
        text << ' ' << tag;
    }
}

// Without the date of creation: a file that others put in place of one that reads and is dated
// alike is no change that is told.
std::string textOf(const store::LoadedNote& note) {
    std::ostringstream text;
    text << (note.isFolder ? "folder " : "note ") << note.title << " changed "
         << note.contentChangedDate.time_since_epoch().count();
    addTags(text, note.hashTags, note.atTags);
    for (const store::DatedLine& line : note.datedLines) {
        text << " line " << line.lineIndex << " at " << line.start << '+' << line.length;
    }
    text << ": " << std::string_view(note.content);
    return text.str();
}

std::string textOf(const store::CalendarNote& note) {
    const store::NoteModel& model = note.model;
    std::ostringstream text;
    text << (note.stamp ? "file " : "no file ") << model.filename;
    for (const int count :
         {model.numOpenTodos, model.numScheduledTodos, model.numDoneTodos, model.numCancelledTodos,
          model.numClosedTodos, model.numReminders, model.numCompletedReminders, model.numEvents,
          model.numOpenNoteTodos, model.numDoneNoteTodos}) {
        text << ' ' << count;
    }
    addTags(text, model.hashTags, model.atTags);
    text << ": " << std::string_view(note.content);
    return text.str();
}

}  // namespace

std::map<std::string, std::string> everythingIn(const store::NoteCache& cache) {
    std::map<std::string, std::string> all;
    cache.generalNotes()->forEach(
        [&](const auto& item) { all["Notes/" + item->note.filename] = textOf(item->note); });
    cache.calendarNotes()->forEach([&](const auto& item) {
        all["Calendar/" + base::tagText(*item->model.date)] = textOf(*item);
    });
    const auto addCount = [&](const auto& count) {
        all[count->tag] = std::to_string(count->notes) + " notes";
    };
    cache.lineAtTags()->forEach(addCount);
    cache.lineHashTags()->forEach(addCount);
    for (const std::string& name : cache.strays()) {
        all["stray " + name] += "x";
    }
    return all;
}

std::string difference(const std::map<std::string, std::string>& found,
                       const std::map<std::string, std::string>& wanted) {
    std::string text;
    for (const auto& [key, value] : wanted) {
        const auto there = found.find(key);
        if (there == found.end()) {
            text += "\nmissing " + key + " = " + value;
        } else if (there->second != value) {
            text += "\nfound   " + key + " = " + there->second + "\nnot     " + key + " = " + value;
        }
    }
    for (const auto& [key, value] : found) {
        if (!wanted.contains(key)) {
            text += "\nsurplus " + key + " = " + value;
        }
    }
    return text;
}

}  // namespace tessaly::tests
