// SPDX-License-Identifier: MIT
#include <chrono>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include <doctest/doctest.h>

#include "base/temporary_name.h"
#include "platform/flock_folder_locks.h"
#include "platform/posix_file_changes.h"
#include "platform/posix_file_system.h"
#include "support/failing_files.h"
#include "support/temp_folder.h"
#include "tasks/operation_journal.h"
#include "tasks/operation_text.h"

namespace tessaly::tests {
namespace {

using namespace std::chrono_literals;
using base::Failure;
using std::chrono::days;
using tasks::Operation;
using tasks::OperationJournal;
using Numbers = std::vector<std::uint64_t>;
using Names = std::vector<std::string>;

const base::Instant noon = std::chrono::sys_days{std::chrono::year{2019} / 3 / 5} + 12h;

struct HandClock : ports::Clock {
    base::Instant time = noon;
    base::Instant now() override { return time; }
    base::LocalTime local(base::Instant) override { return {}; }
};

struct Fixture {
    TempFolder folder;
    std::string root = folder.mkdir("data");
    platform::PosixFileSystem files;
    platform::PosixFileChanges changes;
    platform::FlockFolderLocks locks{folder / "locks"};
    FailingFiles failing{files, changes, locks};
    HandClock clock;
    OperationJournal journal = at(root);

    OperationJournal at(const std::string& data) {
        return {{failing, failing, failing, clock}, folder / "journals", data, {4, days{90}}};
    }
    std::string nameOf(std::string_view file) const {
        return journal.folder().substr(folder.path().size() + 1) + "/" + std::string(file);
    }
    Operation operation(std::string title) const {
        Operation operation;
        operation.time = clock.time;
        operation.title = std::move(title);
        operation.steps.resize(2);
        return operation;
    }
    std::uint64_t make(std::string title) {
        REQUIRE(journal.begin(operation(std::move(title))).ok());
        return journal.finish().value();
    }
    Numbers made(std::size_t most = 99) const {
        Numbers numbers;
        const std::vector<Operation> operations = journal.operations(most).value();
        for (const Operation& each : operations) {
            numbers.push_back(each.number);
        }
        return numbers;
    }
    Names names() const { return folder.names(nameOf("")); }
};

}  // namespace

TEST_CASE_FIXTURE(Fixture, "journal: an operation is pending until it is finished or abandoned") {
    CHECK_FALSE(journal.hasPending());
    CHECK_FALSE(journal.pending().value().has_value());
    CHECK(journal.amend(0, {}).failure().kind == Failure::Kind::notFound);
    CHECK_FALSE(journal.finish().ok());
    CHECK(made().empty());

    Operation operation = this->operation("a");
    REQUIRE(journal.begin(operation).ok());
    // Another process of the same data folder, by another path.
    OperationJournal other = at(folder.link("link", root));
    CHECK(other.hasPending());
    CHECK(other.pending().value() == operation);
    CHECK(other.begin(this->operation("b")).failure().kind == Failure::Kind::exists);
    CHECK_FALSE(at(folder.mkdir("data2")).hasPending());

    operation.steps[1].filename = "later.txt";
    REQUIRE(journal.amend(1, operation.steps[1]).ok());
    CHECK(other.pending().value() == operation);
    CHECK(made().empty());

    const auto readers = std::filesystem::perms::group_all | std::filesystem::perms::others_all;
    for (const std::string& path : {journal.folder(), journal.folder() + "/pending"}) {
        CHECK((std::filesystem::status(path).permissions() & readers) ==
              std::filesystem::perms::none);
    }

    CHECK(journal.finish().value() == 1);
    CHECK_FALSE(other.hasPending());
    operation.number = 1;
    CHECK(other.operations(9).value() == std::vector{operation});

    REQUIRE(journal.begin(operation).ok());
    CHECK(journal.abandon().ok());
    CHECK(journal.abandon().ok());
    CHECK_FALSE(journal.hasPending());
    CHECK(made() == Numbers{1});
}

TEST_CASE_FIXTURE(Fixture, "journal: no number is given twice") {
    for (std::uint64_t number = 1; number <= 3; ++number) {
        CHECK(make("x") == number);
    }
    CHECK(journal.forget(9).ok());
    CHECK(journal.forget(3).ok());
    CHECK(journal.forget(3).ok());
    CHECK(journal.forget(2).ok());
    CHECK(made() == Numbers{1});
    CHECK(make("x") == 4);
    CHECK(journal.forget(1).ok());
    CHECK(journal.forget(4).ok());
    CHECK(made().empty());
    CHECK(make("x") == 5);
    CHECK(names() == Names{"0000000005"});
}

TEST_CASE_FIXTURE(Fixture, "journal: what is not understood is passed over, and kept") {
    make("a");
    make("b");
    const Names foreign = {"0000000003", "0000000000", "00000000007", "12", "notes", "pending"};
    for (const std::string& name : foreign) {
        folder.write(nameOf(name), "tessaly operation 2\n");
    }
    CHECK(made() == Numbers{2, 1});
    CHECK(made(1) == Numbers{2});
    CHECK(journal.hasPending());
    CHECK(journal.pending().failure().kind == Failure::Kind::malformed);
    CHECK(journal.abandon().ok());
    clock.time += days{91};
    CHECK(make("c") == 4);
    CHECK(made() == Numbers{4});
    CHECK(names() == Names{"0000000000", "00000000007", "0000000003", "0000000004", "12", "notes"});
}

TEST_CASE_FIXTURE(Fixture, "journal: the oldest operations go, and what a kill left") {
    folder.write(nameOf(base::temporaryName("pending")), "half an oper");
    make("1");
    CHECK(names() == Names{"0000000001"});
    clock.time += days{50};
    make("2");
    clock.time += days{41};
    make("3");
    CHECK(made() == Numbers{3, 2});
    make("4");
    make("5");
    make("6");
    CHECK(made() == Numbers{6, 5, 4, 3});
    // A clock that was ahead does not make them older.
    clock.time -= days{365};
    make("7");
    CHECK(made() == Numbers{7, 6, 5, 4});
}

TEST_CASE_FIXTURE(Fixture, "journal: a kill at any moment leaves an operation in one place") {
    bool isEnded = false;
    for (int call = 0; !isEnded; ++call) {
        const std::uint64_t last = make("before");
        failing.before([&](int now, std::string_view, const std::string&) {
            if (now == call) {
                throw std::runtime_error("killed");
            }
        });
        bool isBegun = false;
        try {
            isBegun = journal.begin(operation("x")).ok();
            isEnded = journal.finish().ok();
        } catch (const std::runtime_error&) {
        }
        failing.heal();
        CAPTURE(call);
        const bool isMade = made().front() == last + 1;
        CHECK((journal.hasPending() ? 1 : 0) + (isMade ? 1 : 0) == (isBegun ? 1 : 0));
        CHECK((isMade || !isEnded));
        REQUIRE(journal.abandon().ok());
    }
}

TEST_CASE_FIXTURE(Fixture, "journal: a failure of the files is told, and can be overcome") {
    make("a");
    for (int call = 0; call < 2; ++call) {
        failing.failAt(call, Failure::Kind::noSpace);
        CHECK(journal.begin(operation("b")).failure().kind == Failure::Kind::noSpace);
        CHECK_FALSE(journal.hasPending());
    }
    failing.heal();
    REQUIRE(journal.begin(operation("b")).ok());
    for (int call = 0; call < 2; ++call) {
        failing.failAt(call, Failure::Kind::denied);
        CHECK(journal.finish().failure().kind == Failure::Kind::denied);
        failing.failAt(call, Failure::Kind::denied);
        CHECK(journal.forget(1).failure().kind == Failure::Kind::denied);
        CHECK(journal.hasPending());
    }
    // Pruning is not what was asked for.
    clock.time += days{91};
    failing.failAt(3, Failure::Kind::denied);
    CHECK(journal.finish().value() == 2);
    failing.heal();
    CHECK(made() == Numbers{2, 1});
}

}  // namespace tessaly::tests
