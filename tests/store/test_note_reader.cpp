// SPDX-License-Identifier: MIT
#include <atomic>
#include <condition_variable>
#include <filesystem>
#include <memory>
#include <mutex>
#include <random>
#include <set>
#include <string>
#include <unistd.h>

#include <doctest/doctest.h>
#include <sys/stat.h>

#include "base/inline_executor.h"
#include "base/temporary_name.h"
#include "base/thread_pool.h"
#include "base/utf8.h"
#include "store/note_names.h"
#include "store/note_reader.h"
#include "store_fixture.h"

using namespace tessaly;
using base::NoteType;
using store::NoteReader;
using Lines = std::multiset<std::string>;
namespace fs = std::filesystem;

namespace {

/// What a reading delivered: a line a file, folder and passed-over entry.
struct Reading {
    Lines files;
    Lines folders;
    Lines skipped;
    store::ReadReport report;
};

std::string line(NoteType type, std::string_view name) {
    return std::string(base::folderName(type)) + "/" + std::string(name);
}

Reading readAll(const store::DataStore& store, base::Executor& executor,
                NoteReader::Options options = {}) {
    NoteReader reader(store, executor);
    std::vector<Reading> parts(reader.workers());
    const auto busy = std::make_unique<std::atomic<bool>[]>(reader.workers());
    std::atomic<int> overlaps = 0;
    options.visitFolder = [&](std::size_t worker, NoteType type, std::string_view folder) {
        parts[worker].folders.insert(line(type, folder));
    };
    Reading whole;
    whole.report = reader.readAll(options, [&](std::size_t worker, const store::NoteFile& file) {
        overlaps += busy[worker].exchange(true) ? 1 : 0;
        CHECK(file.stamp.size == file.bytes.size());
        parts[worker].files.insert(line(file.type, file.filename) + ": " + std::string(file.bytes));
        busy[worker] = false;
    });
    CHECK(overlaps == 0);
    for (Reading& part : parts) {
        whole.files.merge(part.files);
        whole.folders.merge(part.folders);
    }
    for (const auto& skipped : whole.report.skipped) {
        whole.skipped.insert(skipped.path);
    }
    return whole;
}

/// The same by a plain walk with the standard library.
void walkPlainly(const fs::path& root, const fs::path& folder, const tests::TempFolder& temp,
                 Reading& found) {
    for (const auto& entry : fs::directory_iterator(folder)) {
        const std::string name = entry.path().filename();
        const std::string path = entry.path().lexically_relative(root);
        const bool isNote = store::isNoteFilename(name);
        if (name[0] == '.' || name == "_attachments") {
            continue;
        }
        const auto status = fs::symlink_status(entry);
        if (fs::is_symlink(status)) {
            std::error_code ignored;
            if (isNote || fs::is_directory(entry.path(), ignored)) {
                found.skipped.insert(base::toUtf8(base::toUtf16(path)));
            }
            continue;
        }
        const bool isFolder = fs::is_directory(status);
        if (!isFolder && !isNote) {
            continue;
        }
        if (!base::isUtf8(name)) {
            found.skipped.insert(base::toUtf8(base::toUtf16(path)));
        } else if (isFolder) {
            found.folders.insert(path);
            walkPlainly(root, entry, temp, found);
        } else if (fs::is_regular_file(status)) {
            found.files.insert(path + ": " + temp.read("data/" + path));
        } else {
            found.skipped.insert(path);
        }
    }
}

/// Fills `folder` (relative) with a random mixture of all that a notes folder may hold.
void grow(const tests::TempFolder& temp, const std::string& folder, std::mt19937& random,
          int depth) {
    static const std::vector<std::string> names{
        "a.txt",      "b.md",    "c.txt~",      ".hidden.txt", "image.png", "x.txt",
        "_Ideas.txt", "caf\xE9", "caf\xE9.txt", "caf\xE9.png", ".hidden",   "_attachments",
        "sub",        "f.txt",   "n\xC3\xA4he", "m\xC3\xB6.md"};
    static const std::vector<std::string> targets{
        "a.txt", "sub",     "../../outside/o.txt", "../../outside",
        "..",    "nowhere", ".hidden.txt",         "../../data-b/o.txt"};
    temp.mkdir(folder);
    for (const std::string& name : names) {
        const std::string path = folder + "/" + name;
        switch (random() % 8) {
            case 0: break;
            case 1: temp.link(path, targets[random() % targets.size()]); break;
            case 2:
            case 3:
                if (depth > 0) {
                    grow(temp, path, random, depth - 1);
                }
                break;
            case 4: ::mkfifo((temp / path).c_str(), 0600); break;
            default: temp.write(path, std::string(random() % 50, 'x') + path);
        }
    }
}

std::string printed(const Reading& reading) {
    std::string text;
    for (const auto* lines : {&reading.files, &reading.folders, &reading.skipped}) {
        for (const std::string& entry : *lines) {
            text += entry + "\n";
        }
        text += "--\n";
    }
    return text;
}

}  // namespace

TEST_CASE("every executor reads what a plain walk finds") {
    for (unsigned seed = 1; seed <= 8; ++seed) {
        CAPTURE(seed);
        tests::StoreFixture fixture;
        std::mt19937 random(seed);
        fixture.folder.write("outside/o.txt", "outside");
        fixture.folder.write("data-b/o.txt", "beside");
        grow(fixture.folder, "data/Notes", random, 2);
        grow(fixture.folder, "data/Calendar", random, 1);
        Reading plain;
        const fs::path root = fs::canonical(fixture.root);
        walkPlainly(root, root / "Notes", fixture.folder, plain);
        walkPlainly(root, root / "Calendar", fixture.folder, plain);

        base::InlineExecutor alone;
        CHECK(printed(readAll(fixture.store, alone)) == printed(plain));
        for (const std::size_t threads : {1U, 3U}) {
            CAPTURE(threads);
            base::ThreadPool pool(threads);
            CHECK(printed(readAll(fixture.store, pool)) == printed(plain));
        }
    }
}

TEST_CASE("a folder of many files is read in pieces, each file once") {
    tests::StoreFixture fixture;
    Lines expected;
    std::uint64_t bytes = 0;
    for (int i = 0; i < 1000; ++i) {
        const std::string name = std::to_string(i) + ".txt";
        fixture.folder.write("data/Calendar/" + name, name);
        expected.insert("Calendar/" + name + ": " + name);
        bytes += name.size();
    }
    base::ThreadPool pool(3);
    std::vector<std::size_t> told;
    NoteReader::Options options;
    options.progress = [&](std::size_t files) { told.push_back(files); };
    const Reading reading = readAll(fixture.store, pool, options);
    CHECK(reading.files == expected);
    CHECK(reading.report.files == 1000);
    CHECK(reading.report.bytes == bytes);
    CHECK(std::is_sorted(told.begin(), told.end()));
}

TEST_CASE("a busy pool leaves the reading to the caller") {
    tests::StoreFixture fixture;
    for (int i = 0; i < 300; ++i) {
        fixture.folder.write(
            "data/Notes/" + std::to_string(i % 7) + "/" + std::to_string(i) + ".md", "");
    }
    std::size_t files = 0;
    {
        base::ThreadPool pool(1);
        // From inside the pool's only thread: nobody else can ever start.
        pool.post([&] { files = readAll(fixture.store, pool).files.size(); });
    }
    CHECK(files == 300);
}

TEST_CASE("a cancelled reading ends soon and says so") {
    tests::StoreFixture fixture;
    for (int i = 0; i < 500; ++i) {
        fixture.folder.write("data/Notes/" + std::to_string(i) + ".txt", "");
    }
    base::ThreadPool pool(2);
    NoteReader reader(fixture.store, pool);
    std::atomic<bool> cancelled = false;
    std::atomic<std::size_t> visited = 0;
    NoteReader::Options options;
    options.cancelled = &cancelled;
    const auto report = reader.readAll(options, [&](std::size_t, const store::NoteFile&) {
        if (++visited == 10) {
            cancelled = true;
        }
    });
    CHECK(report.cancelled);
    CHECK(report.files == visited);
    // The other workers may each have been past the question once.
    CHECK(visited <= 10 + reader.workers() - 1);

    const auto none =
        reader.readAll(options, [&](std::size_t, const store::NoteFile&) { FAIL(""); });
    CHECK(none.cancelled);
    CHECK(none.files == 0);
}

TEST_CASE("a kind's folder may be missing, and is not followed out of the data folder") {
    tests::StoreFixture fixture;
    base::InlineExecutor alone;
    CHECK(printed(readAll(fixture.store, alone)) == printed({}));
    fixture.folder.write("elsewhere/o.txt", "outside");
    fixture.folder.mkdir("data");
    fixture.folder.link("data/Notes", "../elsewhere");
    fixture.folder.write("data/Calendar", "a file in the way");
    const Reading reading = readAll(fixture.store, alone);
    CHECK(reading.files.empty());
    CHECK(reading.skipped == Lines{"Calendar", "Notes"});
}

TEST_CASE("conflict copies beside their originals are reported, not delivered") {
    tests::StoreFixture fixture;
    const auto& folder = fixture.folder;
    const std::string temporary = base::temporaryName("Plans.txt");
    for (const std::string& name : {
             std::string("Calendar/20190305.txt"),
             std::string("Calendar/20190305.sync-conflict-20190306-101010-ABCDEFG.txt"),
             std::string("Calendar/20190305 2.txt"),
             std::string("Notes/Plans.txt"),
             std::string("Notes/Plans (Ann's conflicted copy 2019-03-06).txt"),
             std::string("Notes/" + temporary),
             std::string("Notes/photo (conflicted).png"),
             // Composed here, decomposed there.
             std::string("Notes/Caf\xC3\xA9.md"),
             std::string("Notes/Cafe\xCC\x81 (conflicted).md"),
             // The original is missing, no file, in another folder or not downloaded.
             std::string("Notes/Gone (conflicted).txt"),
             std::string("Notes/Set (conflicted).txt"),
             std::string("Notes/Set.txt/inner.txt"),
             std::string("Notes/sub/Plans (conflicted).txt"),
             std::string("Notes/sub/Cloudy (conflicted).txt"),
             std::string("Notes/sub/Cloudy.txt.nextcloud"),
             std::string("Notes/sub/bad \xE9.txt"),
             std::string("Notes/sub/bad \xE9 (conflicted).txt"),
             // No notes by their own names, so that nobody would see them.
             std::string("Notes/Both.md..path1"),
             std::string("Notes/Both.conflict1.md..path2"),
             std::string("Notes/sub/Plans.txt.conflicted"),
             std::string("Notes/photo.png..path1"),
         }) {
        folder.write("data/" + name, "");
    }
    for (const std::size_t threads : {1U, 3U}) {
        base::ThreadPool pool(threads);
        const Reading reading = readAll(fixture.store, pool);
        CHECK(reading.files ==
              Lines{"Calendar/20190305 2.txt: ", "Calendar/20190305.txt: ",
                    "Notes/Caf\xC3\xA9.md: ", "Notes/Gone (conflicted).txt: ", "Notes/Plans.txt: ",
                    "Notes/Set (conflicted).txt: ", "Notes/Set.txt/inner.txt: ",
                    "Notes/sub/Cloudy (conflicted).txt: ", "Notes/sub/Plans (conflicted).txt: "});
        std::string copies;
        for (const store::ConflictCopy& copy : reading.report.conflictCopies) {
            copies += copy.path + " | " + copy.original + " | " + copy.device + " | " +
                      std::string(copy.client) + "\n";
        }
        CHECK(copies ==
              "Calendar/20190305.sync-conflict-20190306-101010-ABCDEFG.txt"
              " | Calendar/20190305.txt | ABCDEFG | Syncthing\n"
              "Notes/Both.conflict1.md..path2 | Notes/Both.md |  | rclone\n"
              "Notes/Both.md..path1 | Notes/Both.md |  | rclone\n"
              "Notes/Cafe\xCC\x81 (conflicted).md | Notes/Caf\xC3\xA9.md |  | pCloud\n"
              "Notes/Plans (Ann's conflicted copy 2019-03-06).txt"
              " | Notes/Plans.txt | Ann | Dropbox\n"
              "Notes/sub/Plans.txt.conflicted | Notes/sub/Plans.txt |  | pCloud\n");
        CHECK(reading.report.temporaries == std::vector<std::string>{"Notes/" + temporary});
        CHECK(reading.skipped == Lines{"Notes/sub/Cloudy.txt.nextcloud",
                                       "Notes/sub/bad \xEF\xBF\xBD (conflicted).txt",
                                       "Notes/sub/bad \xEF\xBF\xBD.txt"});
        CHECK(reading.report.files == reading.files.size());
    }
}
