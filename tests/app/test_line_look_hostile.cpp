// SPDX-License-Identifier: MIT
#include <algorithm>
#include <ctime>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include <doctest/doctest.h>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include "app/inline_parts.h"
#include "app/line_look.h"
#include "base/utf8.h"
#include "grammar/todo_helper.h"

using namespace tessaly;
using app::FenceState;
using app::LineLook;
using app::LookSpan;
using app::SpanKind;

namespace {

/// A line of pieces that open, close and cross each other.
class HostileLine {
public:
    explicit HostileLine(unsigned seed) : _random(seed) {}

    std::string make() {
        static const std::vector<std::string> pieces = {"*",
                                                        "**",
                                                        "_",
                                                        "__",
                                                        "`",
                                                        "[",
                                                        "]",
                                                        "(",
                                                        ")",
                                                        "![",
                                                        "[[",
                                                        "]]",
                                                        "](",
                                                        "~~",
                                                        "==",
                                                        "http://",
                                                        "x://",
                                                        ">2019-05-21",
                                                        " ",
                                                        " ",
                                                        "a",
                                                        "b1",
                                                        "\t",
                                                        "\r",
                                                        "#tag",
                                                        "@men/tion",
                                                        " @2019-05-22",
                                                        "#a(",
                                                        "@b(",
                                                        "<2019-05-20",
                                                        "@done(2019-05-21 09:05 PM)",
                                                        "\u00FC",
                                                        "\U0001F600",
                                                        "\u3000",
                                                        "\u2028",
                                                        "\xFF",
                                                        "\xE2\x80",
                                                        "\x1A",
                                                        "[x] ",
                                                        "* ",
                                                        "- ",
                                                        "1. ",
                                                        "> ",
                                                        "# ",
                                                        "|",
                                                        "---",
                                                        "```",
                                                        "."};
        std::string line;
        for (std::size_t left = _random() % 24; left > 0; --left) {
            line += pieces[_random() % pieces.size()];
        }
        return line;
    }

private:
    std::mt19937 _random;
};

/// The UTF-16 units of a line at which a character begins, and its end.
std::vector<std::size_t> boundariesOf(std::string_view line) {
    std::vector<std::size_t> boundaries{0};
    for (std::size_t at = 0; at < line.size();) {
        const base::CodePoint next = base::codePointAt(line, at);
        boundaries.push_back(boundaries.back() + (next.value > 0xFFFF ? 2 : 1));
        at += next.size;
    }
    return boundaries;
}

bool isOuter(base::TextRange outer, base::TextRange inner) {
    return outer.location <= inner.location && inner.end() <= outer.end();
}

/// What is wrong with two spans of a line, of which `a` is told first.
std::string faultOf(const LookSpan& a, const LookSpan& b) {
    if (b.range.location < a.range.location) {
        return "out of order";
    }
    if (b.range.location >= a.range.end()) {
        return "";
    }
    if (!isOuter(a.range, b.range)) {
        return "crossing, or the inner one first";
    }
    const bool isClosed = a.kind == SpanKind::markup || a.kind == SpanKind::address ||
                          a.kind == SpanKind::code || a.kind == SpanKind::noteLink ||
                          a.kind == SpanKind::image;
    return isClosed ? "within what holds nothing" : "";
}

std::vector<std::string> faultsOf(std::string_view line, const LineLook& look) {
    const std::vector<std::size_t> boundaries = boundariesOf(line);
    std::vector<std::string> faults;
    const auto examine = [&](std::string_view name, base::TextRange range) {
        for (const std::size_t place : {range.location, range.end()}) {
            if (!std::binary_search(boundaries.begin(), boundaries.end(), place)) {
                faults.push_back(fmt::format("{} ends within a character", name));
            }
        }
    };
    examine("indent", look.indent);
    examine("marker", look.marker);
    examine("box", look.box);
    for (auto span = look.spans.begin(); span != look.spans.end(); ++span) {
        examine("span", span->range);
        if (span->range.length == 0 || span->range.location < look.marker.end()) {
            faults.emplace_back("empty, or in the marker");
        }
        for (auto other = std::next(span); other != look.spans.end(); ++other) {
            if (std::string fault = faultOf(*span, *other); !fault.empty()) {
                faults.push_back(std::move(fault));
            }
        }
    }
    return faults;
}

constexpr unsigned seeds = 20'000;

}  // namespace

TEST_CASE("spans of any line lie in it and never cross, and its state is the grammar's") {
    std::size_t spans = 0;
    for (unsigned seed = 0; seed < seeds; ++seed) {
        const std::string line = HostileLine(seed).make();
        const grammar::MarkerSettings markers{seed % 2 == 0, seed % 3 == 0, seed % 5 == 0};
        const auto before = static_cast<FenceState>(seed % 7 == 0 ? seed % 3 : 0);
        const LineLook look = app::lineLook(line, before, markers);
        const std::vector<std::string> faults = faultsOf(line, look);
        INFO("seed ", seed, ": ", line);
        REQUIRE(fmt::format("{}", fmt::join(faults, ", ")) == "");
        REQUIRE(look.state == grammar::TodoHelper::parseLine(line, markers).type);
        spans += look.spans.size();
    }
    CHECK(spans > seeds);
}

namespace {

std::string repeated(std::string_view piece, std::size_t bytes) {
    std::string text;
    while (text.size() < bytes) {
        text += piece;
    }
    return text;
}

/// The processor's time that this thread takes to read a line, the least of some tries.
double effort(const std::string& line) {
    double least = 0;
    for (int tries = 0; tries < 5; ++tries) {
        timespec before{};
        timespec after{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &before);
        const auto parts = app::findInlineParts(line, 0);
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &after);
        REQUIRE(parts.size() <= line.size());
        const double taken = static_cast<double>(after.tv_sec - before.tv_sec) * 1e9 +
                             static_cast<double>(after.tv_nsec - before.tv_nsec);
        least = tries == 0 ? taken : std::min(least, taken);
    }
    return least;
}

}  // namespace

TEST_CASE("hostile lines take effort by their length, not by its square") {
    constexpr std::size_t shortLine = 4'000;
    constexpr std::size_t times = 16;
    // Nanoseconds; below, memory that is fetched for the first time counts for more than reading. A
    // square would take seconds for the long line.
    constexpr double least = 50'000;
    for (const std::string piece : {"*",
                                    "**a",
                                    " *a",
                                    "_",
                                    "`",
                                    "[",
                                    "[[",
                                    "[a](",
                                    "![a]((",
                                    "[a](b)",
                                    "(",
                                    ")",
                                    "](",
                                    "~~",
                                    "~~a",
                                    " ==a",
                                    "x://",
                                    "x",
                                    "a://.",
                                    "a://)",
                                    "#a(",
                                    " #a",
                                    "@a(>2019-05-21 ",
                                    "#a[b](",
                                    "\"#a(\"@b(",
                                    " ",
                                    "**~~==",
                                    "\u00FC**"}) {
        CAPTURE(piece);
        const double small = std::max(least, effort(repeated(piece, shortLine)));
        // A square would be 16 times more than linear effort.
        CHECK(effort(repeated(piece, shortLine * times)) < 4 * times * small);
    }
}
