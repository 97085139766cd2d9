// SPDX-License-Identifier: MIT
#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <doctest/doctest.h>
#include <sys/xattr.h>

#include "base/inline_executor.h"
#include "base/thread_pool.h"
#include "platform/posix_cache_files.h"
#include "store/day_tasks.h"
#include "store/note_index_writer.h"
#include "store/note_reader.h"
#include "store_fixture.h"

using namespace tessaly;
using base::NoteType;
using store::NoteReader;
using Lines = std::multiset<std::string>;
using Wanted = NoteReader::Wanted;
namespace fs = std::filesystem;

namespace {

constexpr std::string_view damagedText = "not as it was";

/// A data folder with an index of its notes.
class IndexedFolder {
public:
    /// What a reading delivered: a line a folder, and a line a note of its tasks and one of its
    /// text unless it was left out.
    struct Reading {
        Lines tasks;
        Lines texts;
        store::ReadReport report;
    };

    const tests::TempFolder& folder() const { return _fixture.folder; }

    void index() {
        const auto later = std::chrono::system_clock::now() + std::chrono::hours(1);
        auto writer =
            store::NoteIndexWriter::begin(_cache, _file, _key, later, std::chrono::milliseconds{0});
        REQUIRE(writer);
        std::mutex mutex;
        NoteReader reader(_fixture.store, _pool);
        reader.readAll({}, [&](std::size_t, const store::NoteFile& file) {
            const std::scoped_lock lock(mutex);
            grammar::NoteScanner scanner;
            const std::string record = store::DayTasks::record(file.type, file.filename, file.bytes,
                                                               _key.markers, scanner);
            (*writer)->add({file.type, file.filename, file.bytes, file.stamp, record});
        });
        REQUIRE((*writer)->finish());
        open();
        // Some file systems' clocks stand still for a moment; what is changed in it looks the same.
        std::this_thread::sleep_for(std::chrono::milliseconds{25});
    }

    void damage(std::string_view text) {
        std::string bytes = folder().read("index");
        const std::size_t at = bytes.find(text);
        REQUIRE(at != bytes.npos);
        bytes.replace(at, damagedText.size(), damagedText);
        folder().write("index", bytes);
        open();
    }

    Reading plain() { return read(nullptr, Wanted::text); }
    Reading indexed(Wanted wanted) { return read(_index, wanted); }

private:
    void open() {
        auto index = store::NoteIndex::open(_cache, _file, _key);
        REQUIRE(index);
        _index = *std::move(index);
    }

    Reading read(std::shared_ptr<const store::NoteIndex> index, Wanted wanted) {
        NoteReader reader(_fixture.store, _pool, std::move(index));
        std::mutex mutex;
        Reading reading;
        NoteReader::Options options;
        options.wanted = wanted;
        options.visitFolder = [&](std::size_t, NoteType, std::string_view name) {
            const std::scoped_lock lock(mutex);
            reading.tasks.insert(std::string(name) + "/");
        };
        reading.report = reader.readAll(options, [&](std::size_t, const store::NoteFile& file) {
            const std::scoped_lock lock(mutex);
            const std::string name =
                std::string(base::folderName(file.type)) + "/" + std::string(file.filename) + ": ";
            reading.tasks.insert(name + tasksOf(file));
            if (!file.record) {
                CHECK(file.bytes.size() == file.stamp.size);
                reading.texts.insert(name + std::string(file.bytes));
            }
        });
        return reading;
    }

    // Every file's tasks, whichever way they came.
    std::string tasksOf(const store::NoteFile& file) const {
        store::DayTasks tasks;
        if (file.record) {
            CHECK(tasks.addRecord(file.type, file.filename, *file.record));
        } else {
            grammar::NoteScanner scanner;
            tasks.add(file.type, file.filename, file.bytes, _key.markers, scanner);
        }
        std::string text;
        base::InlineExecutor executor;
        for (const auto& task : tasks.overdue(std::chrono::year{2100} / 1 / 1, executor).tasks) {
            text += task.todo.title + "|" + task.todo.base + "|";
        }
        return text;
    }

    tests::StoreFixture _fixture;
    platform::PosixCacheFiles _cache;
    base::ThreadPool _pool{2};
    const std::string _file = _fixture.folder / "index";
    const store::NoteIndex::Key _key{_fixture.root, {}};
    std::shared_ptr<const store::NoteIndex> _index;
};

std::string printed(const store::ReadReport& report) {
    std::string text = std::to_string(report.files) + " files, " + std::to_string(report.bytes) +
                       " bytes" + (report.cancelled ? ", cancelled" : "") + "\n";
    for (const auto& skipped : report.skipped) {
        text += skipped.path + ": " + skipped.failure.description + "\n";
    }
    for (const auto& copy : report.conflictCopies) {
        text += copy.path + " of " + copy.original + "\n";
    }
    for (const auto& temporary : report.temporaries) {
        text += temporary + "\n";
    }
    return text;
}

std::string printed(const Lines& lines) {
    std::string text;
    for (const std::string& line : lines) {
        text += line + "\n";
    }
    return text;
}

/// Reading with the index must be as reading without, with so many files not opened.
void check(IndexedFolder& notes, std::size_t fromIndex) {
    const auto plain = notes.plain();
    CHECK(plain.report.fromIndex == 0);
    for (const Wanted wanted : {Wanted::text, Wanted::dayTasks}) {
        CAPTURE(wanted);
        const auto indexed = notes.indexed(wanted);
        CHECK(printed(indexed.report) == printed(plain.report));
        CHECK(indexed.report.fromIndex == fromIndex);
        CHECK(printed(indexed.tasks) == printed(plain.tasks));
        if (wanted == Wanted::text) {
            CHECK(printed(indexed.texts) == printed(plain.texts));
        } else {
            CHECK(indexed.texts.size() == plain.texts.size() - fromIndex);
        }
    }
}

// Gives a file its old date back, as some programs do.
void rewriteUnseen(const std::string& file, const std::function<void()>& rewrite) {
    const auto date = fs::last_write_time(file);
    rewrite();
    fs::last_write_time(file, date);
}

}  // namespace

TEST_CASE("what is changed after the index was written is read from its file") {
    const struct {
        std::string_view what;
        std::function<void(const tests::TempFolder& folder)> change;
        std::size_t fromIndex;  ///< of three
    } rows[]{
        {"nothing", [](const auto&) {}, 3},
        {"same size and date",
         [](const auto& folder) {
             rewriteUnseen(folder / "data/Notes/a.txt",
                           [&] { folder.write("data/Notes/a.txt", "* [x] a >2019-03-05\n"); });
         },
         2},
        {"another file of the same size and date",
         [](const auto& folder) {
             rewriteUnseen(folder / "data/Notes/a.txt", [&] {
                 const auto file = folder.write("data/Notes/.new", "* [x] a >2019-03-05\n");
                 fs::rename(file, folder / "data/Notes/a.txt");
             });
         },
         2},
        {"shorter", [](const auto& folder) { fs::resize_file(folder / "data/Notes/a.txt", 5); }, 2},
        {"emptied by a sync client",
         [](const auto& folder) {
             const std::string file = folder.write("data/Notes/a.txt", " ");
             const char mark[] = "nextcloud";
             if (::setxattr(file.c_str(), "user.nextcloud.hydrate_exec", mark, 9, 0) != 0) {
                 MESSAGE("no attributes here: looked at as an ordinary file");
             }
         },
         2},
        {"deleted", [](const auto& folder) { fs::remove(folder / "data/Notes/a.txt"); }, 2},
        {"under another note's name",
         [](const auto& folder) {
             fs::rename(folder / "data/Notes/a.txt", folder / "data/Notes/sub/b.md");
         },
         1},
        {"names exchanged",
         [](const auto& folder) {
             fs::rename(folder / "data/Notes/a.txt", folder / "data/Notes/spare");
             fs::rename(folder / "data/Notes/sub/b.md", folder / "data/Notes/a.txt");
             fs::rename(folder / "data/Notes/spare", folder / "data/Notes/sub/b.md");
         },
         1},
        {"a folder renamed",
         [](const auto& folder) {
             fs::rename(folder / "data/Notes/sub", folder / "data/Notes/other");
         },
         2},
        {"a link in its place",
         [](const auto& folder) {
             fs::rename(folder / "data/Notes/a.txt", folder / "moved.txt");
             folder.link("data/Notes/a.txt", "../../moved.txt");
         },
         2},
        {"beside its original",
         [](const auto& folder) { folder.write("data/Calendar/20190305.txt", "* late\n"); }, 2},
        {"damaged in the index", {}, 2},
    };
    for (const auto& row : rows) {
        CAPTURE(row.what);
        IndexedFolder notes;
        notes.folder().write("data/Notes/a.txt", "* [ ] a >2019-03-05\n");
        notes.folder().write("data/Notes/sub/b.md", "* [ ] b >2019-03-06\n");
        notes.folder().write("data/Calendar/20190305 (conflicted).txt", "* c\n");
        notes.index();
        if (row.change) {
            row.change(notes.folder());
            check(notes, row.fromIndex);
        } else {
            notes.damage("* [ ] a >2019-03-05\n");
            CHECK(printed(notes.indexed(Wanted::text).texts) == printed(notes.plain().texts));
            CHECK(notes.indexed(Wanted::text).report.fromIndex == row.fromIndex);
        }
    }
}

TEST_CASE("an index takes nothing away from a reading and adds nothing to it") {
    IndexedFolder notes;
    const auto& folder = notes.folder();
    folder.write("data/Notes/empty.txt", "");
    folder.write("data/Notes/bom.txt", "\xEF\xBB\xBF* [ ] >2019-03-05");
    folder.write("data/Notes/not UTF-8.md", "* \xE9 >2019-03-05");
    folder.write("data/Notes/bad \xE9.txt", "* a");
    folder.write("data/Notes/Plans.txt", "Plans\r\n* a >2019-03-05\r\n");
    folder.write("data/Notes/Plans (conflicted).txt", "Plans");
    folder.write("data/Notes/Cloudy.txt.nextcloud", "");
    folder.write("data/Notes/.hidden.txt", "");
    folder.write("data/Notes/photo.png", "* a");
    folder.link("data/Notes/link.txt", "Plans.txt");
    folder.link("data/Notes/folder", "sub");
    folder.write("data/Calendar/20190305.txt", "* [ ] own\n");
    folder.write("data/Calendar/stray.txt", "* [ ] stray\n");
    for (int i = 0; i < 200; ++i) {
        folder.write("data/Notes/sub/many/" + std::to_string(i) + ".txt",
                     std::string(static_cast<std::size_t>(i) * 100, 'x') + "\n* n >2019-03-05");
    }
    notes.index();
    const std::size_t all = notes.plain().report.files;
    CHECK(all == 206);
    check(notes, all);
    for (int i = 0; i < 100; ++i) {
        folder.write("data/Notes/sub/many/" + std::to_string(2 * i + 100) + ".txt", "* new");
    }
    check(notes, all - 50);
}
