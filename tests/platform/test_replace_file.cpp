// SPDX-License-Identifier: MIT
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

#include <doctest/doctest.h>

#include "base/temporary_name.h"
#include "platform/move_file.h"
#include "platform/posix_file_changes.h"
#include "platform/read_and_append.h"
#include "platform/remove_file.h"
#include "platform/replace_file.h"
#include "support/failure_kind.h"
#include "support/temp_folder.h"

namespace tessaly::platform {
namespace {

using base::Failure;
using tests::appendTo;
using tests::failureKind;
using tests::readOf;
using tests::TempFolder;
using Names = std::vector<std::string>;

/// A step in whose way others come: before it is made first and before it is made again.
ChangeNames disturbed(const ChangeNames& step, const std::function<void()>& first,
                      const std::function<void()>& second) {
    return [=, count = 0](FolderName one, FolderName other) mutable {
        ++count;
        if (count <= 2) {
            (count == 1 ? first : second)();
        }
        return step(one, other);
    };
}

/// A program that opens a file of ours while it may not be written yet waits for us; so it is
/// begun, and given the time to come to the door.
std::thread beginAppending(const std::string& file, std::string_view bytes) {
    std::thread writer([=] { appendTo(file, bytes); });
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    return writer;
}

/// The texts of the temporary files beside "note", which go.
std::set<std::string> takeTemporary(const TempFolder& folder) {
    std::set<std::string> texts;
    for (const std::string& name : folder.names()) {
        if (base::nameOfTemporary(name) == "note") {
            texts.insert(folder.read(name));
            std::filesystem::remove(folder / name);
        }
    }
    return texts;
}

TEST_CASE("whatever another program puts there in the last moment stays") {
    const TempFolder folder;
    const std::string file = folder / "note";
    std::vector<std::thread> writers;
    const auto renameOver = [&](const char* text) {
        return [&, text] { std::filesystem::rename(folder.write("other", text), file); };
    };
    const auto append = [&](const char* text) {
        return [&, text] { writers.push_back(beginAppending(file, text)); };
    };
    const auto remove = [&] { std::filesystem::remove(file); };
    const auto nothing = [] {};
    struct Row {
        const char* what;
        std::function<void()> first;   ///< before the exchange
        std::function<void()> second;  ///< before it is taken back
        std::string left;
        std::set<std::string> aside;  ///< texts under temporary names
        Failure::Kind failure = Failure::Kind::changed;
    };
    for (const Row& row : std::vector<Row>{
             {"another file", renameOver("foreign"), nothing, "foreign", {}},
             {"another file with the same bytes", renameOver("old"), nothing, "old", {}},
             {"a line more", append("er"), nothing, "older", {}},
             {"it goes", remove, nothing, "", {}, Failure::Kind::notFound},
             {"another file, and a newer one over ours",
              renameOver("foreign"),
              renameOver("newer"),
              "newer",
              {"foreign"}},
             {"another file, and a line to ours",
              renameOver("foreign"),
              append(" line"),
              "foreign",
              {"new line"}},
             {"another file, and ours goes", renameOver("foreign"), remove, "foreign", {}},
         }) {
        CAPTURE(row.what);
        folder.write("note", "old");
        const auto read = readOf(file);
        const auto result =
            replaceIfStill(file, read, "new", disturbed(exchangeNames, row.first, row.second));
        for (std::thread& writer : std::exchange(writers, {})) {
            writer.join();
        }
        CHECK(failureKind(result) == row.failure);
        CHECK((folder.exists("note") ? folder.read("note") : "") == row.left);
        CHECK(takeTemporary(folder) == row.aside);
        std::filesystem::remove(file);
        CHECK(folder.names().empty());
    }
}

TEST_CASE("whatever another program puts there while a file is removed stays") {
    const TempFolder folder;
    const std::string file = folder / "note";
    const auto renameOver = [&](const char* text) {
        return [&, text] { std::filesystem::rename(folder.write("other", text), file); };
    };
    struct Row {
        const char* what;
        std::function<void()> second;  ///< before the other file is put back
        std::string left;
        std::set<std::string> aside;  ///< texts under temporary names
    };
    for (const Row& row : std::vector<Row>{
             {"another file", [] {}, "foreign", {}},
             {"and a newer one", renameOver("newer"), "newer", {"foreign"}},
         }) {
        CAPTURE(row.what);
        folder.write("note", "old");
        const auto read = readOf(file);
        CHECK(failureKind(removeIfStill(
                  file, read, disturbed(giveFreeName, renameOver("foreign"), row.second))) ==
              Failure::Kind::changed);
        CHECK(folder.read("note") == row.left);
        CHECK(takeTemporary(folder) == row.aside);
        CHECK(folder.names() == Names{"note"});
    }
}

TEST_CASE("what came out may be cleared away by others once the new text is in its place") {
    const TempFolder folder;
    const std::string file = folder.write("note", "old");
    CHECK(replaceIfStill(file, readOf(file), "new", [](FolderName one, FolderName other) {
        const int error = exchangeNames(one, other);
        ::unlinkat(one.folder, one.name, 0);
        return error;
    }));
    CHECK(folder.read("note") == "new");
    const auto read = readOf(file);
    CHECK(removeIfStill(file, read, [](FolderName one, FolderName other) {
        const int error = giveFreeName(one, other);
        ::unlinkat(other.folder, other.name, 0);
        return error;
    }));
    CHECK(folder.names().empty());
}

TEST_CASE("what others write into a copy while its source is to go stays, as does the source") {
    const TempFolder folder;
    const std::string file = folder.write("note", "old");
    struct Row {
        const char* what;
        const char* written;
        std::string target;  ///< what is left there
    };
    for (const Row& row : {Row{"the copy alone", "er", "older"}, Row{"nothing", "", ""}}) {
        CAPTURE(row.what);
        const auto rename = [&, count = 0](FolderName one, FolderName other) mutable {
            if (++count == 1) {
                return EXDEV;
            }
            if (count == 3) {
                appendTo(folder / "target", row.written);
                return EIO;
            }
            return giveFreeName(one, other);
        };
        CHECK_FALSE(moveFile(file, folder / "target", rename));
        CHECK(folder.read("note") == "old");
        CHECK((folder.exists("target") ? folder.read("target") : "") == row.target);
        std::filesystem::remove(folder / "target");
        CHECK(folder.names() == Names{"note"});
    }
}

TEST_CASE("where two names cannot be exchanged, the file is compared and renamed over") {
    const TempFolder folder;
    const std::string file = folder.write("note", "old");
    const auto read = readOf(file);
    CHECK(failureKind(replaceIfStill(file, read, "new", [&](FolderName, FolderName) {
              std::filesystem::rename(folder.write("other", "foreign"), file);
              return ENOSYS;
          })) == Failure::Kind::changed);
    CHECK(folder.read("note") == "foreign");
    for (const int error : {EINVAL, ENOSYS, EOPNOTSUPP, EPERM}) {
        CAPTURE(error);
        const auto none = [&](FolderName, FolderName) { return error; };
        CHECK(replaceIfStill(file, readOf(file), std::to_string(error), none));
        CHECK(folder.read("note") == std::to_string(error));
    }
    const auto broken = [](FolderName, FolderName) { return EIO; };
    CHECK(!replaceIfStill(file, readOf(file), "never", broken));
    CHECK(folder.names() == Names{"note"});
    CHECK(folder.read("note") == std::to_string(EPERM));
}

TEST_CASE("a program that is writing a file is waited for") {
    const TempFolder folder;
    const std::string file = folder.write("note", "old");
    PosixFileChanges changes;
    const auto read = readOf(file);
    FileDescriptor open(::open(file.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC));
    REQUIRE(open);
    CHECK(failureKind(changes.replace(file, read, "new")) == Failure::Kind::unavailable);
    CHECK(folder.read("note") == "old");
    std::thread closer([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        open = FileDescriptor(-1);
    });
    CHECK(changes.replace(file, read, "new"));
    closer.join();
    CHECK(folder.read("note") == "new");

    open = FileDescriptor(::open(file.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC));
    std::thread writer([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        CHECK(::write(open.get(), "er", 2) == 2);
        open = FileDescriptor(-1);
    });
    const auto now = readOf(file);
    CHECK(failureKind(changes.remove(file, &now)) == Failure::Kind::changed);
    writer.join();
    CHECK(folder.read("note") == "newer");
    CHECK(folder.names() == Names{"note"});
}

}  // namespace
}  // namespace tessaly::platform
