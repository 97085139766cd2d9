// SPDX-License-Identifier: MIT
#include <string>

#include <doctest/doctest.h>

#include "base/utf8.h"
#include "cli/json_line.h"
#include "cli/safe_text.h"

using namespace tessaly::cli;

namespace {

void check(std::string_view text, std::string_view inLine, std::string_view inNote) {
    CAPTURE(text);
    CHECK(safeText(text) == inLine);
    CHECK(safeText(text, LineBreaks::kept) == inNote);
}

}  // namespace

TEST_CASE("nothing in a text steers a terminal, and the rest stays") {
    check("", "", "");
    check("Ἰλιάς 日本 👩‍👩‍👧", "Ἰλιάς 日本 👩‍👩‍👧",
          "Ἰλιάς 日本 👩‍👩‍👧");
    check("a\tb\nc", "a b c", "a\tb\nc");
    check("a\r\nb\rc\r", "a  b c ", "a\r\nb^Mc^M");
    check("\x1b]0;x\x07", "^[]0;x^G", "^[]0;x^G");
    check(std::string_view{"\0\x7f", 2}, "^@^?", "^@^?");
    check("\u009b31m", "<U+009B>31m", "<U+009B>31m");
    check("\u202e\u2066\u2028", "<U+202E><U+2066><U+2028>", "<U+202E><U+2066><U+2028>");
    check("\u200f\u061c", "\u200f\u061c", "\u200f\u061c");  // right-to-left text needs these
    check("\xff\xc3|\xe2\x82", "\uFFFD\uFFFD|\uFFFD\uFFFD", "\uFFFD\uFFFD|\uFFFD\uFFFD");
}

TEST_CASE("JSON is UTF-8 and holds nothing that steers a terminal") {
    const auto check = [](std::string_view text, std::string_view json) {
        CAPTURE(json);
        JsonObject object;
        object.add("a", text);
        CHECK(object.text() == json);
        CHECK(tessaly::base::isUtf8(object.text()));
    };
    check("\x1b\x07\n\"\\", R"({"a":"\u001b\u0007\n\"\\"})");
    check("\x7f\u009b\u202e\u2028", R"({"a":"\u007f\u009b\u202e\u2028"})");
    check("\xff\xf0\x9f", "{\"a\":\"\uFFFD\uFFFD\"}");
    check("Ἰλιάς\u200f", "{\"a\":\"Ἰλιάς\u200f\"}");
}
