// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <doctest/doctest.h>
#include <sys/stat.h>

#include "ports/metadata_query.h"
#include "support/temp_folder.h"

namespace tessaly::tests {

using Change = ports::PossibleChange;
using Changes = std::vector<Change>;
using Reach = Change::Reach;

inline Change entryAt(std::string path) {
    return {std::move(path), Reach::entry};
}
inline Change treeAt(std::string path) {
    return {std::move(path), Reach::tree};
}

inline std::string textOf(const Changes& changes) {
    std::string text;
    for (const Change& change : changes) {
        text += change.path + (change.reach == Reach::tree ? "/** " : " ");
    }
    return text;
}

inline bool isIn(std::string_view path, std::string_view folder) {
    return folder.empty() ? !path.empty()
                          : path.size() > folder.size() && path.starts_with(folder) &&
                                path[folder.size()] == '/';
}

/// Whether `changes` tell of `path`.
inline bool tells(const Changes& changes, std::string_view path) {
    return std::any_of(changes.begin(), changes.end(), [path](const Change& change) {
        return path == change.path || (change.reach == Reach::tree && isIn(path, change.path));
    });
}

/// Without what lies in a tree that is told as well, be it at another time.
inline Changes outermost(const std::set<Change>& changes) {
    Changes left;
    for (const Change& change : changes) {
        const bool isInTree = std::any_of(changes.begin(), changes.end(), [&](const Change& other) {
            return other.reach == Reach::tree &&
                   (isIn(change.path, other.path) ||
                    (change.path == other.path && change.reach == Reach::entry));
        });
        if (!isInTree) {
            left.push_back(change);
        }
    }
    return left;
}

/// No part of the path is hidden.
inline bool coversVisible(std::string_view path, bool) {
    return path.front() != '.' && path.find("/.") == std::string_view::npos;
}

/// A query at work, and what it has told so far.
class Watching {
public:
    using Condition = std::function<bool(const Changes& told)>;

    /// `duringUpdate` is called in each call of `onUpdate`.
    explicit Watching(
        ports::MetadataQuery& query, std::function<void()> duringUpdate = [] {})
        : _query(query), _duringUpdate(std::move(duringUpdate)) {}
    ~Watching() { _query.stop(); }
    Watching(const Watching&) = delete;
    Watching& operator=(const Watching&) = delete;

    /// Returns when everything is watched and the root was told.
    void start(const std::string& root) {
        REQUIRE(_query.start({root, coversVisible}, [this] { count(); }));
        REQUIRE(await([](const Changes& told) { return tells(told, ""); }));
        REQUIRE(awaitCalls(1));
        CHECK(_query.state().isReady);
        CHECK(forget() == Changes{treeAt("")});
    }

    /// Takes until `condition` is true of all that was told since `forget`, or time is up.
    bool await(const Condition& condition) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while (true) {
            const std::size_t seen = calls();
            for (const Change& change : _query.take()) {
                _told.insert(change);
                if (_onTaken) {
                    _onTaken(change);
                }
            }
            if (condition({_told.begin(), _told.end()})) {
                return true;
            }
            std::unique_lock lock(_mutex);
            if (!_changed.wait_until(lock, deadline, [&] { return _calls != seen; })) {
                return false;
            }
        }
    }

    /// Waits until all events of what was done below the root so far have been told: they come in
    /// order. Takes one call of `onUpdate` itself.
    void settle(const TempFolder& folder, const std::string& root) {
        const std::string mark = "mark" + std::to_string(++_marks);
        folder.write(mark, "");
        std::filesystem::rename(folder / mark, root + "/" + mark);
        REQUIRE(await([&](const Changes& told) { return tells(told, mark); }));
        _told.erase(entryAt(mark));
    }

    /// What was told since the last call.
    Changes forget() { return outermost(std::exchange(_told, {})); }

    std::size_t calls() {
        const std::scoped_lock lock(_mutex);
        return _calls;
    }

    /// What is told can be taken before `onUpdate` is called. False: it is not called so often.
    bool awaitCalls(std::size_t count) {
        std::unique_lock lock(_mutex);
        return _changed.wait_for(lock, std::chrono::seconds(30), [&] { return _calls >= count; });
    }

    void setOnTaken(std::function<void(const Change&)> onTaken) { _onTaken = std::move(onTaken); }

private:
    void count() {
        _duringUpdate();
        const std::scoped_lock lock(_mutex);
        ++_calls;
        _changed.notify_all();
    }

    ports::MetadataQuery& _query;
    const std::function<void()> _duringUpdate;
    std::set<Change> _told;
    std::function<void(const Change&)> _onTaken;
    int _marks = 0;
    std::mutex _mutex;  ///< guards what follows
    std::condition_variable _changed;
    std::size_t _calls = 0;
};

struct Deed {
    const char* name;
    std::function<void(const TempFolder&)> act;
    Changes told;
    const char* later = "";  ///< a file that is written afterwards, and told
};

/// In a folder "root" with Notes/{a.md,Sub/{b.md,Deep/c.md}}, Calendar/ and .hidden/, which lies
/// beside "outside/Moved/In/d.md".
inline std::vector<Deed> deeds() {
    using std::filesystem::remove_all;
    using std::filesystem::rename;
    return {
        {"write in place",
         [](const TempFolder& at) {
             at.write("root/Notes/a.md", "more");
             at.write("root/Notes/Sub/Deep/c.md", "more");
         },
         {entryAt("Notes/Sub/Deep/c.md"), entryAt("Notes/a.md")}},
        {"rename over",
         [](const TempFolder& at) {
             at.write("root/Notes/.a.tmp", "new");
             rename(at / "root/Notes/.a.tmp", at / "root/Notes/a.md");
         },
         {entryAt("Notes/a.md")}},
        {"create and delete",
         [](const TempFolder& at) {
             at.write("root/Notes/new.md", "");
             remove_all(at / "root/Notes/new.md");
         },
         {entryAt("Notes/new.md")}},
        {"link into place",
         [](const TempFolder& at) {
             std::filesystem::create_hard_link(at / "outside/Moved/In/d.md",
                                               at / "root/Notes/d.md");
         },
         {entryAt("Notes/d.md")}},
        {"rights and dates",
         [](const TempFolder& at) {
             ::chmod((at / "root/Notes/a.md").c_str(), 0600);
             ::utimensat(AT_FDCWD, (at / "root/Notes/Sub/b.md").c_str(), nullptr, 0);
         },
         {entryAt("Notes/Sub/b.md"), entryAt("Notes/a.md")}},
        {"a link to a folder is an entry",
         [](const TempFolder& at) { at.link("root/Notes/link", "../../outside"); },
         {entryAt("Notes/link")}},
        {"hidden names",
         [](const TempFolder& at) {
             at.write("root/.hidden/x.md", "");
             at.write("root/Notes/.x", "");
             at.write("root/Notes/.new/deep/x.md", "");
             at.write("outside/x.md", "");
         },
         {}},
        {"a new folder with contents",
         [](const TempFolder& at) { at.write("root/Notes/New/Sub/x.md", ""); },
         {treeAt("Notes/New")},
         "Notes/New/Sub/y.md"},
        {"a folder goes",
         [](const TempFolder& at) { remove_all(at / "root/Notes/Sub"); },
         {treeAt("Notes/Sub")},
         "Notes/Sub/b.md"},
        {"a folder is renamed",
         [](const TempFolder& at) {
             rename(at / "root/Notes/Sub", at / "root/Notes/Other");
             at.write("root/Notes/Other/Deep/c.md", "more");
         },
         {treeAt("Notes/Other"), treeAt("Notes/Sub")},
         "Notes/Other/Deep/c.md"},
        {"a folder comes from outside",
         [](const TempFolder& at) { rename(at / "outside/Moved", at / "root/Notes/Moved"); },
         {treeAt("Notes/Moved")},
         "Notes/Moved/In/d.md"},
        {"a folder goes outside, and is told no more",
         [](const TempFolder& at) {
             rename(at / "root/Notes/Sub", at / "outside/Sub");
             at.write("outside/Sub/Deep/c.md", "more");
         },
         {treeAt("Notes/Sub")}},
        {"a folder becomes hidden",
         [](const TempFolder& at) {
             rename(at / "root/Notes/Sub", at / "root/Notes/.Sub");
             at.write("root/Notes/.Sub/Deep/c.md", "more");
         },
         {treeAt("Notes/Sub")}},
    };
}

inline void checkDeed(ports::MetadataQuery& query, const Deed& deed) {
    CAPTURE(deed.name);
    const TempFolder folder;
    for (const char* file : {"root/Notes/a.md", "root/Notes/Sub/b.md", "root/Notes/Sub/Deep/c.md",
                             "root/.hidden/h.md", "outside/Moved/In/d.md"}) {
        folder.write(file, "old");
    }
    folder.mkdir("root/Calendar");
    Watching watching(query);
    watching.start(folder / "root");
    const std::size_t before = watching.calls();
    deed.act(folder);
    watching.settle(folder, folder / "root");
    CHECK(textOf(watching.forget()) == textOf(deed.told));
    if (deed.told.empty()) {
        REQUIRE(watching.awaitCalls(before + 1));
        CHECK(watching.calls() == before + 1);
    }
    if (*deed.later != '\0') {
        folder.write(std::string("root/") + deed.later, "later");
        REQUIRE(watching.await([&](const Changes& told) { return tells(told, deed.later); }));
    }
    CHECK(query.state().cause == ports::WatchState::Cause::none);
    CHECK(query.state().unwatchedTrees.empty());
}

/// What every query must do that watches real folders.
inline void checkMetadataQuery(ports::MetadataQuery& query) {
    for (const Deed& deed : deeds()) {
        checkDeed(query, deed);
    }
}

}  // namespace tessaly::tests
