// SPDX-License-Identifier: MIT
#include <algorithm>
#include <string>
#include <vector>

#include <doctest/doctest.h>

#include "base/log.h"
#include "support/log_capture.h"
#include "support/on_threads.h"

using namespace tessaly;

TEST_CASE("a failure is one line") {
    struct Row {
        const char* fixedText;
        const char* subject;
        const char* line;
    };
    const Row rows[] = {
        {"cannot read: ", "/a/b.txt", "cannot read: /a/b.txt"},
        {"took too long", "", "took too long"},
        {"took too long", "again", "took too long again"},
        {"cannot read: ", "a\nb\r\nc", "cannot read: a b  c"},
        {"cannot read: ", "Müll \xFF", "cannot read: Müll \xFF"},
    };
    for (const auto& row : rows) {
        const tests::LogCapture log;
        base::log(row.fixedText, row.subject);
        CHECK(log.lines() == std::vector<std::string>{row.line});
    }
}

TEST_CASE("lines of several threads neither mix nor get lost") {
    constexpr int each = 500;
    const tests::LogCapture log;
    tests::onThreads(4, [](std::size_t thread) {
        for (int i = 0; i < each; ++i) {
            base::log("line of ", std::to_string(thread));
        }
    });
    CHECK(log.lines().size() == 4 * each);
    CHECK(std::count(log.lines().begin(), log.lines().end(), "line of 3") == each);
}
