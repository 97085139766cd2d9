// SPDX-License-Identifier: MIT
#include <string>

#include <doctest/doctest.h>

#include "store/note_document.h"
#include "store_fixture.h"

using namespace tessaly;
using namespace std::string_literals;

TEST_CASE("bytes become text and the same bytes again") {
    tests::StoreFixture fixture;
    const auto row = [&](const std::string& bytes, const std::string& text) {
        CAPTURE(bytes);
        const auto opened =
            store::NoteDocument::open(fixture.files, fixture.folder.write("note.txt", bytes));
        REQUIRE(opened);
        CHECK(opened->noteContent == text);
        store::DocumentError error;
        CHECK(opened->dataOfType(error) == bytes);
    };
    row("", "");
    row("Text\r\nwithout end", "Text\r\nwithout end");
    row("\xEF\xBB\xBFMarked", "Marked");
    row("\xEF\xBB\xBF", "");
    row("\xEF\xBB\xBF\xEF\xBB\xBFTwice", "\xEF\xBB\xBFTwice");
    row("nul\0inside"s, "nul\0inside"s);
}

TEST_CASE("bytes that are not UTF-8 open as an absent text, which cannot be saved") {
    tests::StoreFixture fixture;
    for (const char* bytes : {"caf\xE9", "\xEF\xBB\xBF\xFF", "\xED\xA0\x80", "\xC0\x80"}) {
        const auto opened =
            store::NoteDocument::open(fixture.files, fixture.folder.write("note.txt", bytes));
        REQUIRE(opened);
        CHECK_FALSE(opened->noteContent);
        store::DocumentError error;
        CHECK_FALSE(opened->dataOfType(error));
        CHECK(error.message == "Content empty");
    }
    CHECK_FALSE(store::NoteDocument::open(fixture.files, fixture.folder / "none.txt").ok());

    store::NoteDocument document;
    document.readFromData("\xEF\xBB\xBFMarked");
    document.readFromData("plain");
    store::DocumentError error;
    CHECK(document.dataOfType(error) == "plain");
    document.noteContent = "\xFF";
    CHECK_FALSE(document.dataOfType(error));
    CHECK(error.message == "Could not convert content to .utf8 data");
}
