// SPDX-License-Identifier: MIT
#include <array>
#include <atomic>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <future>
#include <random>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

#include <doctest/doctest.h>

#include "platform/folder_mirror.h"
#include "platform/inotify_query.h"
#include "platform/metadata_query_contract.h"
#include "support/temp_folder.h"

namespace tessaly::platform {
namespace {

namespace fs = std::filesystem;
using tests::Changes;
using tests::entryAt;
using tests::tells;
using tests::TempFolder;
using tests::treeAt;
using tests::Watching;

/// Does a random deed with folders and files of few names, so that they meet.
class Vandal {
public:
    Vandal(std::string root, unsigned seed) : _root(std::move(root)), _random(seed) {}

    void act() {
        std::error_code ignored;
        const fs::path folder = somePath();
        const fs::path other = somePath();
        switch (below(8)) {
            case 0:
            case 1: fs::create_directories(folder, ignored); break;
            case 2: std::ofstream(folder / "f").put(static_cast<char>('0' + below(10))); break;
            case 3: std::ofstream(folder / "g", std::ios::app).put('x'); break;
            case 4: fs::rename(folder / "f", other / "g", ignored); break;
            case 5: fs::rename(folder, other, ignored); break;
            case 6: exchange(folder, other); break;
            default: fs::remove_all(folder, ignored); break;
        }
    }

private:
    static void exchange(const fs::path& one, const fs::path& other) {
        ::renameat2(AT_FDCWD, one.c_str(), AT_FDCWD, other.c_str(), RENAME_EXCHANGE);
    }
    unsigned below(unsigned end) { return static_cast<unsigned>(_random() % end); }
    fs::path somePath() {
        fs::path path = _root;
        for (unsigned depth = 1 + below(3); depth > 0; --depth) {
            path /= names[below(4)];
        }
        return path;
    }

    static constexpr std::array<const char*, 4> names{"a", "b", "c", ".d"};

    std::string _root;
    std::minstd_rand _random;
};

TEST_CASE("whatever others do, who looks where he is told knows all in the end") {
    for (unsigned seed = 1; seed <= 12; ++seed) {
        CAPTURE(seed);
        const TempFolder folder;
        const std::string root = folder.mkdir("root");
        InotifyQuery query;
        Watching watching(query);
        tests::Mirror told(root);
        told.look(treeAt(""));
        watching.start(root);
        watching.setOnTaken([&](const tests::Change& change) { told.look(change); });
        std::thread others([&] {
            Vandal vandal(root, seed);
            for (int i = 0; i < 1500; ++i) {
                vandal.act();
            }
            folder.write("root/end", "");
        });
        const bool isTold = watching.await([](const Changes& all) { return tells(all, "end"); });
        others.join();
        REQUIRE(isTold);
        watching.settle(folder, root);
        tests::checkNothingIsLost(watching, query, told, root);
    }
}

/// Lets the query's thread wait in a call of `onUpdate`.
class Hold {
public:
    void operator()() {
        if (_isWanted.exchange(false)) {
            _held.set_value();
            _released.get_future().wait();
        }
    }
    void await(const std::function<void()>& cause) {
        _isWanted = true;
        cause();
        _held.get_future().wait();
    }
    void release() { _released.set_value(); }

private:
    std::atomic<bool> _isWanted = false;
    std::promise<void> _held;
    std::promise<void> _released;
};

TEST_CASE("when events are lost, everything is a possible change, and all is watched again") {
    long queueLength = 0;
    std::ifstream("/proc/sys/fs/inotify/max_queued_events") >> queueLength;
    if (queueLength <= 0 || queueLength > 100000) {
        MESSAGE("the event queue cannot be filled here");
        return;
    }
    const TempFolder folder;
    folder.write("root/Notes/Sub/a.md", "");
    const std::string root = folder / "root";
    InotifyQuery query;
    Hold hold;
    Watching watching(query, [&] { hold(); });
    tests::Mirror told(root);
    watching.start(root);
    watching.setOnTaken([&](const tests::Change& change) { told.look(change); });
    hold.await([&] { folder.write("root/begin", ""); });
    for (long i = 0; i <= queueLength / 4; ++i) {
        fs::rename(folder / "root/Notes/Sub/a.md", folder / "root/Notes/b.md");
        fs::rename(folder / "root/Notes/b.md", folder / "root/Notes/Sub/a.md");
    }
    fs::rename(folder / "root/Notes/Sub", folder / "root/Notes/Other");
    folder.write("root/New/Deep/x.md", "");
    hold.release();
    CHECK(watching.await([](const Changes& all) { return tells(all, ""); }));
    tests::checkNothingIsLost(watching, query, told, root);
}

TEST_CASE("it stops amid events, and begins again elsewhere without what was") {
    const TempFolder folder;
    folder.mkdir("one");
    folder.mkdir("two");
    std::atomic<bool> isOver = false;
    std::thread others([&] {
        for (int i = 0; !isOver; ++i) {
            folder.write("one/" + std::to_string(i % 7) + "/" + std::to_string(i % 3), "x");
            fs::rename(folder / ("one/" + std::to_string(i % 7)), folder / "one/other");
            fs::remove_all(folder / "one/other");
        }
    });
    InotifyQuery query;
    for (int round = 0; round < 30; ++round) {
        std::atomic<bool> isStopped = false;
        std::atomic<int> late = 0;
        std::promise<void> first;
        std::atomic<int> calls = 0;
        REQUIRE(query.start({folder / "one", tests::coversVisible}, [&] {
            late += isStopped ? 1 : 0;
            if (++calls == 3) {
                first.set_value();
            }
        }));
        if (round % 3 != 0) {
            first.get_future().wait();
        }
        query.stop();
        isStopped = true;
        CHECK(late == 0);
    }
    Watching watching(query);
    watching.start(folder / "two");
    folder.write("two/x.md", "");
    watching.settle(folder, folder / "two");
    CHECK(watching.forget() == Changes{entryAt("x.md")});
    isOver = true;
    others.join();
}

}  // namespace
}  // namespace tessaly::platform
