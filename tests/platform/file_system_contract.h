// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <fcntl.h>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unistd.h>
#include <vector>

#include <doctest/doctest.h>
#include <sys/stat.h>
#include <sys/xattr.h>

#include "platform/odd_things.h"
#include "ports/file_system.h"
#include "support/failure_kind.h"
#include "support/temp_folder.h"
#include "support/without_rights.h"

namespace tessaly::tests {

using base::Failure;
using ports::FolderEntry;

inline void checkReading(ports::FileSystem& files) {
    const OddThings things;
    struct Row {
        const char* name;
        std::optional<Failure::Kind> failure;
    };
    for (const Row& row : std::initializer_list<Row>{
             {"note", std::nullopt},
             {"toNote", std::nullopt},
             {"missing", Failure::Kind::notFound},
             {"folder", Failure::Kind::notAFile},
             {"toFolder", Failure::Kind::notAFile},
             {"pipe", Failure::Kind::notAFile},
             {"toNothing", Failure::Kind::notFound},
             {"loop", Failure::Kind::notAFile},
             {"note/below", Failure::Kind::notFound},
         }) {
        CAPTURE(row.name);
        const std::string path = things.folder / row.name;
        const auto contents = files.read(path);
        CHECK(failureKind(contents) == row.failure);
        if (contents) {
            CHECK(contents->bytes == "text");
        } else {
            CHECK(contents.failure().description.starts_with(path + ": "));
        }
    }
    CHECK(failureKind(files.read(things.folder / std::string("note\0x", 6))) ==
          Failure::Kind::malformed);
}

constexpr const char oddName[] = "\xff\xfe name";  ///< of a file that is put beside the odd things

inline std::map<std::string, FolderEntry::Kind> kindsOfOddThings() {
    using Kind = FolderEntry::Kind;
    return {{"note", Kind::file},   {"folder", Kind::folder}, {"pipe", Kind::other},
            {"toNote", Kind::link}, {"toFolder", Kind::link}, {"toNothing", Kind::link},
            {"loop", Kind::link},   {oddName, Kind::file}};
}

inline void checkListing(ports::FileSystem& files) {
    const OddThings things;
    things.folder.write(oddName, "");
    const auto entries = files.list(things.folder.path());
    REQUIRE(entries);
    std::map<std::string, FolderEntry::Kind> kinds;
    for (const FolderEntry& entry : *entries) {
        kinds[entry.name] = entry.kind;
    }
    CHECK(kinds == kindsOfOddThings());
    const auto empty = files.list(things.folder / "folder");
    REQUIRE(empty);
    CHECK(empty->empty());
    CHECK(failureKind(files.list(things.folder / "missing")) == Failure::Kind::notFound);
    // A file where a folder was expected is something, and must not pass for "not there yet".
    const auto file = failureKind(files.list(things.folder / "note"));
    CHECK(file);
    CHECK(file != Failure::Kind::notFound);
}

/// What `readEach` said of each file: its bytes, or the kind of its failure.
struct Told {
    std::string bytes;
    std::optional<Failure::Kind> failure;
    std::uint64_t size = 0;

    bool operator==(const Told&) const = default;
};

inline std::vector<Told> toldOf(ports::FileSystem& files, const std::string& folder,
                                const std::vector<FolderEntry>& entries) {
    std::vector<Told> told;
    const auto done = files.readEach(folder, entries, [&](const ports::FileRead& read) {
        CHECK(read.index == told.size());
        CHECK((read.stamp == nullptr) != (read.failure == nullptr));
        told.push_back(read.failure != nullptr
                           ? Told{"", read.failure->kind, 0}
                           : Told{std::string(read.bytes), std::nullopt, read.stamp->size});
    });
    CHECK(done);
    return told;
}

/// A survey by name and as a whole must tell the same of an entry.
inline std::map<std::string, ports::SurveyedEntry> surveyOf(ports::FileSystem& files,
                                                            const std::string& folder,
                                                            std::vector<std::string> names) {
    std::map<std::string, ports::SurveyedEntry> entries;
    const auto whole = files.survey(folder);
    REQUIRE(whole);
    for (const ports::SurveyedEntry& entry : *whole) {
        entries[entry.name] = entry;
    }
    const auto named = files.surveyNames(folder, names);
    REQUIRE(named);
    REQUIRE(named->size() == names.size());
    for (std::size_t index = 0; index < names.size(); ++index) {
        CAPTURE(names[index]);
        const auto& entry = (*named)[index];
        REQUIRE(entry.has_value() == entries.contains(names[index]));
        if (entry) {
            const ports::SurveyedEntry& other = entries[names[index]];
            CHECK(entry->name == other.name);
            CHECK(entry->kind == other.kind);
            CHECK(entry->stamp == other.stamp);
            CHECK(entry->isPlaceholder == other.isPlaceholder);
        }
    }
    return entries;
}

inline void checkSurveys(ports::FileSystem& files) {
    const OddThings things;
    things.folder.write(oddName, "1");
    things.folder.write("folder/below", "");
    const auto entries =
        surveyOf(files, things.folder.path(),
                 {"toNote", "note", "missing", "note", oddName, "", ".", "..", "folder/below",
                  "note/", std::string("note\0", 5), "pipe", "toNothing", "folder", "toFolder",
                  "loop", std::string(300, 'x')});
    using Kind = FolderEntry::Kind;
    std::map<std::string, Kind> kinds;
    for (const auto& found : entries) {
        const auto& [name, entry] = found;
        const std::string& path = name;
        CAPTURE(path);
        kinds[name] = entry.kind;
        CHECK_FALSE(entry.isPlaceholder);
        const bool hasStamp = entry.kind == Kind::file || entry.kind == Kind::folder;
        CHECK((entry.stamp != ports::FileStamp{}) == hasStamp);
    }
    CHECK(kinds == kindsOfOddThings());
    const auto contents = files.read(things.folder / "note");
    REQUIRE(contents);
    CHECK(entries.at("note").stamp == contents->stamp);
    CHECK(surveyOf(files, things.folder / "toFolder", {"below"}).size() == 1);
    for (const char* folder : {"missing", "note", "toNothing"}) {
        CAPTURE(folder);
        const auto whole = failureKind(files.survey(things.folder / folder));
        CHECK(whole);
        CHECK(failureKind(files.surveyNames(things.folder / folder, {})) == whole);
        CHECK((whole == Failure::Kind::notFound) == (folder != std::string_view("note")));
    }
}

/// A shell that a sync client has put in a file's place; false: this file system keeps no marks.
inline bool makePlaceholder(const TempFolder& folder, std::string_view name,
                            std::string_view bytes = " ") {
    const std::string file = folder.write(name, bytes);
    return ::setxattr(file.c_str(), "user.nextcloud.hydrate_exec", "nextcloud", 9, 0) == 0;
}

inline void checkPlaceholders(ports::FileSystem& files) {
    const TempFolder folder;
    if (!makePlaceholder(folder, "shell") || !makePlaceholder(folder, "filled", "text")) {
        MESSAGE("skipped: no extended attributes here");
        return;
    }
    folder.write("short", " ");
    const auto entries = surveyOf(files, folder.path(), {"shell", "filled", "short"});
    CHECK(entries.at("shell").isPlaceholder);
    CHECK_FALSE(entries.at("filled").isPlaceholder);
    CHECK_FALSE(entries.at("short").isPlaceholder);

    const auto shell = files.read(folder / "shell");
    REQUIRE_FALSE(shell);
    CHECK(shell.failure().kind == Failure::Kind::unavailable);
    CHECK(shell.failure().description ==
          folder / "shell" + ": the sync program has not downloaded it yet");
    using Kind = FolderEntry::Kind;
    CHECK(toldOf(files, folder.path(),
                 {{"short", Kind::file}, {"shell", Kind::file}, {"filled", Kind::file}}) ==
          std::vector<Told>{{" ", std::nullopt, 1},
                            {"", Failure::Kind::unavailable, 0},
                            {"text", std::nullopt, 4}});
}

inline void checkKindsAndPaths(ports::FileSystem& files) {
    const OddThings things;
    using Kind = FolderEntry::Kind;
    const auto kindOf = [&](const std::string& name) -> std::optional<Kind> {
        const auto kind = files.kindOf(things.folder / name);
        return kind ? std::optional{*kind} : std::nullopt;
    };
    CHECK(kindOf("note") == Kind::file);
    CHECK(kindOf("toFolder") == Kind::folder);
    CHECK(kindOf("pipe") == Kind::other);
    for (const std::string& name : {std::string("missing"), std::string("toNothing"),
                                    std::string("note/below"), std::string(300, 'x')}) {
        CAPTURE(name);
        CHECK(failureKind(files.kindOf(things.folder / name)) == Failure::Kind::notFound);
    }

    const auto resolved = files.resolve(things.folder / "folder/../toFolder/");
    REQUIRE(resolved);
    CHECK(*resolved == std::filesystem::canonical(things.folder.path()).string() + "/folder");
    CHECK(failureKind(files.resolve(things.folder / "toNothing")) == Failure::Kind::notFound);
    CHECK(failureKind(files.resolve(things.folder / "loop")));
}

inline void checkReadingEach(ports::FileSystem& files) {
    const OddThings things;
    using Kind = FolderEntry::Kind;
    const std::string longName(255, 'n');
    things.folder.write(longName, "long");
    const Told refused{"", Failure::Kind::notAFile, 0};
    // A pipe and a link that had taken a file's place since the listing.
    CHECK(toldOf(files, things.folder.path(),
                 {{"note", Kind::file},
                  {"missing", Kind::file},
                  {"pipe", Kind::file},
                  {"toNote", Kind::file},
                  {"folder", Kind::file},
                  {"toNote", Kind::link},
                  {longName, Kind::file},
                  {"note", Kind::file}}) == std::vector<Told>{{"text", std::nullopt, 4},
                                                              {"", Failure::Kind::notFound, 0},
                                                              refused,
                                                              refused,
                                                              refused,
                                                              refused,
                                                              {"long", std::nullopt, 4},
                                                              {"text", std::nullopt, 4}});

    bool called = false;
    const std::vector<FolderEntry> one{{"note", Kind::file}};
    for (const char* folder : {"missing", "note"}) {
        CHECK(!files.readEach(things.folder / folder, one, [&](const auto&) { called = true; }));
    }
    CHECK(!called);
}

/// Sizes around the borders of the buffer, small ones behind giants, and readings inside readings.
inline void checkReadingSizes(ports::FileSystem& files) {
    const TempFolder folder;
    std::vector<FolderEntry> entries;
    std::vector<std::string> texts;
    for (const std::size_t size : {0U, 1U, 65535U, 65536U, 65537U, 1U, 3000000U, 7U, 131072U}) {
        const char letter = static_cast<char>('a' + texts.size());
        texts.emplace_back(size, letter);
        entries.push_back({std::string(1, letter), FolderEntry::Kind::file});
        folder.write(entries.back().name, texts.back());
    }
    const auto done = files.readEach(folder.path(), entries, [&](const ports::FileRead& read) {
        REQUIRE(read.failure == nullptr);
        const auto inner = files.read(folder / entries[texts.size() - 1 - read.index].name);
        REQUIRE(inner);
        CHECK((inner->bytes == texts[texts.size() - 1 - read.index]));
        CHECK((read.bytes == texts[read.index]));
        CHECK(read.stamp->size == texts[read.index].size());
    });
    CHECK(done);

    const std::string giant = folder.write("giant", "");
    std::filesystem::resize_file(giant, ports::maxFileBytes);
    const auto largest = files.read(giant);
    REQUIRE(largest);
    CHECK(largest->bytes.size() == ports::maxFileBytes);
    std::filesystem::resize_file(giant, ports::maxFileBytes + 1);
    CHECK(failureKind(files.read(giant)) == Failure::Kind::tooLarge);
    CHECK(toldOf(files, folder.path(), {{"giant", FolderEntry::Kind::file}}) ==
          std::vector<Told>{{"", Failure::Kind::tooLarge, 0}});
}

inline void checkStamps(ports::FileSystem& files) {
    const TempFolder folder;
    const std::string file = folder.write("note", "one");
    const auto stamp = [&] {
        const auto contents = files.read(file);
        REQUIRE(contents);
        return contents->stamp;
    };
    const auto first = stamp();
    CHECK(stamp() == first);

    using namespace std::chrono_literals;
    const timespec times[2] = {{0, UTIME_OMIT}, {1551794853, 123456789}};
    REQUIRE(::utimensat(AT_FDCWD, file.c_str(), times, 0) == 0);
    const auto dated = stamp();
    CHECK(dated.modified == base::Instant{1551794853s + 123456789ns});
    CHECK(dated.changed >= first.changed);
    CHECK(dated.created == first.created);
    CHECK(dated.inode == first.inode);

    // The same size and date under another inode: a sync client that keeps dates did this.
    folder.write("other", "two");
    REQUIRE(::utimensat(AT_FDCWD, (folder / "other").c_str(), times, 0) == 0);
    std::filesystem::rename(folder / "other", file);
    CHECK(stamp() != dated);
}

inline void checkRefusals(ports::FileSystem& files) {
    const TempFolder folder;
    const std::string secret = folder.write("open/secret", "text");
    folder.write("closed/note", "text");
    ::chmod(secret.c_str(), 0);
    ::chmod((folder / "closed").c_str(), 0);
    ::chmod((folder / "open").c_str(), 0555);
    {
        const WithoutRights rights(folder);
        if (!rights.effective()) {
            MESSAGE("skipped: this root cannot lay down its rights");
            return;
        }
        const auto denied = Failure::Kind::denied;
        CHECK(failureKind(files.read(secret)) == denied);
        CHECK(failureKind(files.read(folder / "closed/note")) == denied);
        CHECK(failureKind(files.kindOf(folder / "closed/note")) == denied);
        CHECK(failureKind(files.list(folder / "closed")) == denied);
        CHECK(failureKind(files.survey(folder / "closed")) == denied);
        const std::vector<std::string> note{"note"};
        CHECK(failureKind(files.surveyNames(folder / "closed", note)) == denied);
        CHECK(files.survey(folder / "open"));
        CHECK(toldOf(files, folder / "open", {{"secret", FolderEntry::Kind::file}}) ==
              std::vector<Told>{{"", denied, 0}});
    }
    ::chmod((folder / "closed").c_str(), 0700);
    ::chmod((folder / "open").c_str(), 0700);
}

/// What every file system must do. Call it in a test case of its own.
inline void checkFileSystem(const std::function<std::unique_ptr<ports::FileSystem>()>& make) {
    const auto files = make();
    SUBCASE("read refuses what is no file") {
        checkReading(*files);
    }
    SUBCASE("list tells what is there") {
        checkListing(*files);
    }
    SUBCASE("survey and surveyNames tell the state of what is there") {
        checkSurveys(*files);
    }
    SUBCASE("a sync client's placeholder is told from a note, and not read") {
        checkPlaceholders(*files);
    }
    SUBCASE("kindOf and resolve follow links") {
        checkKindsAndPaths(*files);
    }
    SUBCASE("readEach tells of each file in order") {
        checkReadingEach(*files);
    }
    SUBCASE("files of all sizes are read whole") {
        checkReadingSizes(*files);
    }
    SUBCASE("stamps tell states apart") {
        checkStamps(*files);
    }
    SUBCASE("what is not allowed is denied") {
        checkRefusals(*files);
    }
}

}  // namespace tessaly::tests
