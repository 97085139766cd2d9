// SPDX-License-Identifier: MIT
#include <chrono>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <vector>

#include <doctest/doctest.h>
#include <sys/stat.h>

#include "app/day_text.h"
#include "app/day_view.h"
#include "app/index_keeper.h"
#include "app/note_lists.h"
#include "app/planner.h"
#include "support/failure_kind.h"

using namespace tessaly;
using base::Failure;
using tests::Planner;

namespace {

constexpr const char* notes =
    "-- Calendar/20190305.txt\n* Call Bob #home\n"
    "-- Calendar/20190304.txt\n* Older\n* [>] Late >2019-03-05\n"
    "-- Notes/Plans.txt\n# Plans\n* Paint >2019-03-05 #home/walls\n"
    "-- Notes/Work/Deep.md\n# Deep\n* [x] Done\n";
constexpr std::size_t noteCount = 4;

/// A new start of the program on the same files.
struct Run {
    explicit Run(Planner& user) : planner(user) { services().startUpIndex().forget(); }

    app::Services& services() { return planner.services(); }
    std::string today() {
        auto views = app::dayViews(services(), services().today(), 1);
        report = views.report;
        return tests::dayText(views);
    }
    std::string list() {
        std::string text;
        for (const auto& row : app::listNotes(services(), app::NoteScope::all, "").rows) {
            text += row.filename + "|" + row.title + "|" + std::to_string(row.model.numOpenTodos);
        }
        return text;
    }

    Planner& planner;
    store::ReadReport report;
};

std::string indexFile(Run& run) {
    return app::indexState(run.services()).file;
}

void writeIndex(Planner& planner) {
    Run run(planner);
    const auto written = app::writeIndex(run.services());
    REQUIRE(written);
    CHECK(written->notes == noteCount);
    CHECK(written->fresh == 0);
}

/// Writes over a note in place, as many bytes as before, and sets its date back.
void changeSecretly(const std::string& file, const std::string& bytes) {
    struct stat before {};
    REQUIRE(::stat(file.c_str(), &before) == 0);
    REQUIRE(static_cast<std::size_t>(before.st_size) == bytes.size());
    const int opened = ::open(file.c_str(), O_WRONLY);
    REQUIRE(::write(opened, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()));
    const timespec times[]{before.st_atim, before.st_mtim};
    REQUIRE(::futimens(opened, times) == 0);
    ::close(opened);
}

}  // namespace

TEST_CASE("an index is stale when much had to be read") {
    struct Row {
        std::size_t files;
        std::size_t fromIndex;
        bool cancelled;
        bool isStale;
    };
    const std::vector<Row> rows{
        {0, 0, false, false},           {999, 0, false, false},        {1000, 0, false, true},
        {1000, 0, true, false},         {1000, 1, false, false},       {20000, 19000, false, true},
        {20001, 19001, false, false},   {100000, 96000, false, false}, {100000, 95000, false, true},
        {100000, 100000, false, false},
    };
    for (const Row& row : rows) {
        CAPTURE(row.files);
        CAPTURE(row.fromIndex);
        store::ReadReport report;
        report.files = row.files;
        report.fromIndex = row.fromIndex;
        report.cancelled = row.cancelled;
        CHECK(app::isIndexStale(report) == row.isStale);
    }
}

TEST_CASE("with an index, only what has changed is opened, and each view is the same") {
    Planner planner;
    planner.write(notes);
    Run without(planner);
    const std::string today = without.today();
    const std::string list = without.list();
    CHECK(today.find("Call Bob") != std::string::npos);
    CHECK(without.report.fromIndex == 0);

    writeIndex(planner);
    Run fresh(planner);
    CHECK(fresh.today() == today);
    CHECK(fresh.report.files == noteCount);
    CHECK(fresh.report.fromIndex == noteCount);
    CHECK(fresh.list() == list);

    changeSecretly(planner.folder() / "data/org.tessaly.tessaly/Calendar/20190305.txt",
                   "* Call Eve #work\n");
    planner.write("-- Notes/New.txt\n# New\n* New >2019-03-05\n");
    std::filesystem::remove(planner.folder() / "data/org.tessaly.tessaly/Notes/Work/Deep.md");
    Run changed(planner);
    const std::string now = changed.today();
    CHECK(now.find("Call Eve") != std::string::npos);
    CHECK(now.find("Call Bob") == std::string::npos);
    CHECK(changed.report.files == noteCount);
    CHECK(changed.report.fromIndex == noteCount - 2);
    const std::string listNow = changed.list();
    std::filesystem::remove(indexFile(changed));
    Run again(planner);
    CHECK(again.today() == now);
    CHECK(again.list() == listNow);
    CHECK(again.report.fromIndex == 0);
}

TEST_CASE("other markers make other tasks of indexed notes") {
    Planner planner;
    planner.write("-- Calendar/20190305.txt\n- Dash\n* Star\n");
    Run first(planner);
    REQUIRE(app::writeIndex(first.services()));
    Run other(planner);
    REQUIRE(other.services().globals().set("isDashTodo", "on"));
    REQUIRE(other.services().globals().set("isAsteriskTodo", "off"));
    const std::string today = other.today();
    CHECK(today.find("Dash") != std::string::npos);
    CHECK(today.find("Star") == std::string::npos);
}

TEST_CASE("an index that is damaged is told of once and thrown away") {
    Planner planner;
    planner.write(notes);
    Run before(planner);
    const std::string today = before.today();
    const std::string file = indexFile(before);
    const std::vector<std::string> damages{"", "garbage", std::string(5000, '\xff')};
    for (const std::string& damage : damages) {
        CAPTURE(damage.size());
        writeIndex(planner);
        planner.folder().write(std::filesystem::relative(file, planner.folder().path()).string(),
                               damage);
        Run run(planner);
        tests::LogCapture log;
        CHECK(run.today() == today);
        CHECK(run.list() == before.list());
        CHECK(run.report.fromIndex == 0);
        REQUIRE(log.lines().size() == 1);
        CHECK(log.lines()[0].starts_with("start-up index thrown away: "));
        CHECK(!std::filesystem::exists(file));
    }
}

TEST_CASE("where no index is wanted, none is written or used, and one that is there goes") {
    struct Row {
        const char* what;
        bool isSettingOn;
        const char* blindFolder;  ///< what its path ends with
    };
    const std::vector<Row> rows{
        {"the setting is off", false, nullptr},
        {"the data folder is blind", true, "org.tessaly.tessaly"},
        {"a kind's folder is blind", true, "Notes"},
    };
    for (const Row& row : rows) {
        CAPTURE(row.what);
        bool isMounted = false;
        Planner::User user;
        user.tellingStamps = [&](const std::string& folder) -> base::Result<base::Done> {
            if (isMounted && row.blindFolder != nullptr && folder.ends_with(row.blindFolder)) {
                return Failure{Failure::Kind::unavailable, "FAT"};
            }
            return base::Done{};
        };
        Planner planner{user};
        planner.write(notes);
        writeIndex(planner);
        isMounted = true;
        Run run(planner);
        if (!row.isSettingOn) {
            REQUIRE(run.services().globals().set("isStartUpIndex", "off"));
        }
        const auto state = app::indexState(run.services());
        CHECK(!state.isWanted);
        CHECK(std::filesystem::exists(state.file));
        CHECK(tests::failureKind(app::writeIndex(run.services())) == Failure::Kind::unavailable);
        app::refreshIndexLater(run.services());
        CHECK(planner.started().empty());
        run.today();
        CHECK(run.report.fromIndex == 0);
        CHECK(!std::filesystem::exists(state.file));
    }
}

TEST_CASE("an index is written in the background, but not over and over") {
    Planner planner;
    planner.write(notes);
    const std::string root = planner.folder() / "data/org.tessaly.tessaly";
    Run first(planner);
    app::refreshIndexLater(first.services());
    CHECK(planner.started() == std::vector<std::vector<std::string>>{{"--root", root, "index"}});

    writeIndex(planner);
    const auto setAge = [&](std::chrono::seconds age) {
        const auto now = std::filesystem::file_time_type::clock::now();
        std::filesystem::last_write_time(indexFile(first), now + tests::LaterClock::ahead - age);
    };
    setAge(std::chrono::seconds(30));
    app::refreshIndexLater(first.services());
    CHECK(planner.started().size() == 1);
    setAge(std::chrono::seconds(90));
    app::refreshIndexLater(first.services());
    CHECK(planner.started().size() == 2);
}

TEST_CASE("indexes that have not been written for long go when another one is") {
    Planner planner;
    planner.write(notes);
    Run run(planner);
    const auto now = std::filesystem::file_time_type::clock::now();
    for (const int days : {89, 91}) {
        const std::string file =
            planner.folder().write("cache/index/" + std::to_string(days), "of another data folder");
        std::filesystem::last_write_time(file, now - std::chrono::hours(24 * days));
    }
    REQUIRE(app::writeIndex(run.services()));
    CHECK(planner.folder().exists("cache/index/89"));
    CHECK(!planner.folder().exists("cache/index/91"));
    CHECK(std::filesystem::exists(indexFile(run)));
}
