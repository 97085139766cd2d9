// SPDX-License-Identifier: MIT
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <doctest/doctest.h>
#include <unicode/brkiter.h>
#include <unicode/unistr.h>

#include "base/graphemes.h"
#include "base/utf8.h"

using namespace tessaly;

namespace {

/// The borders by ICU over UTF-16, as byte offsets.
std::vector<std::size_t> bordersByIcu(const std::string& text) {
    UErrorCode status = U_ZERO_ERROR;
    const std::u16string utf16 = base::toUtf16(text);
    const icu::UnicodeString unicode(utf16.data(), static_cast<std::int32_t>(utf16.size()));
    const std::unique_ptr<icu::BreakIterator> iterator(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    REQUIRE(U_SUCCESS(status));
    iterator->setText(unicode);
    std::vector<std::size_t> borders;
    for (auto at = iterator->first(); at != icu::BreakIterator::DONE; at = iterator->next()) {
        borders.push_back(base::byteOffset(text, static_cast<std::size_t>(at)));
    }
    return borders;
}

/// The last of `borders` that is not above `bytes`.
std::size_t lastUpTo(const std::vector<std::size_t>& borders, std::size_t bytes) {
    std::size_t last = 0;
    for (const std::size_t border : borders) {
        last = border <= bytes ? border : last;
    }
    return last;
}

void checkCuts(const std::string& text) {
    CAPTURE(text);
    const auto borders = bordersByIcu(text);
    REQUIRE(base::graphemeCount(text) == borders.size() - 1);
    for (std::size_t count = 0; count < borders.size() + 2; ++count) {
        const std::size_t end = count < borders.size() ? borders[count] : text.size();
        REQUIRE(base::firstGraphemes(text, count) == text.substr(0, end));
    }
    for (std::size_t bytes = 0; bytes < text.size() + 2; ++bytes) {
        REQUIRE(base::cutToBytes(text, bytes) == text.substr(0, lastUpTo(borders, bytes)));
    }
}

}  // namespace

TEST_CASE("cuts never split a user-perceived character, and lose no whole one") {
    const std::vector<const char*> pieces(
        {"a", "\r\n", "\r", "\n", "é", "e\u0301\u0323", "漢", "👨‍👩‍👧", "🇩🇪", "🇫", "각",
         "ᄀ", "ᆨ", "\xFF", "\u200D", "👍🏽", "नि", "1\uFE0F\u20E3", "0123456789"});
    std::mt19937_64 engine(1);
    checkCuts("");
    for (int round = 0; round < 400; ++round) {
        std::string text;
        for (auto length = engine() % 8 + 1; length > 0; --length) {
            text += pieces[engine() % pieces.size()];
        }
        checkCuts(text);
    }
}

TEST_CASE("the columns of a text in a terminal") {
    struct Row {
        const char* text;
        std::size_t columns;
    };
    const Row rows[] = {
        {"", 0},         {"abc", 3},
        {"é", 1},        {"e\u0301", 1},
        {"漢字", 4},     {"ｱ", 1},
        {"Ａ", 2},       {"👍", 2},
        {"👍🏽", 4}, {"👨‍👩‍👧", 2},
        {"🇩🇪", 2},       {"❤", 1},
        {"❤\uFE0F", 2},  {"1\uFE0F\u20E3", 2},
        {"1", 1},        {"a\u200Bb", 2},
        {"\uFEFFa", 1},  {"각", 2},
        {"각", 2},       {"a\tb", 2},
        {"\x1B", 0},     {"• Tür ✓ 日", 10},
    };
    for (const auto& row : rows) {
        CAPTURE(row.text);
        CHECK(base::terminalWidth(row.text) == row.columns);
    }
}
