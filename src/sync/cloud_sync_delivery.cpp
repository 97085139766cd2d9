// SPDX-License-Identifier: MIT
#include <algorithm>
#include <iterator>
#include <tuple>
#include <utility>

#include "store/entry_role.h"
#include "store/note_document.h"
#include "store/note_names.h"
#include "store/paths.h"
#include "sync/cloud_sync.h"

namespace tessaly::sync {
namespace {

using base::NoteType;
using store::CloudBatch;
using store::CloudNote;

bool comesBefore(const CloudNote& a, const CloudNote& b) {
    return std::tie(a.update, a.url) < std::tie(b.update, b.url);
}

bool isGeneral(const CloudNote& note, std::string_view root) {
    if (note.base != NoteType::note) {
        return false;
    }
    const std::string_view name = store::filenameOf(note, root);
    return !name.starts_with('_') && name.find("/_") == name.npos;
}

}  // namespace

void CloudSync::deliverNextDays(const Survey& survey) {
    Looks looks;
    const std::string folder(base::folderName(NoteType::calendar));
    const base::Day today = _tools.clock.today();
    for (int i = 0; i < daysAhead; ++i) {
        looks.addHint({store::joined(folder, store::calendarFilename(base::addDays(today, i)))});
    }
    CloudBatch batch{_root, {}, CloudBatch::Kind::ahead};
    const Survey::Found found = survey.look(looks);
    for (const auto& days : found.names) {
        for (const auto& [name, entry] : days.names) {
            if (entry && !entry->isPlaceholder &&
                store::entryRole(*entry) == store::EntryRole::note) {
                batch.notes.push_back({name, NoteType::calendar, store::UpdateType::added,
                                       entry->stamp.modified,
                                       store::joined(store::joined(_root, folder), name)});
            }
        }
    }
    deliver(batch);
}

// The general notes, and then these with all others.
void CloudSync::deliverFirst(std::vector<CloudNote> notes) {
    std::sort(notes.begin(), notes.end(), comesBefore);
    const auto others =
        std::stable_partition(notes.begin(), notes.end(),
                              [this](const CloudNote& note) { return isGeneral(note, _root); });
    const auto generalCount = others - notes.begin();
    std::vector<CloudNote> rest(std::make_move_iterator(others),
                                std::make_move_iterator(notes.end()));
    notes.erase(others, notes.end());
    CloudBatch batch{_root, std::move(notes), CloudBatch::Kind::ahead};
    deliver(batch);
    std::move(rest.begin(), rest.end(), std::back_inserter(batch.notes));
    std::inplace_merge(batch.notes.begin(), batch.notes.begin() + generalCount, batch.notes.end(),
                       comesBefore);
    batch.kind = CloudBatch::Kind::all;
    deliver(batch);
}

std::vector<CloudNote> CloudSync::trulyChanged(std::vector<CloudNote> doubtful) {
    std::vector<char> hasOther(doubtful.size());
    base::parallelFor(_tools.executor, doubtful.size(), [&](std::size_t index) {
        hasOther[index] = hasOtherText(doubtful[index]) ? 1 : 0;
    });
    std::vector<CloudNote> changed;
    for (std::size_t index = 0; index < doubtful.size(); ++index) {
        if (hasOther[index] != 0) {
            changed.push_back(std::move(doubtful[index]));
        }
    }
    return changed;
}

bool CloudSync::hasOtherText(const CloudNote& note) {
    // Of what lies in the trash nobody holds the text, nor of a filter, which is read when used.
    if (note.base == NoteType::trash || note.base == NoteType::filters) {
        return false;
    }
    const auto known = _tools.knownText
                           ? _tools.knownText(note.base, store::filenameOf(note, _root))
                           : std::nullopt;
    if (!known || known->modified != note.contentChangedDate) {
        return true;
    }
    const auto read = _tools.store.files().read(note.url);
    return read && store::decodedText(read->bytes).value_or("") != known->text.view();
}

void CloudSync::deliverLater(std::vector<CloudNote> notes) {
    std::sort(notes.begin(), notes.end(), comesBefore);
    deliver({_root, std::move(notes), CloudBatch::Kind::later});
}

void CloudSync::deliver(const CloudBatch& batch) {
    // That there is nothing at all must be told, too.
    if (batch.notes.empty() && batch.kind != CloudBatch::Kind::all) {
        return;
    }
    for (const store::CloudSyncListener& listener : listeners) {
        listener(batch);
    }
}

void CloudSync::askForDownloads(const CurrentNotes::Differences& differences, const Due& due) {
    for (const std::string& file : differences.placeholdersGone) {
        _downloads.forget(file);
    }
    std::vector<std::string> files = differences.placeholders;
    const auto add = [&files](std::vector<std::string> more) {
        std::move(more.begin(), more.end(), std::back_inserter(files));
    };
    if (due.areDownloadsDue) {
        add(_downloads.unanswered());
    }
    if (due.looks.isEverything()) {
        add(_downloads.waiting());
    }
    _areDownloadsLeft = _downloads.ask(files);
    if (_areDownloadsLeft) {
        requestUpdate();
    }
}

}  // namespace tessaly::sync
