// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstddef>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <doctest/doctest.h>
#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

#include "base/graphemes.h"
#include "base/utf8.h"
#include "search/folded_text.h"

namespace tessaly::search {

namespace {

/// Stands in for a byte that is no UTF-8: a character for private use.
constexpr char32_t standIn = 0x10FE00;

icu::UnicodeString wideText(std::string_view text) {
    icu::UnicodeString wide;
    for (std::size_t at = 0; at < text.size();) {
        const base::CodePoint c = base::codePointAt(text, at);
        const auto byte = static_cast<unsigned char>(text[at]);
        wide.append(static_cast<UChar32>(c.size == 1 && byte >= 0x80 ? standIn + byte : c.value));
        at += c.size;
    }
    return wide;
}

std::string narrowText(const icu::UnicodeString& wide) {
    std::string text;
    for (int at = 0; at < wide.length(); at = wide.moveIndex32(at, 1)) {
        const auto c = static_cast<char32_t>(wide.char32At(at));
        if (c >= standIn) {
            text += static_cast<char>(c - standIn);
        } else {
            base::appendUtf8(text, c);
        }
    }
    return text;
}

/// By the definition, in UTF-16.
std::string expectedFolded(std::string_view text) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2& nfc = *icu::Normalizer2::getNFCInstance(status);
    icu::UnicodeString wide = nfc.normalize(wideText(text), status);
    wide.toLower(icu::Locale::getRoot());
    wide.findAndReplace(u"ς", u"σ");
    wide = nfc.normalize(wide, status);
    REQUIRE(U_SUCCESS(status));
    return narrowText(wide);
}

std::string withSmallAscii(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return result;
}

/// `needsFolding` may ask for too much here, but not for too little.
void check(std::string_view text) {
    const std::string expected = expectedFolded(text);
    if (folded(text) != expected || (!needsFolding(text) && expected != withSmallAscii(text))) {
        CAPTURE(text);
        REQUIRE(folded(text) == expected);
        REQUIRE(needsFolding(text));
    }
}

const std::vector<std::string>& pieces() {
    static const std::vector<std::string> all = {"a",
                                                 "A",
                                                 "e",
                                                 "W",
                                                 "İ",
                                                 "ı",
                                                 "ß",
                                                 "ẞ",
                                                 "Ä",
                                                 "ä",
                                                 "é",
                                                 "ấ",
                                                 "ḉ",
                                                 "ś",
                                                 "ﬁ",
                                                 "\u212B",
                                                 "\u2126",
                                                 "\u0301",
                                                 "\u0308",
                                                 "\u0323",
                                                 "\u0327",
                                                 "\u0307",
                                                 "\u0345",
                                                 "\u0344",
                                                 "Σ",
                                                 "σ",
                                                 "ς",
                                                 "Ὀ",
                                                 "ᾼ",
                                                 "Ё",
                                                 "ж",
                                                 "\u0306",
                                                 "ก",
                                                 "\u0E38",
                                                 "\u0E48",
                                                 "क",
                                                 "\u093C",
                                                 "\u094D",
                                                 "\u0958",
                                                 "ব",
                                                 "\u09C7",
                                                 "\u09BE",
                                                 "\u0DD9",
                                                 "\u0DCF",
                                                 "\u0DCA",
                                                 "ᄀ",
                                                 "ᅡ",
                                                 "ᆨ",
                                                 "각",
                                                 "가",
                                                 "か",
                                                 "\u3099",
                                                 "が",
                                                 "会",
                                                 "\uF900",
                                                 "א",
                                                 "\u05B8",
                                                 "\u05BC",
                                                 "\u05C1",
                                                 "م",
                                                 "\u064E",
                                                 "\u0651",
                                                 "\u0655",
                                                 "👍",
                                                 "🏽",
                                                 "\u200D",
                                                 "\uFE0F",
                                                 "🇩",
                                                 "🇪",
                                                 "𐐀",
                                                 "\U0001D15E",
                                                 "\u0600",
                                                 "\uFEFF",
                                                 " ",
                                                 "\r",
                                                 "\n",
                                                 "\t",
                                                 std::string(1, '\0'),
                                                 "\xFF",
                                                 "\xC3",
                                                 "\xE2\x82",
                                                 "\xF0\x9F\x91",
                                                 "\xED\xA0\x80",
                                                 "\x80",
                                                 "some longer words, Wholly of ASCII, "};
    return all;
}

std::string randomText(std::mt19937& random) {
    std::string text;
    for (auto left = random() % 12; left > 0; --left) {
        text += pieces()[random() % pieces().size()];
    }
    return text;
}

std::vector<std::string_view> clustersOf(std::string_view text) {
    std::vector<std::string_view> clusters;
    while (!text.empty()) {
        clusters.push_back(base::firstGraphemes(text, 1));
        text.remove_prefix(clusters.back().size());
    }
    return clusters;
}

}  // namespace

TEST_CASE("Folding by example, and texts that can stay as they are") {
    struct Row {
        std::string_view text;
        std::string_view expected;
        bool needs;
    };
    const Row rows[] = {
        {"Call BOB @{[Z`", "call bob @{[z`", false},
        {"für die größte Übung", "für die größte übung", true},
        {"für die größte übung", "für die größte übung", false},
        {"fu\u0308r GRO\u0308SSE", "für grösse", true},
        {"ΟΔΟΣ ὁδός", "οδοσ ὁδόσ", true},
        {"ὁδό", "ὁδό", false},
        {"İstanbul", "i\u0307stanbul", true},
        {"会議の資料を、ガギグ", "会議の資料を、ガギグ", false},
        {"カ\u3099", "ガ", true},
        {"오늘 회의", "오늘 회의", false},
        {"ᄒ\u1161\u11AB", "한", true},
        {"วันนี้ที่กรุงเทพ", "วันนี้ที่กรุงเทพ", false},
        {"เ\u0E48\u0E38", "เ\u0E38\u0E48", true},
        {"बड़े \u0958", "बड\u093Cे \u0915\u093C", true},
        {"ब\u0921\u093Cे", "ब\u0921\u093Cे", false},
        {"সভা\u09DF", "সভ\u09BEয\u09BC", true},
        {"সভ\u09BEয\u09BC", "সভ\u09BEয\u09BC", false},
        {"ক\u09C7\u09BE", "ক\u09CB", true},
        {"ש\u05C1\u05B8", "ש\u05B8\u05C1", true},
        {"à\u0323", "ạ\u0300", true},
        {"T\u0308 t", "ẗ t", true},
        {"x\u030C ❤\uFE0F 👍🏽 1\u20E3", "x\u030C ❤\uFE0F 👍🏽 1\u20E3", false},
        {"a\xC3", "a\xC3", true},
        {"", "", false},
    };
    for (const Row& row : rows) {
        CAPTURE(row.text);
        CHECK(folded(row.text) == row.expected);
        CHECK(needsFolding(row.text) == row.needs);
        check(row.text);
    }
}

TEST_CASE("Each character folds as its definition says, alone and with a mark") {
    std::string page;
    for (char32_t c = 0; c < 0x20000; ++c) {
        if (c >= 0xD800 && c < 0xE000) {
            continue;
        }
        base::appendUtf8(page, c);
        page += c % 2 == 0 ? " " : "\u0301 ";
        if (c % 0x40 == 0x3F) {
            check(page);
            page.clear();
        }
    }
}

TEST_CASE("Any text folds as its definition says, in one or in parts") {
    std::mt19937 random(9);
    for (int round = 0; round < 15'000; ++round) {
        const std::string text = randomText(random);
        check(text);
        std::string parts;
        for (const std::string_view cluster : clustersOf(text)) {
            parts += folded(cluster);
        }
        CHECK(parts == folded(text));
    }
}

TEST_CASE("A letter with any number of marks") {
    std::mt19937 random(11);
    const auto marks = std::find(pieces().begin(), pieces().end(), "\u0301");
    for (int round = 0; round < 500; ++round) {
        std::string text = "A";
        for (auto left = random() % 200; left > 0; --left) {
            text += random() % 50 == 0 ? pieces()[random() % pieces().size()] : marks[random() % 7];
            text += random() % 10 == 0 ? "\u0F73" : "";
        }
        check(text);
    }
    // Moving each mark by itself would take minutes.
    std::string text = "a";
    std::string below;
    std::string above;
    for (int i = 0; i < 200'000; ++i) {
        text += "\u0301\u0323";
        below += i == 0 ? "ạ" : "\u0323";
        above += "\u0301";
    }
    CHECK((folded(text) == below + above));
}

TEST_CASE("A stretch of a folded text comes from the characters that it touches") {
    std::mt19937 random(10);
    for (int round = 0; round < 3'000; ++round) {
        const std::string text = randomText(random);
        const std::vector<std::string_view> clusters = clustersOf(text);
        const std::size_t first = random() % (clusters.size() + 1);
        const std::size_t end = first + random() % (clusters.size() - first + 1);
        Stretch expected;
        Stretch inFolded;
        for (std::size_t i = 0; i < end; ++i) {
            const std::size_t size = folded(clusters[i]).size();
            (i < first ? expected.start : expected.end) += clusters[i].size();
            (i < first ? inFolded.start : inFolded.end) += size;
        }
        expected.end += expected.start;
        inFolded.end += inFolded.start;
        CAPTURE(text);
        REQUIRE(unfolded(text, inFolded) == expected);
        if (first < end) {
            inFolded.start += random() % folded(clusters[first]).size();
            inFolded.end = std::max(inFolded.start + 1,
                                    inFolded.end - random() % folded(clusters[end - 1]).size());
            REQUIRE(unfolded(text, inFolded) == expected);
        }
    }
}

}  // namespace tessaly::search
