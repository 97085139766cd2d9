// SPDX-License-Identifier: MIT
// The work that a program does for the notes while the user goes on.
#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <doctest/doctest.h>

#include "app/live_notes.h"
#include "app/planner.h"
#include "app/stepped_planner.h"

using namespace tessaly;
using namespace std::chrono_literals;
using app::LiveNotes;
using app::LongWork;
using tests::Planner;
using tests::SteppedPlanner;
using tests::TempFolder;

namespace {

using Note = std::pair<std::string, std::string>;  // its name below "Notes", its text
const std::vector<Note> localNotes{{"A.txt", "a\n"},
                                   {"Plans.txt", "mine\n"},
                                   {"Same.txt", "same\n"},
                                   {"Work/B.txt", "b\n"},
                                   {"Work/C.txt", "c\n"}};

/// A program whose user wants the notes moved to the cloud drive, where some of their names are
/// taken; stepped.
class Mover {
public:
    Mover() {
        _planner.cloudContainer = _cloud.path();
        _planner.answer = 0;
        for (const auto& [name, text] : localNotes) {
            _planner.write("Notes/" + name, text);
        }
        _cloud.write("Documents/Notes/Plans.txt", "theirs\n");
        _cloud.write("Documents/Notes/Same.txt", "same\n");
    }

    SteppedPlanner& planner() { return _planner; }
    LongWork* work() { return _work.get(); }
    const std::optional<app::OfferResult>& result() const { return _result; }

    /// Until the move has begun, of which nothing is done yet; `prepare` is called then.
    void start(const std::function<void()>& prepare) {
        LiveNotes::Handlers handlers;
        handlers.onMigration = [this](const app::OfferResult& result) { _result = result; };
        handlers.onWork = [this, prepare](const auto& work) {
            _work = work;
            prepare();
        };
        handlers.onWorkEnded = [this](const auto&) { _hasEnded = true; };
        _live = std::make_unique<LiveNotes>(_planner.services(), std::move(handlers));
        _live->start();
        for (int tries = 0; tries < 1000 && !_work; ++tries) {
            if (!_planner.step()) {
                _planner.mainQueue().advance(100ms);
            }
        }
        REQUIRE(_work);
    }
    void finish() {
        _planner.settle();
        CHECK(_hasEnded);
        REQUIRE(_result);
        REQUIRE(_result->moved);
    }
    void end() { _live.reset(); }

    /// Each text in a whole file, in one of the two folders; how many are in the local one.
    std::size_t checkEachIsInOnePlace() const {
        std::multiset<std::string> there;
        const std::size_t local =
            addTexts(_planner.folder(), std::string(Planner::root) + "Notes", there);
        addTexts(_cloud, "Documents/Notes", there);
        const std::size_t sames = there.count("same\n");
        CHECK((sames == 1 || sames == 2));  // it is there twice until it is moved
        there.erase("same\n");
        CHECK(there == std::multiset<std::string>{"a\n", "b\n", "c\n", "mine\n", "theirs\n"});
        return local;
    }

private:
    /// How many.
    static std::size_t addTexts(const TempFolder& folder, const std::string& notes,
                                std::multiset<std::string>& texts) {
        std::size_t count = 0;
        if (folder.exists(notes)) {
            for (const auto& [name, text] : folder.everything(notes)) {
                if (!name.ends_with('/')) {
                    texts.insert(text);
                    ++count;
                }
            }
        }
        return count;
    }

    TempFolder _cloud;
    SteppedPlanner _planner;
    std::shared_ptr<LongWork> _work;
    bool _hasEnded = false;
    std::optional<app::OfferResult> _result;
    std::unique_ptr<LiveNotes> _live;
};

}  // namespace

TEST_CASE("notes are moved beside the main thread, and counted") {
    Mover mover;
    mover.start([] {});
    CHECK(mover.checkEachIsInOnePlace() == localNotes.size());
    CHECK_FALSE(mover.result());
    mover.finish();
    CHECK(app::isWhole(*mover.result()->moved));
    CHECK(app::wordsOfMigration(mover.planner().services(), *mover.result()).empty());
    const auto view = mover.work()->view(0ns);
    CHECK(view.done == localNotes.size());
    CHECK(view.total == localNotes.size());
    CHECK(mover.checkEachIsInOnePlace() == 0);
}

TEST_CASE("a move that is cancelled at any call leaves each note whole in one place") {
    std::size_t leastLocal = localNotes.size();
    for (int call = 0;; ++call) {
        CAPTURE(call);
        Mover mover;
        tests::FailingFiles& files = mover.planner().files();
        mover.start([&] {
            files.before([&, call](int now, std::string_view, const std::string&) {
                if (now == call) {
                    mover.work()->cancel();
                }
            });
        });
        mover.finish();
        const bool wasReached = files.calls() > call;
        const app::OfferResult& result = *mover.result();
        files.heal();
        const std::size_t local = mover.checkEachIsInOnePlace();
        CHECK(result.moved->moved == localNotes.size() - local);
        CHECK(result.moved->cancelled == (local > 0));
        CHECK(app::wordsOfMigration(mover.planner().services(), result).empty() == (local == 0));
        leastLocal = std::min(leastLocal, local);
        if (!wasReached) {
            break;
        }
    }
    CHECK(leastLocal == 0);
}

TEST_CASE("a move whose disk fails at any call leaves each note whole in one place, and tells") {
    bool hasFailed = true;
    for (int call = 0; hasFailed; ++call) {
        CAPTURE(call);
        Mover mover;
        tests::FailingFiles& files = mover.planner().files();
        mover.start([&] { files.failAt(call, base::Failure::Kind::noSpace); });
        mover.finish();
        hasFailed = files.calls() > call;
        files.heal();
        const std::size_t local = mover.checkEachIsInOnePlace();
        CHECK((local == 0 || !app::isWhole(*mover.result()->moved)));
        CHECK(app::wordsOfMigration(mover.planner().services(), *mover.result()).empty() ==
              app::isWhole(*mover.result()->moved));
    }
}

TEST_CASE("a program that ends while notes are moved leaves each whole in one place") {
    Mover mover;
    mover.start([] {});
    mover.end();
    CHECK(mover.work()->view(0ns).isCancelled);
    mover.planner().settle();
    CHECK(mover.checkEachIsInOnePlace() == localNotes.size());
    CHECK_FALSE(mover.result());
}

TEST_CASE("who writes the index is shown without a count, and ended when the user has enough") {
    Planner planner{{.isThreaded = false}};
    for (int note = 0; note < 1000; ++note) {
        planner.folder().write(
            std::string{Planner::root} + "Notes/" + std::to_string(note) + ".txt", "* Plan\n");
    }
    std::shared_ptr<LongWork> work;
    bool hasEnded = false;
    LiveNotes::Handlers handlers;
    handlers.onWork = [&](const auto& begun) { work = begun; };
    handlers.onWorkEnded = [&](const auto& ended) { hasEnded = ended == work; };
    LiveNotes live{planner.services(), std::move(handlers)};
    live.start();
    planner.mainQueue().advance(10s);
    REQUIRE(work);
    REQUIRE(planner.followed());
    CHECK(planner.started().size() == 1);
    const LongWork::View view = work->view(0ns);
    CHECK(app::progressText(view, base::LocaleFormats{"en_GB"}).empty());
    CHECK(view.isCancellable);
    CHECK_FALSE(planner.followed()->isAsked);
    SUBCASE("cancelled") {
        work->cancel();
        planner.mainQueue().advance(LiveNotes::indexInterval);
        CHECK(planner.followed()->isAsked);
    }
    SUBCASE("left alone") {}
    CHECK_FALSE(hasEnded);
    planner.followed()->hasEnded = true;
    planner.mainQueue().advance(LiveNotes::indexInterval);
    CHECK(hasEnded);
}
