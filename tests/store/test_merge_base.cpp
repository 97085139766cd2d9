// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <doctest/doctest.h>

#include "random_texts.h"
#include "store/line_ends.h"
#include "store/merge_base.h"
#include "store/merge_versions.h"

namespace tessaly::tests {
namespace {

using Texts = std::vector<std::string>;
using Views = std::vector<std::string_view>;

std::string merged(const Texts& earlier, const Texts& versions) {
    const Views held(earlier.begin(), earlier.end());
    const Views views(versions.begin(), versions.end());
    const auto base = store::mergeBase(held, views);
    return base ? store::mergeVersions(base->text, views) : store::mergeVersions(views);
}

std::string shown(const Texts& texts) {
    std::string all;
    for (const std::string& text : texts) {
        all += "[" + text + "]\n";
    }
    return all;
}

std::string fromNumbers(std::string_view numbers) {
    std::string text;
    for (const char number : numbers) {
        text += "a line that is long, " + std::string(1, number) + "\n";
    }
    return text;
}

/// A text and the devices that go on from it.
class Chain {
public:
    explicit Chain(Random& random) : _random(random) {}

    /// `text` after some edits; lines of two devices are alike only where they are short.
    std::string edited(const std::string& text, const std::string& device) {
        std::vector<std::string> lines;
        for (const std::string_view line : store::linesOfText(text)) {
            lines.emplace_back(line);
        }
        lines.pop_back();
        for (std::size_t edits = 1 + _random.below(4); edits > 0; --edits) {
            const auto at = static_cast<std::ptrdiff_t>(_random.below(lines.size() + 1));
            if (_random.below(3) == 0 && at < std::ssize(lines)) {
                lines.erase(lines.begin() + at);
            } else {
                lines.insert(lines.begin() + at, newLine(device));
            }
        }
        std::string result;
        for (const std::string& line : lines) {
            result += line + "\n";
        }
        return result;
    }

private:
    std::string newLine(const std::string& device) {
        return _random.below(2) == 0
                   ? _random.oneOf({"a", "b", "c", ""})
                   : "line " + std::to_string(_lines++) + " that was written on " + device;
    }

    Random& _random;
    int _lines = 0;
};

}  // namespace

TEST_CASE("merge base: what all of the texts that may be the base have") {
    struct Row {
        std::string what;
        Views earlier;
        Views versions;
        std::optional<std::size_t> index;
        std::string_view lines;  ///< each a long line's number
    };
    const Row rows[] = {
        {"nothing is known", {}, {"12", "13"}, std::nullopt, ""},
        {"only the versions are", {"12", "13"}, {"12", "13"}, std::nullopt, ""},
        {"one text", {"1"}, {"12", "13"}, 0, "1"},
        {"the versions behind it do not count", {"1", "12", "13"}, {"12", "13"}, 0, "1"},
        {"nor does a side's own text", {"1", "12"}, {"124", "13"}, 0, "1"},
        {"one that was given up and come back to may", {"12", "1", "14"}, {"142", "13"}, 0, "1"},
        {"a version that came before another text may", {"13", "132"}, {"1324", "13"}, 0, "13"},
        {"shared lines tell that what is older is not it",
         {"", "1", "1234", "12345"},
         {"12346", "12347"},
         1,
         "1"},
        {"but not what came with them", {"1", "12349", "123495"}, {"123496", "12347"}, 0, "1"},
        {"two of them are a chance", {"1", "12", "123", "1234"}, {"1235", "1236"}, 0, "1"},
        {"nothing in common", {"45"}, {"12", "13"}, 0, "45"},
        {"nothing is certain", {"4", "5"}, {"12", "13"}, std::nullopt, ""},
        {"repeated lines", {"1221", "12221"}, {"12", "1222"}, 0, "1221"},
        {"but not of three versions", {"1221", "12221"}, {"12", "122", "13"}, 0, "1"},
    };
    for (const Row& row : rows) {
        CAPTURE(row.what);
        Texts earlier;
        Texts versions;
        for (const std::string_view text : row.earlier) {
            earlier.push_back(fromNumbers(text));
        }
        for (const std::string_view text : row.versions) {
            versions.push_back(fromNumbers(text));
        }
        const auto base = store::mergeBase(Views(earlier.begin(), earlier.end()),
                                           Views(versions.begin(), versions.end()));
        REQUIRE(base.has_value() == row.index.has_value());
        if (base) {
            CHECK(base->index == *row.index);
            CHECK(base->text == fromNumbers(row.lines));
        }
    }
}

TEST_CASE("merge versions: with what came before, and without") {
    struct Row {
        std::string what;
        Texts earlier;
        Texts versions;
        std::string expected;
    };
    const std::string day = "# Day\n* Call\n* Mail\n";
    const Row rows[] = {
        {"one version", {}, {"a\r\nb\n"}, "a\r\nb\n"},
        {"a task ticked here, moved there, a line deleted",
         {day},
         {"# Day\n* [x] Call\n* Mail\n", "# Day\n* Call >2019-05-21\n",
          "# Day\n* Call\n* Mail\nx\n"},
         "# Day\n* [x] Call >2019-05-21\nx\n"},
        {"no line of the last text held here is lost",
         {day, day + "mine\n"},
         {day + "mine\nmore\n", day + "theirs\n"},
         day + "mine\nmore\ntheirs\n"},
        {"all lines, common ones once",
         {},
         {"a\nb\nd\n", "a\nc\nd\n", "a\nd\ne\n"},
         "a\nb\nc\nd\ne\n"},
        {"nothing", {}, {"", ""}, ""},
        {"empty against a text", {}, {"", "a\r\nb"}, "a\r\nb"},
        {"the current version's breaks", {}, {"a\r\nb\r\n", "a\nb\nc\n"}, "a\r\nb\r\nc\r\n"},
        {"the same with a base", {"a\nb\n"}, {"a\nb\nc\n", "\xEF\xBB\xBFx\r\nb\r\n"}, "x\nb\nc\n"},
        {"a mark of byte order stays the current version's",
         {},
         {"\xEF\xBB\xBF"
          "a\n",
          "a\nb\n"},
         "\xEF\xBB\xBF"
         "a\nb\n"},
        {"what differs in breaks alone stays", {}, {"a\r\nb\nc\n", "a\nb\r\nc\r\n"}, "a\r\nb\nc\n"},
        {"a carriage return inside a line", {}, {"a\rb\n", "ab\n"}, "a\rb\nab\n"},
        {"no break at the end", {}, {"a", "b"}, "a\nb"},
        {"a break at the end of what is not last", {}, {"a\n", "a\nb"}, "a\nb"},
        {"no break there", {}, {"a\nb", "a\n"}, "a\nb"},
        {"empty lines at the end", {}, {"a\n\n", "a"}, "a\n\n"},
        {"not UTF-8", {"\xE4\nb\n"}, {"\xE4\nb\nc\n", "\xE4\n"}, "\xE4\nc\n"},
    };
    for (const Row& row : rows) {
        CAPTURE(row.what);
        CHECK(merged(row.earlier, row.versions) == row.expected);
    }
}

TEST_CASE("merge base: whatever is known, no line is lost that a version has more often") {
    Random random(20191123);
    int withBase = 0;
    for (int round = 0; round < 10000; ++round) {
        Chain chain(random);
        Texts earlier{chain.edited("", "the first")};
        for (std::size_t steps = 1 + random.below(5); steps > 0; --steps) {
            earlier.push_back(chain.edited(earlier.back(), "the first"));
        }
        const std::string base = earlier.back();
        std::string mine = base;
        for (std::size_t steps = random.below(3); steps > 0; --steps) {
            earlier.push_back(mine = chain.edited(mine, "mine"));
        }
        Texts versions{chain.edited(mine, "mine"), chain.edited(base, "theirs")};
        if (random.below(3) == 0) {
            versions.push_back(chain.edited(base, "the third"));
        }
        if (std::find(versions.begin(), versions.end(), base) != versions.end()) {
            continue;  // whose device has changed nothing
        }
        for (const std::string& version : versions) {
            if (random.below(2) == 0) {
                earlier.push_back(version);
            }
        }
        const std::string known = shown(earlier);
        CAPTURE(known);
        const std::string joined = shown(versions);
        CAPTURE(joined);
        const std::string result = merged(earlier, versions);
        CAPTURE(result);
        const std::string all = merged({}, versions);
        CAPTURE(all);
        for (const std::string& version : versions) {
            requireNoLineLost(lineCounts(base), lineCounts(version), lineCounts(result));
            requireNoLineLost({}, lineCounts(version), lineCounts(all));
        }
        withBase += result != all ? 1 : 0;
    }
    CHECK(withBase > 1000);  // a base that is never there would lose nothing either
}

TEST_CASE("merge versions: without a base no line of any texts is lost, and none is made up") {
    Random random(20190305);
    for (int round = 0; round < 10000; ++round) {
        Texts versions;
        for (std::size_t count = 2 + random.below(3); count > 0; --count) {
            versions.push_back(random.text({"a", "b", "c", "", "* Call", "* [x] Call"}));
        }
        const std::string joined = shown(versions);
        CAPTURE(joined);
        const std::string result = merged({}, versions);
        CAPTURE(result);
        std::size_t bytes = 0;
        for (const std::string& version : versions) {
            requireNoLineLost({}, lineCounts(version), lineCounts(result));
            bytes += version.size() + 1;
        }
        REQUIRE(result.size() <= bytes);
        REQUIRE(merged({}, {versions[0], versions[0]}) == versions[0]);
        REQUIRE(merged({}, {result, versions[0]}) == result);
    }
}

}  // namespace tessaly::tests
