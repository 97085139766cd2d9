// SPDX-License-Identifier: MIT
#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <doctest/doctest.h>

#include "platform/posix_cache_files.h"
#include "store/note_index.h"
#include "store/note_index_format.h"
#include "store/note_index_writer.h"
#include "support/failure_kind.h"
#include "support/on_threads.h"
#include "support/temp_folder.h"

namespace tessaly::store {
namespace {

using base::Failure;
using base::Instant;
using base::NoteType;
using ports::FileStamp;
using std::chrono::milliseconds;
using std::chrono::nanoseconds;
using std::chrono::seconds;
using tests::failureKind;
using tests::onThreads;
using tests::TempFolder;

constexpr Instant begun{seconds{1'700'000'000}};

struct Note {
    NoteType type;
    std::string filename;
    std::uint64_t inode;
    std::string bytes;
    std::string record;

    FileStamp stamp() const {
        return {.inode = inode,
                .size = bytes.size(),
                .modified = begun - seconds{100} - nanoseconds{inode},
                .changed = begun - seconds{50} - nanoseconds{inode},
                .created = {}};
    }
};

std::vector<Note> oddNotes() {
    return {
        {NoteType::note, "plain.md", 17, "# Plain\n", "record of it"},
        {NoteType::note, "two words \xC3\xA4\xF0\x9F\x90\x99.md", 4, "* task", ""},
        {NoteType::note, "raw \xFF\xFE.txt", 5, std::string("\x00\xFF\x80", 3), "r"},
        {NoteType::note, "hard.md", 99, "shared", "1"},
        {NoteType::note, "link.md", 99, "shared", "2"},
        {NoteType::note, "a/b/c/deep.md", 3, "deep", ""},
        {NoteType::note, "a/b/sibling.md", 2, "sibling", std::string(300, 'r')},
        {NoteType::note, "a.md", 1, "", "of an empty one"},
        {NoteType::calendar, "20190305.md", 18, "day", "d"},
        {NoteType::calendar, "plain.md", 19, "another folder's", ""},
    };
}

const NoteIndex::Key key{.root = "/data", .markers = {}};

void addTo(NoteIndexWriter& writer, const Note& note) {
    writer.add({.type = note.type,
                .filename = note.filename,
                .bytes = note.bytes,
                .stamp = note.stamp(),
                .record = note.record});
}

base::Result<std::unique_ptr<NoteIndexWriter>> beginIn(const TempFolder& folder) {
    platform::PosixCacheFiles files;
    return NoteIndexWriter::begin(files, folder / "one", key, begun);
}

void writeIndex(const TempFolder& folder, const std::vector<Note>& notes) {
    auto writer = beginIn(folder);
    REQUIRE(writer.ok());
    const auto writing = std::move(writer).value();
    for (const Note& note : notes) {
        addTo(*writing, note);
    }
    REQUIRE(writing->finish().ok());
}

auto openIn(const TempFolder& folder, const NoteIndex::Key& by = key) {
    platform::PosixCacheFiles files;
    return NoteIndex::open(files, folder / "one", by);
}

std::optional<NoteIndex::Entry> find(const NoteIndex& index, const Note& note) {
    const auto parts = splitFilename(note.filename);
    return index.folder(note.type, parts.folder).find(parts.name, note.stamp());
}

/// An index in memory. It shows bytes that lie alone, so that reading beside them is noticed.
class HeldFiles final : public ports::CacheFiles {
public:
    explicit HeldFiles(std::string_view bytes) : _held(std::make_shared<const Held>(bytes)) {}

    std::string_view bytes() const { return _held->bytes(); }

    base::Result<std::shared_ptr<const ports::MappedFile>> map(const std::string&) override {
        return std::shared_ptr<const ports::MappedFile>(_held);
    }
    base::Result<std::unique_ptr<ports::NewCacheFile>> create(const std::string& file) override {
        return Failure{Failure::Kind::denied, file};
    }
    base::Result<base::Done> remove(const std::string& file) override {
        return Failure{Failure::Kind::denied, file};
    }

private:
    struct Held final : ports::MappedFile {
        explicit Held(std::string_view text) : held(text.begin(), text.end()) {}
        std::string_view bytes() const override { return {held.data(), held.size()}; }
        void forget(std::string_view) const override {}
        std::vector<char> held;
    };
    std::shared_ptr<const Held> _held;
};

/// Every text that is found is right. Returns how many were.
std::size_t checkTexts(const NoteIndex& index, const std::vector<Note>& notes) {
    std::size_t right = 0;
    for (const Note& note : notes) {
        const auto entry = find(index, note);
        const auto text = entry ? index.bytes(*entry) : std::nullopt;
        const auto record = entry ? index.record(*entry) : std::nullopt;
        const bool isRight = !text || (*text == note.bytes && record == note.record);
        if (!isRight) {
            FAIL_CHECK(note.filename);
        }
        right += text && isRight ? 1U : 0U;
    }
    return right;
}

std::size_t checkBytes(std::string_view bytes, const std::vector<Note>& notes) {
    HeldFiles files(bytes);
    const auto index = NoteIndex::open(files, "one", key);
    return index ? checkTexts(**index, notes) : 0;
}

/// With checksums that fit, as damage has them that was made on purpose.
std::string sealedAgain(std::string_view bytes) {
    const std::size_t end = bytes.size() - sizeof(IndexTrailer);
    auto trailer = rowAt<IndexTrailer>(bytes.substr(end), 0);
    if (trailer.texts <= end) {
        trailer.tablesHash = textHash(bytes.substr(trailer.texts, end - trailer.texts));
    }
    std::string whole(bytes.substr(0, end));
    return whole += bytesOf(sealed(trailer));
}

TEST_CASE("an index gives back what it was given") {
    const TempFolder folder;
    std::vector<Note> notes = oddNotes();
    notes.push_back({NoteType::note, "large.md", 1000, std::string(1 << 20, 'z'), "large"});
    writeIndex(folder, notes);
    const auto opened = openIn(folder);
    REQUIRE(opened.ok());
    const NoteIndex& index = **opened;
    CHECK(index.size() == notes.size());
    CHECK(checkTexts(index, notes) == notes.size());
    index.forget(index.earlierBytes(NoteType::note, "large.md").value_or(""));
    for (const Note& note : notes) {
        CAPTURE(note.filename);
        CHECK(index.earlierBytes(note.type, note.filename) == note.bytes);
    }
    for (const std::string_view name : {"", "none", "a", "b/sibling.md", "a/b", "a/plain.md"}) {
        CAPTURE(name);
        CHECK_FALSE(index.earlierBytes(NoteType::note, name).has_value());
        CHECK_FALSE(index.folder(NoteType::trash, name).find("plain.md", notes[0].stamp()));
    }
    CHECK_FALSE(index.folder(NoteType::note, "a/b").find("plain.md", notes[0].stamp()));
}

TEST_CASE("many threads add to one index") {
    const TempFolder folder;
    const auto noteOf = [](std::size_t thread, std::size_t i) {
        const std::size_t number = thread * 1000 + i;
        return Note{NoteType::note, "f" + std::to_string(i % 7) + "/" + std::to_string(number),
                    number * 7919 % 10'007, std::string(i, 'a') + std::to_string(number),
                    std::to_string(number)};
    };
    {
        auto begunWriter = beginIn(folder);
        REQUIRE(begunWriter.ok());
        const auto writer = std::move(begunWriter).value();
        onThreads(4, [&](std::size_t thread) {
            for (std::size_t i = 0; i < 500; ++i) {
                addTo(*writer, noteOf(thread, i));
            }
        });
        CHECK(writer->size() == 2000);
        REQUIRE(writer->finish().ok());
    }
    const auto index = openIn(folder);
    REQUIRE(index.ok());
    std::vector<Note> all;
    for (std::size_t thread = 0; thread < 4; ++thread) {
        for (std::size_t i = 0; i < 500; ++i) {
            all.push_back(noteOf(thread, i));
        }
    }
    CHECK(checkTexts(**index, all) == all.size());
}

TEST_CASE("a note is found in the very state that it was read in") {
    const TempFolder folder;
    writeIndex(folder, oddNotes());
    const auto index = openIn(folder);
    REQUIRE(index.ok());
    struct Row {
        const char* what;
        std::function<void(FileStamp&)> change;
        bool isFound;
    };
    for (const Row& row : std::vector<Row>{
             {"nothing", [](FileStamp&) {}, true},
             {"birth", [](FileStamp& stamp) { stamp.created += seconds{1}; }, true},
             {"inode", [](FileStamp& stamp) { ++stamp.inode; }, false},
             {"size", [](FileStamp& stamp) { ++stamp.size; }, false},
             {"size by 4 GiB", [](FileStamp& stamp) { stamp.size += 1ULL << 32; }, false},
             {"modified", [](FileStamp& stamp) { stamp.modified -= nanoseconds{1}; }, false},
             {"changed", [](FileStamp& stamp) { stamp.changed += nanoseconds{1}; }, false}}) {
        for (const Note& note : oddNotes()) {
            CAPTURE(row.what);
            CAPTURE(note.filename);
            FileStamp stamp = note.stamp();
            row.change(stamp);
            const auto parts = splitFilename(note.filename);
            const auto found = (*index)->folder(note.type, parts.folder).find(parts.name, stamp);
            CHECK(found.has_value() == row.isFound);
        }
    }
}

TEST_CASE("what may still change unseen is left out") {
    const TempFolder folder;
    struct Row {
        const char* what;
        nanoseconds modified;  ///< before the reading began
        nanoseconds changed;
        std::uint64_t moreBytes;
        bool isKept;
    };
    for (const Row& row : {Row{"old", seconds{9}, seconds{9}, 0, true},
                           Row{"just old enough", seconds{2}, seconds{2}, 0, true},
                           Row{"just modified", seconds{2} - nanoseconds{1}, seconds{9}, 0, false},
                           Row{"just changed", seconds{9}, seconds{2} - nanoseconds{1}, 0, false},
                           Row{"of the future", seconds{-900}, seconds{9}, 0, false},
                           Row{"shorter than it was", seconds{9}, seconds{9}, 1, false}}) {
        CAPTURE(row.what);
        const auto writer = beginIn(folder);
        REQUIRE(writer.ok());
        (*writer)->add({.type = NoteType::note,
                        .filename = "a.md",
                        .bytes = "text",
                        .stamp = {.inode = 1,
                                  .size = 4 + row.moreBytes,
                                  .modified = begun - row.modified,
                                  .changed = begun - row.changed,
                                  .created = {}},
                        .record = {}});
        CHECK((*writer)->size() == (row.isKept ? 1U : 0U));
    }
}

TEST_CASE("an index of others is not taken for ours") {
    const TempFolder folder;
    const std::vector<Note> notes = oddNotes();
    writeIndex(folder, notes);
    CHECK(failureKind(openIn(folder, {.root = "/data2", .markers = {}})) == Failure::Kind::changed);

    const auto others = openIn(folder, {.root = "/data", .markers = {.isDashTodo = true}});
    REQUIRE(others.ok());
    const auto entry = find(**others, notes[0]);
    REQUIRE(entry.has_value());
    CHECK((*others)->bytes(*entry) == notes[0].bytes);
    CHECK_FALSE((*others)->record(*entry).has_value());

    const std::string bytes = folder.read("one");
    struct Row {
        std::size_t fromEnd;
        char byte;
        std::string_view says;
    };
    for (const Row& row :
         {Row{4, 0, "older"}, Row{4, 127, "newer"}, Row{8, 1, "machine"}, Row{16, 1, "damaged"}}) {
        std::string other = bytes;
        other[other.size() - row.fromEnd] = row.byte;
        HeldFiles files(other);
        const auto opened = NoteIndex::open(files, "one", key);
        REQUIRE(failureKind(opened) == Failure::Kind::malformed);
        CHECK(opened.failure().description.find(row.says) != std::string::npos);
    }
}

TEST_CASE("damage never makes a wrong text") {
    const TempFolder folder;
    const std::vector<Note> notes = oddNotes();
    writeIndex(folder, notes);
    const std::string bytes = folder.read("one");
    REQUIRE(checkBytes(bytes, notes) == notes.size());
    std::size_t unharmed = 0;
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        CAPTURE(at);
        for (const int bit : {1, 0x80, 0xFF}) {
            std::string damaged = bytes;
            damaged[at] = static_cast<char>(damaged[at] ^ bit);
            unharmed += checkBytes(damaged, notes) == notes.size() ? 1U : 0U;
        }
        CHECK(checkBytes(bytes.substr(0, at), notes) == 0);
    }
    CHECK(unharmed <= 7 * 3);  // what fills the texts up
}

void checkWithin(std::string_view whole, std::optional<std::string_view> part) {
    const bool isWithin = !part || part->empty() ||
                          (part->data() >= whole.data() &&
                           part->data() + part->size() <= whole.data() + whole.size());
    if (!isWithin) {
        FAIL_CHECK("a part that is not in the file");
    }
}

TEST_CASE("damage made on purpose is read within its bounds") {
    const TempFolder folder;
    const std::vector<Note> notes = oddNotes();
    writeIndex(folder, notes);
    const std::string bytes = folder.read("one");
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        for (const int bits : {1, 0x80, 0xFF}) {
            std::string damaged = bytes;
            damaged[at] = static_cast<char>(damaged[at] ^ bits);
            HeldFiles files(sealedAgain(damaged));
            const auto index = NoteIndex::open(files, "one", key);
            for (std::size_t i = 0; index && i < notes.size(); ++i) {
                const std::string_view whole = files.bytes();
                const auto entry = find(**index, notes[i]);
                checkWithin(whole, entry ? (*index)->bytes(*entry) : std::nullopt);
                checkWithin(whole, entry ? (*index)->record(*entry) : std::nullopt);
                checkWithin(whole, (*index)->earlierBytes(notes[i].type, notes[i].filename));
            }
        }
    }
}

TEST_CASE("the index before stays until another is whole, and for those who have it open") {
    const TempFolder folder;
    const std::vector<Note> notes = oddNotes();
    writeIndex(folder, notes);
    const auto index = openIn(folder);
    REQUIRE(index.ok());
    {
        const auto writer = beginIn(folder);
        REQUIRE(writer.ok());
        addTo(**writer, notes[0]);
        CHECK(failureKind(beginIn(folder)) == Failure::Kind::exists);
    }
    REQUIRE(openIn(folder).ok());
    CHECK((*openIn(folder))->size() == notes.size());
    writeIndex(folder, {});
    CHECK(checkTexts(**index, notes) == notes.size());
    REQUIRE(openIn(folder).ok());
    CHECK((*openIn(folder))->size() == 0);
}

}  // namespace
}  // namespace tessaly::store
