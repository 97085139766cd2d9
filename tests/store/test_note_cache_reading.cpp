// SPDX-License-Identifier: MIT
#include <atomic>
#include <string>
#include <vector>

#include <doctest/doctest.h>

#include "base/manual_executor.h"
#include "base/thread_pool.h"
#include "note_cache_fixture.h"
#include "support/on_threads.h"

using namespace tessaly;
using tests::batchOf;
using tests::CacheFixture;
using Lines = std::vector<std::string>;

TEST_CASE("the first load holds what is there") {
    CacheFixture fixture({{"Notes/b/c.txt", "# C\n* [ ] x >2019-03-06 #one/two"},
                          {"Notes/a.md", "text #one"},
                          {"Notes/b/broken.txt", "caf\xE9"},
                          {"Calendar/20190305.txt", "\xEF\xBB\xBF* one\n* [x] two @bob"},
                          {"Calendar/2019-03-05.txt", "stray"},
                          {"Calendar/old/20190301.txt", "stray too"}});
    for (const std::size_t threads : {1U, 3U}) {
        base::ThreadPool pool(threads);
        const auto cache = fixture.made(pool);
        Lines order;
        tests::Told first(order, "first");
        tests::Told second(order, "second");
        cache->addListener(first);
        cache->addListener(second);
        cache->setTagUpdateDelegate(&second);
        cache->setOnHasLoaded([&] { order.push_back("loaded"); });
        CHECK_FALSE(cache->initialUpdateDone());
        cache->load();
        cache->waitUntilIdle();
        CHECK(cache->initialUpdateDone());
        CHECK(tests::describe(*cache) ==
              "a.md=text #one|text #one|0\nb/|b|0\nb/broken.txt=|broken|0\n"
              "b/c.txt=# C\n* [ ] x >2019-03-06 #one/two|C|1\n"
              "20190305=* one\n* [x] two @bob|11|00\n20190306-|00|10\n"
              "@bob:1 #one:2 #one/two:1 stray 2019-03-05.txt\nstray old/20190301.txt\n");
        const std::string today = " calendar Calendar/20190305.txt";
        const std::string planned = " calendar Calendar/20190306.txt";
        CHECK(order == Lines{"first" + today, "second" + today, "loaded", "second tags",
                             "first general calendar @ #", "second general calendar @ #",
                             "first" + planned, "second" + planned});
        cache->setOnHasLoaded([&] { order.push_back("at once"); });
        CHECK(order.back() == "at once");
        cache->removeListener(first);
        fixture.folder.write("data/Notes/a.md", "text #one ");
        order.clear();
        cache->reread(base::NoteType::note, "a.md");
        cache->waitUntilIdle();
        fixture.folder.write("data/Notes/a.md", "text #one");
        CHECK(order == Lines{"second general Notes/a.md"});
    }
}

TEST_CASE("a load that is cancelled can be started again") {
    CacheFixture fixture({{"Notes/a.md", "text"}, {"Calendar/20190305.txt", "today"}});
    const auto cache = fixture.made(fixture.executor);
    std::atomic<bool> cancelled = true;
    store::NoteCache::LoadOptions options;
    options.cancelled = &cancelled;
    cache->load(options);
    CHECK_FALSE(cache->initialUpdateDone());
    CHECK(cache->calendarNotes()->empty());
    cache->onCloudUpdate(batchOf(fixture.root, {"Notes/a.md"}));
    CHECK(cache->generalNotes()->empty());
    cancelled = false;
    cache->load(options);
    CHECK(tests::describe(*cache) == fixture.freshLoad());
}

TEST_CASE("load and updates never interleave, in whatever order jobs run") {
    for (unsigned seed = 1; seed <= 30; ++seed) {
        CAPTURE(seed);
        CacheFixture fixture({{"Notes/a.txt", "a"}});
        base::ManualExecutor executor(2);
        base::ManualExecutor::Engine engine(seed);
        const auto cache = fixture.made(executor);
        Lines order;
        tests::Told told(order);
        cache->addListener(told);
        int inside = 0;
        fixture.onRepeat = [&](const store::FinishedRepeat& found) {
            CHECK(++inside == 1);
            // Another update arrives meanwhile.
            cache->onCloudUpdate(batchOf(fixture.root, {"Notes/b.txt"}));
            while (executor.waiting() > 0 && executor.step(engine)) {
            }
            order.push_back("hook " + found.filename);
            --inside;
            return false;
        };
        cache->load();
        cache->onCloudUpdate(batchOf(fixture.root, {"Notes/c.txt"}));
        fixture.folder.write("data/Notes/b.txt", "b");
        for (auto count = engine() % 3; count > 0; --count) {
            executor.step(engine);
        }
        fixture.folder.write("data/Notes/c.txt", "* [x] c @done(2019-03-05) @repeat(1/2)");
        cache->onCloudUpdate(batchOf(fixture.root, {"Notes/c.txt"}));
        executor.runAll(engine);
        CHECK(tests::describe(*cache) == fixture.freshLoad());
        CHECK(order.front().starts_with("told general calendar @ #"));
    }
}

TEST_CASE("readers see whole snapshots while updates run") {
    CacheFixture fixture({{"Calendar/20190305.txt", "0"}});
    for (int note = 0; note < 40; ++note) {
        fixture.folder.write("data/Notes/" + std::to_string(note) + ".txt", "#t0 >2019-03-06");
    }
    base::ThreadPool pool(2);
    const auto cache = fixture.made(pool);
    cache->load();
    std::atomic<bool> isOver = false;
    tests::onThreads(3, [&](std::size_t thread) {
        if (thread == 0) {
            for (int round = 0; round < 30; ++round) {
                Lines named;
                for (int note = 0; note < 40; note += 7) {
                    named.push_back("Notes/" + std::to_string(note) + ".txt");
                    fixture.folder.write("data/" + named.back(),
                                         "#t" + std::to_string(round) + "\n* [ ] x >2019-03-06");
                }
                cache->onCloudUpdate(batchOf(fixture.root, named));
                cache->settingsMayHaveChanged();
                cache->waitUntilIdle();
            }
            isOver = true;
        }
        while (!isOver) {
            const auto notes = cache->generalNotes();
            std::size_t count = 0;
            notes->forEach([&](const auto& note) { count += !note->note.filename.empty(); });
            CHECK(count == notes->size());
            std::vector<std::size_t> visited(cache->workers());
            cache->visit({}, [&](std::size_t worker, const store::NoteFile& file) {
                visited[worker] += file.bytes.size();
            });
        }
    });
    CHECK(tests::describe(*cache) == fixture.freshLoad());
}

TEST_CASE("a visit delivers the same out of memory as out of the files") {
    CacheFixture fixture({{"Notes/a.txt", "A"},
                          {"Notes/sub/b.txt", "B\n"},
                          {"Notes/sub/c.txt.nextcloud", " "},
                          {"Calendar/20190305.txt", "day"},
                          {"Calendar/ideas.txt", "stray"}});
    const auto everything = [&](const store::NoteCache& cache,
                                const std::vector<base::NoteType>& types) {
        Lines found;
        store::NoteReader::Options options;
        options.types = types;
        options.visitFolder = [&](std::size_t, base::NoteType, std::string_view folder) {
            found.emplace_back(folder);
        };
        const auto report = cache.visit(options, [&](std::size_t, const store::NoteFile& file) {
            found.push_back(std::string(base::folderName(file.type)) + "/" +
                            std::string(file.filename) + "=" + std::string(file.bytes));
        });
        for (const auto& skipped : report.skipped) {
            found.push_back("skipped " + skipped.path);
        }
        found.push_back(std::to_string(report.files));
        std::sort(found.begin(), found.end());
        return found;
    };
    using base::NoteType;
    for (const std::vector<NoteType>& types : {std::vector{NoteType::calendar, NoteType::note},
                                               {NoteType::note},
                                               {NoteType::calendar}}) {
        fixture.cache = fixture.made(fixture.executor);
        const Lines read = everything(*fixture.cache, types);
        fixture.load();
        CHECK(everything(*fixture.cache, types) == read);
    }
}
