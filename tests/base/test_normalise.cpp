// SPDX-License-Identifier: MIT
#include <string>

#include <doctest/doctest.h>

#include "base/normalise.h"

using namespace tessaly;

TEST_CASE("which names are one spelling, and which collide where case is ignored") {
    struct Row {
        const char* one;
        const char* other;
        bool sameSpelling;
        bool collide;
    };
    const Row rows[] = {
        {"Note.txt", "Note.txt", true, true},
        {"Note.txt", "NOTE.TXT", false, true},
        {"Möbel", "Mo\u0308bel", true, true},
        {"MÖBEL", "mo\u0308bel", false, true},
        {"Straße", "STRASSE", false, true},
        {"\u1FB4", "\u03B1\u0345\u0301", true, true},
        {"\u0390", "\u03AA\u0301", false, true},
        {"ΟΔΟΣ", "οδος", false, true},
        {"ﬁ", "fi", false, true},
        {"é", "e", false, false},
        {"²", "2", false, false},
        {"I", "ı", false, false},
        {"a\xFF", "a\xFE", false, false},
        {"", "a", false, false},
    };
    for (const auto& row : rows) {
        CAPTURE(row.one);
        CHECK((base::nfc(row.one) == base::nfc(row.other)) == row.sameSpelling);
        CHECK((base::foldedForNames(row.one) == base::foldedForNames(row.other)) == row.collide);
    }
}

TEST_CASE("bytes that are no UTF-8 pass through") {
    const std::string broken = "o\u0308 \xFF\xE2\x82 A";
    CHECK(base::nfc(broken) == "ö \xFF\xE2\x82 A");
    CHECK(base::foldedForNames(broken) == "ö \xFF\xE2\x82 a");
}
