// SPDX-License-Identifier: MIT
#include <csignal>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <unistd.h>
#include <utility>
#include <vector>

#include <doctest/doctest.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include "platform/posix_cache_files.h"
#include "support/failure_kind.h"
#include "support/temp_folder.h"

namespace tessaly::platform {
namespace {

using Kind = base::Failure::Kind;
using tests::failureKind;
using tests::TempFolder;
using Names = std::vector<std::string>;

mode_t modeOf(const std::string& path) {
    struct stat status {};
    REQUIRE(::stat(path.c_str(), &status) == 0);
    return status.st_mode & 0777U;
}

TEST_CASE("a cache file is put in place as a whole, for its owner alone") {
    const TempFolder folder;
    PosixCacheFiles files;
    const std::string file = folder / "cache/index/one";
    const std::string large(3'000'000, 'x');
    {
        auto created = files.create(file);
        REQUIRE(created.ok());
        const auto writing = std::move(created).value();
        for (const std::string_view part :
             {std::string_view("small"), std::string_view(large), std::string_view("end")}) {
            REQUIRE(writing->write(part).ok());
        }
        CHECK(failureKind(files.map(file)) == Kind::notFound);
        REQUIRE(writing->putInPlace().ok());
    }
    CHECK(folder.read("cache/index/one") == "small" + large + "end");
    CHECK(folder.names("cache/index") == Names{"one"});
    CHECK(modeOf(file) == 0600);
    CHECK(modeOf(folder / "cache/index") == 0700);
}

TEST_CASE("one writer at a time, and a dead one stands in nobody's way") {
    const TempFolder folder;
    PosixCacheFiles files;
    const std::string file = folder.write("one", "old");
    {
        auto first = files.create(file);
        REQUIRE(first.ok());
        CHECK(failureKind(files.create(file)) == Kind::exists);
        CHECK((*std::move(first))->write("half").ok());
    }
    CHECK(folder.names() == Names{"one"});

    const pid_t child = ::fork();
    if (child == 0) {
        auto writing = files.create(file);
        const bool written = (*std::move(writing))->write(std::string(2'000'000, 'y')).ok();
        static_cast<void>(written);
        ::raise(SIGKILL);
    }
    REQUIRE(child > 0);
    REQUIRE(::waitpid(child, nullptr, 0) == child);
    CHECK(folder.read("one") == "old");

    auto next = files.create(file);
    REQUIRE(next.ok());
    const auto writing = std::move(next).value();
    REQUIRE(writing->write("new").ok());
    REQUIRE(writing->putInPlace().ok());
    CHECK(folder.read("one") == "new");
    CHECK(folder.names() == Names{"one"});
}

TEST_CASE("a mapped file stays what it was") {
    const TempFolder folder;
    PosixCacheFiles files;
    std::string text(50'000, 'a');
    text += "end";
    const std::string file = folder.write("one", text);
    const auto mapped = files.map(file);
    REQUIRE(mapped.ok());
    const auto bytes = (*mapped)->bytes();
    std::filesystem::rename(folder.write("two", "other"), file);
    CHECK(bytes == text);
    for (const auto& [start, count] : std::vector<std::pair<std::size_t, std::size_t>>{
             {0, text.size()}, {1, 9000}, {5000, 10}, {text.size(), 0}}) {
        (*mapped)->forget(bytes.substr(start, count));
        CHECK(bytes == text);
    }
    REQUIRE(files.remove(file).ok());
    CHECK(failureKind(files.remove(file)) == Kind::notFound);
}

TEST_CASE("only a regular file is mapped or written") {
    const TempFolder folder;
    PosixCacheFiles files;
    folder.write("full", "text");
    folder.write("empty", "");
    folder.link("link", "full");
    folder.mkdir("folder");
    REQUIRE(::mkfifo((folder / "pipe").c_str(), 0600) == 0);
    folder.link("linked.writing", "full");
    folder.mkdir("taken.writing");

    struct Row {
        std::string_view name;
        std::optional<Kind> mapped;
    };
    for (const Row& row :
         {Row{"full", {}}, Row{"empty", Kind::malformed}, Row{"link", Kind::notAFile},
          Row{"folder", Kind::notAFile}, Row{"pipe", Kind::notAFile}, Row{"none", Kind::notFound},
          Row{std::string_view("full\0", 5), Kind::malformed}}) {
        CAPTURE(row.name);
        CHECK(failureKind(files.map(folder / row.name)) == row.mapped);
    }
    for (const std::string_view name : {"linked", "taken", "full/below"}) {
        CAPTURE(name);
        CHECK_FALSE(files.create(folder / name).ok());
    }
    CHECK(folder.read("full") == "text");
}

}  // namespace
}  // namespace tessaly::platform
