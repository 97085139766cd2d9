// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <doctest/doctest.h>

#include "ports/file_changes.h"
#include "support/failure_kind.h"

namespace tessaly::tests {

/// What changes files, what reads them, and an empty folder that both know.
struct ChangeableFiles {
    std::string folder;
    ports::FileSystem& files;
    ports::FileChanges& changes;

    std::string operator/(std::string_view name) const { return folder + "/" + std::string(name); }

    /// Nothing: there is no such file.
    std::optional<std::string> text(std::string_view name) const {
        const auto contents = files.read(*this / name);
        return contents ? std::optional{contents->bytes} : std::nullopt;
    }

    ports::FileContents contents(std::string_view name) const {
        auto contents = files.read(*this / name);
        REQUIRE(contents);
        return std::move(contents).value();
    }

    void make(std::string_view name, std::string_view bytes) const {
        REQUIRE(changes.create(*this / name, bytes));
    }

    std::vector<std::string> names(std::string_view name = ".") const {
        const auto entries = files.list(name == "." ? folder : *this / name);
        REQUIRE(entries);
        std::vector<std::string> names;
        for (const ports::FolderEntry& entry : *entries) {
            names.push_back(entry.name);
        }
        std::sort(names.begin(), names.end());
        return names;
    }
};

using Names = std::vector<std::string>;
using FailureKind = base::Failure::Kind;

inline void checkCreating(const ChangeableFiles& on) {
    REQUIRE(on.changes.makeFolders(on / "folder"));
    const std::string binary("a\0b\n\xff", 5);
    std::string longest;  // 85 characters of three bytes
    for (int i = 0; i < 85; ++i) {
        longest += "\u20ac";
    }
    struct Row {
        std::string name;
        std::string bytes;
        ports::Readers readers;
        ports::Durability durability;
        std::optional<FailureKind> failure;
    };
    const auto byMask = ports::Readers::byMask;
    const auto ownerOnly = ports::Readers::ownerOnly;
    const auto now = ports::Durability::now;
    const auto later = ports::Durability::later;
    for (const Row& row : std::vector<Row>{
             {"note", binary, byMask, now, std::nullopt},
             {"secret", "s", ownerOnly, now, std::nullopt},
             {"quick", "q", ownerOnly, later, std::nullopt},
             {"folder/empty", "", byMask, later, std::nullopt},
             {longest, "l", byMask, now, std::nullopt},
             {"note", "other", byMask, now, FailureKind::exists},
             {"note", "other", ownerOnly, later, FailureKind::exists},
             {"folder", "other", byMask, now, FailureKind::exists},
             {"missing/note", "other", byMask, now, FailureKind::notFound},
         }) {
        CAPTURE(row.name);
        CHECK(failureKind(on.changes.create(on / row.name, row.bytes, row.readers,
                                            row.durability)) == row.failure);
        if (!row.failure) {
            CHECK(on.text(row.name) == row.bytes);
        }
    }
    CHECK(!on.changes.create(on / "note/below", "x"));
    CHECK(on.text("note") == binary);
    CHECK(on.names() == Names{"folder", "note", "quick", "secret", longest});
    CHECK(on.names("folder") == Names{"empty"});
}

/// What may happen between the reading of "note", which holds "old", and its change.
struct Meanwhile {
    const char* what;
    std::function<void(const ChangeableFiles&)> act;
    std::optional<FailureKind> failure;
    std::optional<std::string> left;  ///< what "note" then holds, when it was not changed
};

inline std::vector<Meanwhile> thingsMeanwhile() {
    const auto putOther = [](std::string_view bytes) {
        return [bytes = std::string(bytes)](const ChangeableFiles& on) {
            on.make("other", bytes);
            REQUIRE(on.changes.remove(on / "note"));
            REQUIRE(on.changes.move(on / "other", on / "note"));
        };
    };
    return {
        {"nothing", [](const auto&) {}, std::nullopt, std::nullopt},
        {"bytes were added",
         [](const ChangeableFiles& on) {
             REQUIRE(on.changes.append(on / "note", "er", ports::Durability::later));
         },
         FailureKind::changed, "older"},
        {"as many other bytes",
         [](const ChangeableFiles& on) {
             REQUIRE(on.changes.replace(on / "note", on.contents("note"), "OLD"));
         },
         FailureKind::changed, "OLD"},
        {"another file with other bytes", putOther("new one"), FailureKind::changed, "new one"},
        {"another file with the same bytes", putOther("old"), FailureKind::changed, "old"},
        {"it went", [](const ChangeableFiles& on) { REQUIRE(on.changes.remove(on / "note")); },
         FailureKind::notFound, std::nullopt},
    };
}

inline void checkReplacing(const ChangeableFiles& on) {
    for (const Meanwhile& row : thingsMeanwhile()) {
        CAPTURE(row.what);
        on.make("note", "old");
        const ports::FileContents read = on.contents("note");
        row.act(on);
        CHECK(failureKind(on.changes.replace(on / "note", read, "new")) == row.failure);
        CHECK(on.text("note") == (row.failure ? row.left : "new"));
        on.changes.remove(on / "note").ok();
        CHECK(on.names().empty());
    }

    on.make("note", "0");
    std::string text = "0";
    for (const std::string& next :
         {std::string(), std::string(200001, 'x'), std::string("\0\xff\n", 3), std::string("1")}) {
        const ports::FileContents read = on.contents("note");
        CHECK((read.bytes == text));
        REQUIRE(on.changes.replace(on / "note", read, next));
        text = next;
    }
    CHECK(on.text("note") == "1");
    REQUIRE(on.changes.makeFolders(on / "folder"));
    CHECK(failureKind(on.changes.replace(on / "folder", on.contents("note"), "x")) ==
          FailureKind::notAFile);
    CHECK(on.names() == Names{"folder", "note"});
}

inline void checkRemoving(const ChangeableFiles& on) {
    for (const Meanwhile& row : thingsMeanwhile()) {
        CAPTURE(row.what);
        on.make("note", "old");
        const ports::FileContents read = on.contents("note");
        row.act(on);
        CHECK(failureKind(on.changes.remove(on / "note", &read)) == row.failure);
        CHECK(on.text("note") == row.left);
        on.changes.remove(on / "note").ok();
        CHECK(on.names().empty());
    }
    CHECK(failureKind(on.changes.remove(on / "missing")) == FailureKind::notFound);
    REQUIRE(on.changes.makeFolders(on / "folder"));
    CHECK(!on.changes.remove(on / "folder"));
    CHECK(on.names() == Names{"folder"});
}

inline void checkAppending(const ChangeableFiles& on) {
    std::string expected;
    for (const auto durability : {ports::Durability::later, ports::Durability::now}) {
        for (const std::string& bytes :
             {std::string("one\n"), std::string(), std::string("\0\xff", 2)}) {
            REQUIRE(on.changes.append(on / "log", bytes, durability));
            expected += bytes;
            CHECK(on.text("log") == expected);
        }
    }
    REQUIRE(on.changes.append(on / "empty", "", ports::Durability::now));
    CHECK(on.text("empty") == "");
    CHECK(failureKind(on.changes.append(on / "missing/log", "x", ports::Durability::now)) ==
          FailureKind::notFound);
    REQUIRE(on.changes.makeFolders(on / "folder"));
    CHECK(failureKind(on.changes.append(on / "folder", "x", ports::Durability::now)) ==
          FailureKind::notAFile);
    CHECK(on.changes.sync(on / "log"));
    CHECK(failureKind(on.changes.sync(on / "missing")) == FailureKind::notFound);
}

inline void checkMoving(const ChangeableFiles& on) {
    REQUIRE(on.changes.makeFolders(on / "folder/below"));
    on.make("note", "text");
    on.make("other", "other");
    const auto modified = on.contents("note").stamp.modified;
    struct Row {
        const char* from;
        const char* to;
        std::optional<FailureKind> failure;
    };
    for (const Row& row : std::vector<Row>{
             {"note", "renamed", std::nullopt},
             {"renamed", "folder/below/note", std::nullopt},
             {"folder/below/note", "note", std::nullopt},
             {"note", "other", FailureKind::exists},
             {"note", "folder", FailureKind::exists},
             {"note", "note", FailureKind::exists},
             {"missing", "new", FailureKind::notFound},
             {"note", "missing/note", FailureKind::notFound},
         }) {
        CAPTURE(row.from);
        CAPTURE(row.to);
        CHECK(failureKind(on.changes.move(on / row.from, on / row.to)) == row.failure);
        if (!row.failure) {
            CHECK(on.text(row.from) == std::nullopt);
            CHECK(on.text(row.to) == "text");
        }
    }
    CHECK(on.names() == Names{"folder", "note", "other"});
    CHECK(on.text("other") == "other");
    CHECK(on.contents("note").stamp.modified == modified);
}

inline void checkFolders(const ChangeableFiles& on) {
    CHECK(on.changes.makeFolders(on / "a/b/c"));
    CHECK(on.changes.makeFolders(on / "a/b/c/"));
    CHECK(on.changes.makeFolders(on / "a/d"));
    CHECK(on.names("a") == Names{"b", "d"});
    on.make("note", "text");
    for (const char* name : {"note", "note/below"}) {
        CAPTURE(name);
        CHECK(!on.changes.makeFolders(on / name));
    }

    on.make("a/d/.hidden", "");
    struct Row {
        const char* name;
        std::optional<FailureKind> failure;
    };
    for (const Row& row : std::vector<Row>{
             {"a/b", FailureKind::exists},
             {"a/d", FailureKind::exists},
             {"a/b/c", std::nullopt},
             {"a/b", std::nullopt},
             {"a/b", FailureKind::notFound},
         }) {
        CAPTURE(row.name);
        CHECK(failureKind(on.changes.removeFolder(on / row.name)) == row.failure);
    }
    CHECK(!on.changes.removeFolder(on / "note"));
    CHECK(on.names("a") == Names{"d"});
    CHECK(on.text("note") == "text");
}

inline void checkNulInPaths(const ChangeableFiles& on) {
    on.make("note", "text");
    const std::string path = on / std::string_view("note\0x", 6);
    const ports::FileContents read = on.contents("note");
    const auto later = ports::Durability::later;
    const std::vector<base::Result<base::Done>> results{
        on.changes.makeFolders(path),
        on.changes.create(path, "x"),
        on.changes.replace(path, read, "x"),
        on.changes.append(path, "x", later),
        on.changes.sync(path),
        on.changes.remove(path),
        on.changes.remove(path, &read),
        on.changes.move(path, on / "new"),
        on.changes.move(on / "note", path),
        on.changes.removeFolder(path),
    };
    for (std::size_t i = 0; i < results.size(); ++i) {
        CAPTURE(i);
        CHECK(failureKind(results[i]) == FailureKind::malformed);
    }
    CHECK(on.names() == Names{"note"});
    CHECK(on.text("note") == "text");
}

/// What all changes of files must do. Call it in a test case of its own.
inline void checkFileChanges(const ChangeableFiles& on) {
    SUBCASE("create replaces nothing and leaves nothing else") {
        checkCreating(on);
    }
    SUBCASE("replace changes what was read and nothing else") {
        checkReplacing(on);
    }
    SUBCASE("remove takes what was read and nothing else") {
        checkRemoving(on);
    }
    SUBCASE("append adds at the end") {
        checkAppending(on);
    }
    SUBCASE("move replaces nothing") {
        checkMoving(on);
    }
    SUBCASE("folders are made with those above, and go when they are empty") {
        checkFolders(on);
    }
    SUBCASE("a path with NUL is refused") {
        checkNulInPaths(on);
    }
}

}  // namespace tessaly::tests
