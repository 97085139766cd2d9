// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/executor.h"
#include "base/shared_text.h"
#include "store/cached_notes.h"
#include "store/changed_files.h"
#include "store/data_store.h"
#include "store/finished_repeats.h"
#include "store/named_notes.h"
#include "store/note_task_counts.h"
#include "store/tag_index.h"

namespace tessaly::store {

/// One update of the collections: what is found at some names, laid over the state before it.
/// Changes neither that nor any file, but for the strays that it merges. One thread.
class NoteUpdate {
public:
    /// All outlive the update. `root` is resolved.
    struct Tools {
        DataStore& store;
        base::Executor& executor;
        const CountSettings& settings;
        const std::string& root;
    };

    NoteUpdate(Tools tools, CacheState before);

    /// Looks at the files and folders named, in any order, and takes over what is there.
    void lookAt(std::vector<NamedNote> names, Expected expected);
    /// The same for all that there is: what is held and not named is looked at, too.
    void lookAtAll(std::vector<NamedNote> names);

    /// Merges the strays that have come or changed into their days' notes, and looks at both.
    void mergeStrays();

    /// Completed repeats in the notes whose content has changed, by note.
    std::vector<FinishedRepeat> finishedRepeats() const;

    /// What the counts of general notes' tasks depend on, and has changed.
    ChangedTasks changedTasks() const;
    /// Takes over the counts of days, none of which is named twice.
    void countNoteTasksOf(const NoteTaskCounts& counts, const std::vector<base::Day>& days);

    /// A note that came, went or changed in content or date.
    using NoteId = std::pair<base::NoteType, std::string>;
    std::vector<NoteId> changedNotes() const;

    /// What a note held whose content has changed, or which is gone; never empty.
    struct TextBefore {
        NoteId note;
        base::SharedText text;
    };
    std::vector<TextBefore> textsBefore() const;

    /// What became of the collections; each null: nothing.
    std::vector<GeneralNotes::Change> generalChanges() const;
    std::vector<CalendarNotes::Change> calendarChanges() const;
    std::shared_ptr<const StrayNotes> strays() const { return _strays; }
    /// Whether readers of the calendar notes see a difference: not if only a file's stamp is
    /// another.
    bool isCalendarChanged() const;
    void addTagDifferences(TagDifferences& atTags, TagDifferences& hashTags) const;

private:
    /// An item as it was and as it is; null: not there.
    template <class Pointer>
    struct Change {
        Pointer before;
        Pointer after;
    };
    using DayChange = Change<CalendarNotes::Pointer>;

    HeldNote heldNote(base::NoteType type, std::string_view filename) const;
    CalendarNotes::Pointer heldDay(base::Day day) const;
    void setGeneral(const FoundNote& found, GeneralNotes::Pointer note);
    void setDay(base::Day day, const CalendarNotes::Pointer& held, CalendarNote note);

    void lookInOrder(std::vector<NamedNote> names, Expected expected);
    void enterGeneral(const FoundNote& found, GeneralNotes::Pointer read);
    void enterDay(const FoundNote& found, base::Day day, const CalendarNotes::Pointer& read);
    bool isStrayChanged(const std::string& filename) const;
    void enterStray(const FoundNote& found);
    void enterAll(const std::vector<FoundNote>& found);
    void setCounts(base::Day day, const CalendarNotes::Pointer& held,
                   NoteTaskCounts::Counts counts);

    const Tools _tools;
    const CacheState _before;
    std::map<std::string, Change<GeneralNotes::Pointer>, std::less<>> _generalNotes;
    std::map<base::Day, DayChange> _days;
    std::shared_ptr<const StrayNotes> _strays;  // null: unchanged
    std::set<std::string> _changedStrays;
};

}  // namespace tessaly::store
