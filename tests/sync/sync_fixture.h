// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "store/cloud_note.h"
#include "store/store_fixture.h"
#include "support/manual_main_queue.h"
#include "support/scripted_query.h"
#include "sync/cloud_sync.h"

namespace tessaly::tests {

/// A sync client that says and does what the test wants, and keeps what it was asked for.
class ScriptedDownloads final : public ports::CloudDownloads {
public:
    using State = base::Result<ports::DownloadState>;
    using Answer = base::Result<base::Done>;

    State nextState = ports::DownloadState{};
    Answer nextAnswer = base::Done{};
    std::vector<std::string> requested;

    State state(const std::string& /*file*/) override { return nextState; }
    Answer request(const std::string& file) override {
        requested.push_back(file);
        return nextAnswer;
    }
};

/// One line for what happened to a note: "+Notes/a.txt", with "/" behind a folder, and "!" behind a
/// note with conflicts.
inline std::string toldText(const store::CloudNote& note, std::string_view root) {
    static const std::string signs = "-+~?";
    std::string text(1, signs.at(static_cast<std::size_t>(note.update)));
    text += note.url.starts_with(root) ? note.url.substr(root.size() + 1) : note.url;
    return text + (note.isFolder ? "/" : "") + (note.hasConflicts ? "!" : "");
}

inline const char* kindName(store::CloudBatch::Kind kind) {
    switch (kind) {
        case store::CloudBatch::Kind::ahead: return "ahead:";
        case store::CloudBatch::Kind::all: return "all:";
        case store::CloudBatch::Kind::later: break;
    }
    return "later:";
}

/// A real folder that is watched; the main queue's time passes when told, and batches are worked on
/// as soon as they are due.
struct SyncFixture {
    StoreFixture store;
    ManualMainQueue mainQueue;
    ScriptedQuery query;
    ScriptedDownloads downloads;
    std::map<std::string, std::string> known;  ///< texts by path, "Notes/a.txt"
    std::vector<store::CloudBatch> batches;
    std::unique_ptr<sync::CloudSync> sync;

    explicit SyncFixture(StoreFixture::Root root = StoreFixture::Root::named) : store(root) {
        sync = std::make_unique<sync::CloudSync>(tools());
        sync->addListener([this](const store::CloudBatch& batch) { batches.push_back(batch); });
    }

    sync::CloudSync::Tools tools() {
        return {.store = store.store,
                .cloudQuery = query,
                .mainQueue = mainQueue,
                .downloads = downloads,
                .clock = store.clock,
                .executor = store.executor,
                .knownText = [this](base::NoteType type, std::string_view filename) {
                    return held(std::string(base::folderName(type)).append("/").append(filename));
                }};
    }

    /// A text that is known, of the file as it is dated now.
    std::optional<store::KnownText> held(const std::string& path) {
        const auto text = known.find(path);
        const auto file = store.files.read(folder() / ("data/" + path));
        return text == known.end() || !file
                   ? std::nullopt
                   : std::optional(
                         store::KnownText{base::SharedText(text->second), file->stamp.modified});
    }

    const TempFolder& folder() const { return store.folder; }

    /// Writes below the data folder, and lets the query notice.
    void write(const std::string& path, std::string_view bytes) {
        folder().write("data/" + path, bytes);
        query.notice(path);
    }

    void pass(std::chrono::nanoseconds time) { mainQueue.advance(time); }

    /// Begins to watch, and forgets what the first batches told.
    void start() {
        sync->start();
        pass(sync::CloudSync::quietTime);
        batches.clear();
    }

    /// What was told since it was last asked; batches are divided by " | ".
    std::string told() {
        std::string text;
        for (const store::CloudBatch& batch : std::exchange(batches, {})) {
            text += text.empty() ? "" : " | ";
            text += kindName(batch.kind);
            for (const store::CloudNote& note : batch.notes) {
                text += " " + toldText(note, batch.root);
            }
        }
        return text;
    }

    /// The same after the next batch, which a refresh may put off once.
    std::string toldThen() {
        pass(2 * sync::CloudSync::quietTime);
        return told();
    }
};

}  // namespace tessaly::tests
