// SPDX-License-Identifier: MIT
#include <doctest/doctest.h>

#include "cli/watch_lines.h"
#include "cli/watch_notices.h"

using namespace tessaly;
using namespace std::chrono_literals;
using base::NoteType;
using cli::Terminal;
using store::CloudNote;
using store::UpdateType;

namespace {

constexpr const char* root = "/home/me/My data";

CloudNote noteAt(const std::string& path, NoteType type, UpdateType update) {
    CloudNote note;
    note.filename = path.substr(path.rfind('/') + 1);
    note.base = type;
    note.update = update;
    note.url = std::string{root} + "/" + path;
    note.contentChangedDate = base::Instant{1551794853s};
    return note;
}

}  // namespace

TEST_CASE("a line tells what happened to which file, and steers no terminal") {
    struct Row {
        const char* path;
        NoteType type;
        UpdateType update;
        bool hasConflicts;
        bool isFolder;
        const char* line;
    };
    for (const Row& row : {
             Row{"Notes/Plans.txt", NoteType::note, UpdateType::added, false, false,
                 "added    Notes/Plans.txt"},
             Row{"Notes/Work/Plans.txt", NoteType::note, UpdateType::changed, true, false,
                 "conflict Notes/Work/Plans.txt"},
             Row{".Trash/Plans.txt", NoteType::trash, UpdateType::deleted, true, false,
                 "deleted  .Trash/Plans.txt"},
             Row{"Notes/Work", NoteType::note, UpdateType::changed, false, true,
                 "changed  Notes/Work/"},
             Row{"Notes", NoteType::note, UpdateType::deleted, false, true, "deleted  Notes/"},
             Row{"Notes/a\x1b[31m\nb.txt", NoteType::note, UpdateType::added, false, false,
                 "added    Notes/a^[[31m b.txt"},
         }) {
        CloudNote note = noteAt(row.path, row.type, row.update);
        note.hasConflicts = row.hasConflicts;
        note.isFolder = row.isFolder;
        CHECK(cli::drawn(cli::watchLine(note, root), Terminal{}) == row.line);
    }
}

TEST_CASE("a record has every field, its path and its URL") {
    CloudNote note = noteAt("Notes/50 %\xc3\xa9?.txt", NoteType::note, UpdateType::changed);
    note.hasConflicts = true;
    CHECK(cli::recordOf(note, root, 3).text() ==
          "{\"update\":\"changed\",\"filename\":\"50 %\xc3\xa9?.txt\",\"base\":\"note\","
          "\"path\":\"Notes/50 %\xc3\xa9?.txt\",\"contentChangedDate\":\"2019-03-05T14:07:33Z\","
          "\"url\":\"file:///home/me/My%20data/Notes/50%20%25%C3%A9%3F.txt\","
          "\"hasConflicts\":true,\"isFolder\":false,\"batch\":3}");
}

TEST_CASE("a notice gives the reason and the pause") {
    using Cause = ports::WatchState::Cause;
    const auto notice = [](Cause cause, std::string description, std::chrono::nanoseconds pause) {
        ports::WatchState state;
        state.cause = cause;
        state.description = std::move(description);
        return cli::watchNotice({state, pause});
    };
    CHECK(notice(Cause::blindFileSystem, "/mnt/\x1b: FUSE", 5s) ==
          "the file system does not report what other machines change (/mnt/^[: FUSE); "
          "looking for changes every 5 seconds instead");
    CHECK(notice(Cause::noWatchesLeft, "no space", 400ms) ==
          "not all folders can be watched: the kernel's limit, fs.inotify.max_user_watches, is "
          "used up; looking for changes every second instead");
    CHECK(notice(Cause::none, "", 5s) == "all folders report their changes again");
}
