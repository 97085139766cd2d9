// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <initializer_list>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/log.h"
#include "store/note_cache.h"
#include "store_fixture.h"

namespace tessaly::tests {

using Kind = store::CloudBatch::Kind;

inline store::CloudNote cloudNote(const std::string& root, std::string_view path,
                                  store::UpdateType update) {
    store::CloudNote note;
    note.url = root + "/" + std::string(path);
    note.filename = path.substr(path.rfind('/') + 1);
    note.base = base::noteTypeOfFolder(path.substr(0, path.find('/')));
    note.update = update;
    return note;
}

inline store::CloudBatch batchOf(const std::string& root, const std::vector<std::string>& paths,
                                 Kind kind = Kind::later,
                                 store::UpdateType update = store::UpdateType::changed) {
    store::CloudBatch batch{root, {}, kind};
    for (const std::string& path : paths) {
        batch.notes.push_back(cloudNote(root, path, update));
    }
    return batch;
}

/// Everything that a cache holds, in words.
inline std::string describe(const store::NoteCache& cache) {
    std::ostringstream text;
    cache.generalNotes()->forEach([&](const auto& item) {
        const store::LoadedNote& note = item->note;
        text << note.filename << (note.isFolder ? "/" : "=" + std::string(note.content.view()))
             << '|' << note.title << '|' << note.datedLines.size() << '\n';
    });
    cache.calendarNotes()->forEach([&](const auto& item) {
        const store::NoteModel& model = item->model;
        text << base::fileText(*model.date) << (item->stamp ? "=" : "-") << item->content.view()
             << '|' << int(model.numOpenTodos) << int(model.numDoneTodos) << '|'
             << int(model.numOpenNoteTodos) << int(model.numDoneNoteTodos) << '\n';
    });
    for (const auto& tags : {cache.lineAtTags(), cache.lineHashTags()}) {
        tags->forEach([&](const auto& tag) { text << tag->tag << ':' << tag->notes << ' '; });
    }
    for (const std::string& stray : cache.strays()) {
        text << "stray " << stray << '\n';
    }
    return text.str();
}

/// Writes down what it is told.
class Told final : public store::CacheListener, public store::TagUpdateDelegate {
public:
    explicit Told(std::vector<std::string>& lines, std::string name = "told")
        : _lines(lines), _name(std::move(name)) {}

    void cacheChanged(const store::CacheChanges& changes) override {
        std::string line = _name + (changes.generalNotes ? " general" : "") +
                           (changes.calendarNotes ? " calendar" : "") +
                           (changes.lineAtTags ? " @" : "") + (changes.lineHashTags ? " #" : "");
        for (const auto& note : changes.notes) {
            line.append(" ").append(base::folderName(note.type)).append("/").append(note.filename);
        }
        _lines.push_back(line);
    }
    void tagsChanged() override { _lines.push_back(_name + " tags"); }

private:
    std::vector<std::string>& _lines;
    const std::string _name;
};

/// A data folder and a cache of it.
struct CacheFixture : StoreFixture {
    store::CountSettings settings;
    store::RepeatHook onRepeat;
    std::vector<std::string> lines;
    Told told{lines};
    std::unique_ptr<store::NoteCache> cache;

    explicit CacheFixture(std::initializer_list<std::pair<const char*, std::string>> notes,
                          Root which = Root::named)
        : StoreFixture(which) {
        base::setRoutineLog(false);
        for (const auto& [path, text] : notes) {
            folder.write(std::string("data/") + path, text);
        }
    }

    ~CacheFixture() { base::setRoutineLog(true); }

    std::unique_ptr<store::NoteCache> made(base::Executor& on) {
        return std::make_unique<store::NoteCache>(store::NoteCache::Tools{
            store, on, clock, [this] { return settings; },
            [this](const store::FinishedRepeat& found) { return onRepeat && onRepeat(found); }});
    }

    void load() {
        cache = made(executor);
        cache->load();
        cache->addListener(told);
        cache->setTagUpdateDelegate(&told);
        lines.clear();
    }

    void update(const std::vector<std::string>& paths, Kind kind = Kind::later) {
        cache->onCloudUpdate(batchOf(root, paths, kind));
    }

    /// What a cache holds that has just been loaded.
    std::string freshLoad() {
        const auto fresh = made(executor);
        fresh->load();
        return describe(*fresh);
    }
};

}  // namespace tessaly::tests
