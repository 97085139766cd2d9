// SPDX-License-Identifier: MIT
#include <chrono>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <doctest/doctest.h>

#include "note_cache_fixture.h"
#include "store/earlier_texts.h"

using namespace tessaly;
using namespace std::chrono_literals;
using base::Instant;
using base::NoteType;
using store::EarlierTexts;
using Texts = std::vector<std::string>;

namespace {

std::string inWords(const std::vector<store::HeldText>& held) {
    std::string words;
    for (const store::HeldText& each : held) {
        words += std::string(each.text.view()) + " ";
    }
    return words;
}

class MovingClock final : public ports::Clock {
public:
    Instant now() override { return _now; }
    base::LocalTime local(Instant instant) override { return _zone.local(instant); }
    void pass(std::chrono::seconds time) { _now += time; }

private:
    platform::FixedClock _zone{platform::parseTime("2019-03-05T14:07:33").value()};
    Instant _now = _zone.now();
};

/// A cache of one note, and what it handed over.
struct Watched {
    tests::CacheFixture fixture;
    MovingClock clock;
    Texts handed;
    store::NoteCache cache{store::NoteCache::Tools{fixture.store,
                                                   fixture.executor,
                                                   clock,
                                                   [] { return store::CountSettings(); },
                                                   {},
                                                   {},
                                                   [this](const auto& held) {
                                                       for (const store::HeldTexts& note : held) {
                                                           handed.push_back(note.filename + ": " +
                                                                            inWords(note.texts));
                                                       }
                                                   }}};

    explicit Watched(const std::string& path) : fixture({{path.c_str(), "base"}}) { cache.load(); }

    /// Another program writes the note, and the watcher tells.
    void change(const std::string& path, const std::string& text, bool hasConflicts = false,
                const Texts& more = {}) {
        fixture.folder.write("data/" + path, text);
        Texts paths{path};
        paths.insert(paths.end(), more.begin(), more.end());
        auto batch = tests::batchOf(fixture.root, paths);
        batch.notes.front().hasConflicts = hasConflicts;
        cache.onCloudUpdate(batch);
    }
};

}  // namespace

TEST_CASE("of a burst of changes, what was there before it is kept") {
    struct Row {
        std::vector<std::chrono::seconds> times;  // each with the text "0", "1", and so on
        std::string kept;
    };
    const Row rows[]{
        {{0s}, "0 "},
        {{0s, 60s, 350s, 640s}, "0 "},
        {{0s, 301s}, "0 1 "},
        {{0s, 60s, 361s, 400s, 3600s}, "0 2 4 "},
        {{7200s, 0s, 10s}, "0 1 "},
        {{0s, 1000s, 2000s, 3000s}, "1 2 3 "},
    };
    for (const Row& row : rows) {
        CAPTURE(row.kept);
        EarlierTexts texts({.burst = 300s, .textsOfNote = 3});
        for (std::size_t index = 0; index < row.times.size(); ++index) {
            texts.remember(NoteType::note, "a.md", std::to_string(index),
                           Instant(row.times[index]));
        }
        CHECK(texts.take(NoteType::calendar, "a.md").empty());
        CHECK(inWords(texts.take(NoteType::note, "a.md")) == row.kept);
        CHECK(texts.bytes() == 0);
        texts.remember(NoteType::note, "a.md", "late", Instant(row.times.back() + 1s));
        CHECK(texts.take(NoteType::note, "a.md").empty());
    }
}

TEST_CASE("earlier texts take bounded room, and the oldest goes first") {
    EarlierTexts texts({.burst = 0s, .textsOfNote = 8, .bytes = 100'000});
    const auto name = [](int note) { return std::to_string(note) + ".md"; };
    for (int note = 0; note < 1000; ++note) {
        texts.remember(NoteType::note, name(note), std::string(1000, 'x'),
                       Instant(std::chrono::seconds(note)));
        REQUIRE(texts.bytes() <= 100'000);
    }
    texts.remember(NoteType::note, "large.md", std::string(100'000, 'x'), Instant(2000s));
    CHECK(texts.take(NoteType::note, "large.md").empty());
    CHECK(texts.take(NoteType::note, name(900)).empty());
    CHECK(texts.take(NoteType::note, name(930)).size() == 1);
    CHECK(texts.take(NoteType::note, name(999)).size() == 1);
}

TEST_CASE("a note that turns up in conflict hands over what it held before") {
    for (const std::string path : {"Notes/a.md", "Calendar/20190305.txt"}) {
        CAPTURE(path);
        const std::string name = path.substr(path.find('/') + 1);
        const std::string copy = path + ".sync-conflict-20190305-140733-ABCDEFG.md";
        Watched watched(path);
        // An editor saves twice, then another device's version takes the note's place.
        watched.change(path, "mine");
        watched.clock.pass(60s);
        watched.change(path, "mine, longer");
        CHECK(watched.handed.empty());
        watched.clock.pass(60s);
        watched.fixture.folder.write("data/" + copy, "mine, longer");
        watched.change(path, "theirs", true, {copy});
        CHECK(watched.handed == Texts{name + ": base mine, longer "});
        // It is in conflict still.
        watched.change(path, "theirs", true);
        watched.clock.pass(600s);
        watched.change(path, "theirs, longer", true);
        CHECK(watched.handed.back() == name + ": theirs ");
        CHECK(watched.handed.size() == 2);
        // Once more, after it was resolved.
        watched.clock.pass(600s);
        watched.change(path, "all");
        watched.change(path, "more", true);
        CHECK(watched.handed.back() == name + ": theirs, longer all ");
    }
}

TEST_CASE("a note that went and comes back in conflict has not forgotten what it held") {
    Watched watched("Notes/a.md");
    std::filesystem::remove(watched.fixture.root + "/Notes/a.md");
    watched.cache.onCloudUpdate(tests::batchOf(watched.fixture.root, {"Notes/a.md"},
                                               tests::Kind::later, store::UpdateType::deleted));
    watched.clock.pass(1s);
    watched.change("Notes/a.md", "theirs", true);
    CHECK(watched.handed == Texts{"a.md: base "});
}
