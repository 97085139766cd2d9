// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <doctest/doctest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include "platform/file_descriptor.h"
#include "platform/inotify_query.h"
#include "platform/metadata_query_contract.h"
#include "support/temp_folder.h"
#include "support/without_rights.h"

namespace tessaly::platform {
namespace {

namespace fs = std::filesystem;
using ports::WatchState;
using tests::Changes;
using tests::entryAt;
using tests::tells;
using tests::TempFolder;
using tests::treeAt;
using tests::Watching;
using Cause = WatchState::Cause;
using Paths = std::vector<std::string>;

TEST_CASE("the query over inotify keeps the contract") {
    InotifyQuery query;
    tests::checkMetadataQuery(query);
}

TEST_CASE("without watches left the rest is watched, and later more") {
    const TempFolder folder;
    for (const char* path : {"root/a/a", "root/b/b", "root/c/c"}) {
        folder.mkdir(path);
    }
    WatchOptions options;
    options.maxWatches = 5;
    InotifyQuery query(options);
    Watching watching(query);
    watching.start(folder / "root");
    const WatchState state = query.state();
    CHECK(state.watchedFolders == 5);
    CHECK(state.cause == Cause::noWatchesLeft);
    REQUIRE(state.unwatchedTrees.size() == 1);
    const std::string unwatched = state.unwatchedTrees.front();
    CHECK(state.description.starts_with(folder / "root/" + unwatched));

    // Nothing below it is told but what its own folder tells, and what comes fares no better.
    folder.write("root/" + unwatched + "/x.md", "");
    folder.mkdir("root/d/d");
    watching.settle(folder, folder / "root");
    CHECK(watching.forget() == Changes{treeAt("d")});
    CHECK(query.state().unwatchedTrees == Paths{unwatched, "d"});

    const std::string watched = unwatched.starts_with("a") ? "b" : "a";
    fs::remove_all(folder / "root/" + watched);
    watching.settle(folder, folder / "root");
    watching.forget();
    query.retry();
    CHECK(watching.await([&](const Changes& all) { return tells(all, unwatched); }));
    CHECK(query.state().unwatchedTrees != Paths{unwatched, "d"});
    fs::remove_all(folder / "root/d");
    watching.settle(folder, folder / "root");
    query.retry();
    watching.settle(folder, folder / "root");
    folder.write("root/" + unwatched + "/y.md", "");
    CHECK(watching.await([&](const Changes& all) { return tells(all, unwatched + "/y.md"); }));
    CHECK(query.state().cause == Cause::none);
    CHECK(query.state().description.empty());
}

TEST_CASE("a root that goes is found again") {
    struct Row {
        const char* name;
        std::function<void(const TempFolder&)> leave;
        bool isNoticed;  ///< before `retry`
    };
    for (const Row& row : {
             Row{"it never was there", nullptr, true},
             Row{"removed", [](const TempFolder& at) { fs::remove_all(at / "above/root"); }, true},
             Row{"moved",
                 [](const TempFolder& at) { fs::rename(at / "above/root", at / "above/other"); },
                 true},
             Row{"a folder above it moved",
                 [](const TempFolder& at) { fs::rename(at / "above", at / "other"); }, false},
         }) {
        CAPTURE(row.name);
        const TempFolder folder;
        if (row.leave) {
            folder.write("above/root/Notes/a.md", "");
        }
        InotifyQuery query;
        Watching watching(query);
        watching.start(folder / "above/root");
        if (row.leave) {
            row.leave(folder);
        }
        if (row.leave && row.isNoticed) {
            CHECK(watching.await([](const Changes& all) { return tells(all, ""); }));
        }
        query.retry();
        if (!row.isNoticed) {
            CHECK(watching.await([](const Changes& all) { return tells(all, ""); }));
        }
        const WatchState lost = query.state();
        CHECK(lost.isReady);
        CHECK(lost.cause == Cause::noRoot);
        CHECK(lost.unwatchedTrees == Paths{""});
        CHECK(lost.watchedFolders == 0);

        watching.forget();
        folder.write("above/root/Notes/b.md", "");
        query.retry();
        CHECK(watching.await([](const Changes& all) { return tells(all, ""); }));
        CHECK(query.state().cause == Cause::none);
        CHECK(query.state().unwatchedTrees.empty());
        watching.forget();
        folder.write("above/root/Notes/c.md", "");
        CHECK(watching.await([](const Changes& all) { return tells(all, "Notes/c.md"); }));
    }
}

TEST_CASE("the root may be a link, and one that comes to lead elsewhere") {
    const TempFolder folder;
    folder.mkdir("one/Notes");
    folder.mkdir("two/Notes");
    folder.link("link", "one");
    InotifyQuery query;
    Watching watching(query);
    watching.start(folder / "link");
    folder.write("one/Notes/a.md", "");
    CHECK(watching.await([](const Changes& all) { return tells(all, "Notes/a.md"); }));
    watching.forget();
    fs::remove(folder / "link");
    folder.link("link", "two");
    query.retry();
    CHECK(watching.await([](const Changes& all) { return tells(all, ""); }));
    watching.forget();
    folder.write("one/Notes/b.md", "");
    folder.write("two/Notes/c.md", "");
    watching.settle(folder, folder / "two");
    CHECK(watching.forget() == Changes{entryAt("Notes/c.md")});
}

TEST_CASE("a folder that may be read again is watched") {
    const TempFolder folder;
    folder.mkdir("root/Notes/Secret/Deep");
    ::chmod((folder / "root/Notes/Secret").c_str(), 0);
    InotifyQuery query;
    Watching watching(query);
    {
        const tests::WithoutRights user(folder);
        REQUIRE(user.effective());
        watching.start(folder / "root");
        CHECK(query.state().watchedFolders == 2);
        CHECK(query.state().unwatchedTrees.empty());
    }
    ::chmod((folder / "root/Notes/Secret").c_str(), 0755);
    CHECK(watching.await([](const Changes& all) { return tells(all, "Notes/Secret/Deep"); }));
    folder.write("root/Notes/Secret/Deep/x.md", "");
    CHECK(watching.await([](const Changes& all) { return tells(all, "Notes/Secret/Deep/x.md"); }));
    CHECK(query.state().watchedFolders == 4);
}

TEST_CASE("on a blind file system everything stays unwatched, and what is told is told") {
    const TempFolder folder;
    folder.mkdir("root/Notes/Sub");
    WatchOptions options;
    options.blindFileSystem = [](int) { return std::string_view("FUSE"); };
    InotifyQuery query(options);
    Watching watching(query);
    watching.start(folder / "root");
    folder.mkdir("root/Notes/New");
    folder.write("root/Notes/Sub/x.md", "");
    CHECK(watching.await([](const Changes& all) { return tells(all, "Notes/Sub/x.md"); }));
    query.retry();
    watching.settle(folder, folder / "root");
    CHECK(query.state().cause == Cause::blindFileSystem);
    CHECK(query.state().description == folder / "root" + ": FUSE");
    CHECK(query.state().unwatchedTrees == Paths{""});
    CHECK(watching.forget() == Changes{treeAt("Notes/New"), entryAt("Notes/Sub/x.md")});
}

/// Lets this process open `more` further files and no more than that.
class FewFiles {
public:
    explicit FewFiles(rlim_t more) {
        ::getrlimit(RLIMIT_NOFILE, &_before);
        const FileDescriptor lowest(::open("/dev/null", O_RDONLY | O_CLOEXEC));
        const rlimit few{static_cast<rlim_t>(lowest.get()) + more, _before.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &few);
    }
    ~FewFiles() { ::setrlimit(RLIMIT_NOFILE, &_before); }
    FewFiles(const FewFiles&) = delete;
    FewFiles& operator=(const FewFiles&) = delete;

private:
    rlimit _before{};
};

TEST_CASE("without events all is unwatched, until there are some") {
    const TempFolder folder;
    folder.mkdir("root/Notes");
    InotifyQuery query;
    Watching watching(query);
    {
        const FewFiles enoughToWakeUp(1);
        watching.start(folder / "root");
    }
    CHECK(query.state().cause == Cause::noEvents);
    CHECK(query.state().unwatchedTrees == Paths{""});
    query.retry();
    CHECK(watching.await([](const Changes& all) { return tells(all, ""); }));
    CHECK(query.state().cause == Cause::none);
    CHECK(query.state().watchedFolders == 2);

    const FewFiles none(0);
    InotifyQuery asleep;
    CHECK(!asleep.start({folder / "root", tests::coversVisible}, [] {}));
    asleep.retry();
    asleep.stop();
}

}  // namespace
}  // namespace tessaly::platform
