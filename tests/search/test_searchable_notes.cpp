// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <doctest/doctest.h>

#include "base/inline_executor.h"
#include "base/thread_pool.h"
#include "notes_in_memory.h"
#include "search/folded_text.h"
#include "search/note_order.h"
#include "search/searchable_notes.h"

using namespace tessaly;
using namespace std::chrono_literals;

namespace {

const grammar::DateStringHelper names{base::LocaleFormats("en_US")};

base::LocalTime utcTime(base::Instant instant) {
    return {std::chrono::floor<std::chrono::days>(instant)};
}

std::string describe(const search::NotesInOrder& notes) {
    std::ostringstream text;
    notes.forEach([&text](const auto& item) {
        const search::SearchedNote note = item->view();
        text << base::rawValue(note.type) << '/' << note.filename << '|' << note.title << '|'
             << note.foldedTitle << '|' << note.foldedFolder << '|' << note.text << '|'
             << note.foldedText << '|' << base::tagText(note.changedDay);
        for (const search::TaskPlace& task : note.tasks) {
            text << ' ' << task.start << ':' << task.type;
        }
        text << (note.day ? base::tagText(*note.day) : "") << '\n';
    });
    return text.str();
}

/// What stands where, by sorting alone.
std::vector<std::string> namesSorted(const tests::NotesInMemory& notes,
                                     const search::NoteLooks& looks) {
    struct Sorted {
        std::string name, lowerTitle;
        base::Instant modified, created;
    };
    std::vector<Sorted> sorted;
    notes.general->forEach([&](const auto& item) {
        if (!item->note.isFolder) {
            sorted.push_back({item->note.filename, search::folded(item->note.title),
                              item->note.contentChangedDate, item->note.contentCreatedDate});
        }
    });
    notes.calendar->forEach([&](const auto& item) {
        if (item->stamp) {
            sorted.push_back({item->model.filename,
                              search::folded(names.relativeDay(*item->model.date, looks.today)),
                              item->stamp->modified, item->stamp->created});
        }
    });
    std::stable_sort(sorted.begin(), sorted.end(), [&](const Sorted& a, const Sorted& b) {
        return search::comesBefore({a.lowerTitle, a.modified, a.created},
                                   {b.lowerTitle, b.modified, b.created}, looks.sortBy);
    });
    std::vector<std::string> result;
    for (const Sorted& note : sorted) {
        result.push_back(note.name);
    }
    return result;
}

std::vector<std::string> namesIn(const search::NotesInOrder& notes) {
    std::vector<std::string> result;
    notes.forEach([&](const auto& note) { result.emplace_back(note->filename); });
    return result;
}

class Changes {
public:
    explicit Changes(unsigned seed) : _engine(seed) {}

    /// Changes some notes, and sometimes what notes look like.
    void make(tests::NotesInMemory& notes, search::NoteLooks& looks) {
        const unsigned count = one(8) == 0 ? 400 : one(4);
        for (unsigned change = 0; change < count; ++change) {
            one(3) > 0 ? changeGeneral(notes) : changeDay(notes);
        }
        switch (one(9)) {
            case 0:
                looks.sortBy = std::array{base::SortType::title, base::SortType::modified,
                                          base::SortType::created}[one(3)];
                break;
            case 1: looks.today = base::addDays(looks.today, 1); break;
            case 2: looks.markers.isDashTodo = !looks.markers.isDashTodo; break;
            default: break;
        }
    }

private:
    unsigned one(unsigned count) { return static_cast<unsigned>(_engine() % count); }

    tests::MemoryNote note() {
        static constexpr std::array texts{"# Alpha\n* task\n- dash\n", "# alpha\nBODY\n",
                                          "# \xC3\x84pfel\n* \xC3\x9C"
                                          "ber\n",
                                          "Beta\n", ""};
        return {texts[one(texts.size())], static_cast<int>(one(3)), static_cast<int>(one(3)),
                one(12) == 0};
    }

    // Few titles and dates, so that many notes are equal.
    void changeGeneral(tests::NotesInMemory& notes) {
        const char* folder = std::array{"", "Work/", "Work/\xC3\x96sterreich/"}[one(3)];
        const std::string filename = folder + std::to_string(one(200)) + ".txt";
        notes.setGeneral(filename, one(4) == 0 ? std::nullopt : std::optional(note()));
    }
    void changeDay(tests::NotesInMemory& notes) {
        const base::Day day = base::addDays(2019y / 3 / 1, static_cast<int>(one(60)));
        notes.setDay(day, one(4) == 0 ? std::nullopt : std::optional(note()), one(4) > 0);
    }

    std::mt19937 _engine;
};

}  // namespace

TEST_CASE("notes that are kept up to date are those that are made anew") {
    base::ThreadPool pool(2);
    base::InlineExecutor here;
    for (unsigned seed = 1; seed <= 4; ++seed) {
        Changes changes(seed);
        tests::NotesInMemory notes;
        search::NoteLooks looks{base::SortType::title, 2019y / 3 / 5, {}};
        search::SearchableNotes kept(pool, names, utcTime);
        for (int step = 0; step < 40; ++step) {
            INFO("seed ", seed, ", step ", step);
            changes.make(notes, looks);
            search::SearchableNotes anew(here, names, utcTime);
            const auto found = kept.of(notes.general, notes.calendar, looks);
            REQUIRE(describe(*found) == describe(*anew.of(notes.general, notes.calendar, looks)));
            REQUIRE(namesIn(*found) == namesSorted(notes, looks));
        }
    }
}

TEST_CASE("a note that has not changed is not made anew") {
    base::InlineExecutor here;
    tests::NotesInMemory notes;
    for (int index = 0; index < 300; ++index) {
        notes.setGeneral(std::to_string(index) + ".txt",
                         tests::MemoryNote{"# A\n* b\n", index % 7});
    }
    search::SearchableNotes kept(here, names, utcTime);
    const search::NoteLooks looks{base::SortType::modified, 2019y / 3 / 5, {}};
    std::set<search::NotesInOrder::Pointer> before;
    kept.of(notes.general, notes.calendar, looks)->forEach([&](const auto& note) {
        before.insert(note);
    });
    notes.setGeneral("17.txt", tests::MemoryNote{"# Z\n", 3});
    std::vector<std::string> made;
    kept.of(notes.general, notes.calendar, looks)->forEach([&](const auto& note) {
        if (!before.contains(note)) {
            made.emplace_back(note->filename);
        }
    });
    CHECK(made == std::vector<std::string>{"17.txt"});
}
