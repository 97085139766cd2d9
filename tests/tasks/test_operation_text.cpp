// SPDX-License-Identifier: MIT
#include <chrono>
#include <random>
#include <string>
#include <string_view>

#include <doctest/doctest.h>

#include "base/enum_names.h"
#include "tasks/operation_text.h"

namespace tessaly::tests {
namespace {

using namespace std::chrono_literals;
using tasks::LineEdit;
using tasks::NoteStep;
using tasks::Operation;

const base::Day newYear = std::chrono::year{2020} / 1 / 1;

/// Random operations, of strings that are hard to write down.
class Odd {
public:
    std::size_t below(std::size_t end) { return _random() % end; }

    std::string text() {
        static const std::string_view pieces[] = {
            "a", "\\",   "\\n", "\t", "\n", "\r",           "\r\n", "step",      "end ", "\xff\xfe",
            " ", "\xc3", "é",   "0",  "{}", "\xe2\x80\xa8", "\x1b", "\nend\n\n", "\\t",  "%s"};
        std::string text = below(8) == 0 ? std::string(1, '\0') : "";
        for (std::size_t left = below(5); left > 0; --left) {
            text += pieces[below(std::size(pieces))];
        }
        return text;
    }

    template <class Enum>
    Enum value() {
        const auto& rows = base::EnumNames<Enum>::rows;
        return rows[below(rows.size())].value;
    }

    NoteStep step() {
        NoteStep step{value<base::NoteType>(),    text(), {}, below(2) == 0, text(), text(),
                      {below(99), text(), text()}};
        for (std::size_t left = below(4); left > 0; --left) {
            step.edits.push_back({value<LineEdit::Kind>(), below(~std::size_t{0}), below(9), text(),
                                  text(), text(), below(9)});
        }
        return step;
    }

    Operation operation() {
        Operation operation;
        operation.time =
            std::chrono::sys_days{newYear} + std::chrono::nanoseconds(below(1ULL << 60));
        operation.cause = value<store::ChangeCause>();
        operation.tasks = below(9);
        operation.title = text();
        if (below(2) == 0) {
            operation.day = base::addDays(newYear, static_cast<int>(below(999)));
            operation.undoes = _random();
        }
        for (std::size_t left = below(4); left > 0; --left) {
            operation.steps.push_back(step());
        }
        return operation;
    }

private:
    std::mt19937_64 _random{20200101};
};

}  // namespace

TEST_CASE("operation text: what was written is read, also when a write was interrupted") {
    Odd odd;
    for (int round = 0; round < 100; ++round) {
        Operation operation = odd.operation();
        std::string text = tasks::textOf(operation);
        CAPTURE(text);
        REQUIRE(tasks::operationOf(text) == operation);
        if (operation.steps.empty()) {
            continue;
        }
        const std::size_t index = odd.below(operation.steps.size());
        const NoteStep step = odd.step();
        const std::string more = tasks::textOf(index, step);
        Operation amended = operation;
        amended.steps[index] = step;
        CHECK(tasks::operationOf(text + more) == amended);
        const std::string made = tasks::textOfStepsMade(operation.steps.size());
        CHECK(tasks::operationOf(text + made + more)->stepsMade == operation.steps.size());
        for (std::size_t cut = 0; cut < more.size(); ++cut) {
            CAPTURE(cut);
            const std::string torn = text + more.substr(0, cut);
            CHECK(tasks::operationOf(torn) == operation);
            CHECK(tasks::operationOf(torn + more) == amended);
        }
        for (std::size_t cut = 0; cut < text.size(); ++cut) {
            CHECK_FALSE(tasks::operationOf(text.substr(0, cut)).has_value());
        }
    }
}

TEST_CASE("operation text: what is not understood is no operation") {
    Operation operation;
    operation.time = std::chrono::sys_days{newYear} + 14h + 7min;
    operation.title = "Call\tBob\r";
    operation.steps.push_back({base::NoteType::note, "a.txt", {}, false, "", "1", {2, "", "x"}});
    operation.steps[0].edits.push_back({LineEdit::Kind::insert, 0, 3, "", "x", "y", 1});
    const std::string good =
        "tessaly operation 1\n"
        "time\t2020-01-01T14:07:00.000000000Z\ncause\tcompleted\ntasks\t0\n"
        "title\tCall\\tBob\\r\nsteps\t1\n"
        "step\t0\tNotes\ta.txt\t\t1\nbytes\t2\t\tx\ninsert\t0\t3\t1\t\tx\ty\nend\n";
    CHECK(tasks::textOf(operation) == good);
    CHECK(tasks::operationOf(good + "not ended") == operation);
    struct Row {
        std::string_view from;
        std::string_view to;
    };
    const Row rows[] = {
        {"operation 1", "operation 2"},
        {"operation 1", "operation 11"},
        {"operation 1\n", "operation 1\r\n"},
        {"completed", "eaten"},
        {"T14", "T24"},
        {"tasks\t0\n", ""},
        {"tasks\t0", "tasks\t-1"},
        {"tasks\t0", "color\tred"},
        {"tasks\t0", "day\t2019-02-30"},
        {"Call\\t", "Call\\x"},
        {"steps\t1", "steps\t2"},
        {"steps\t1", "steps\t0"},
        {"step\t0", "step\t1"},
        {"step\t0", "step\t"},
        {"Notes", "Nowhere"},
        {"\ta.txt", ""},
        {"insert", "shift"},
        {"\t3\t1", "\t3\t1.5"},
        {"\tx\ty", "\tx\ty\tz"},
        {"bytes\t2", "bytes\t99999999999999999999"},
        {"end\n", ""},
    };
    for (const Row& row : rows) {
        std::string bad = good;
        bad.replace(bad.find(row.from), row.from.size(), row.to);
        CAPTURE(bad);
        CHECK(bad != good);
        CHECK_FALSE(tasks::operationOf(bad).has_value());
    }
}

}  // namespace tessaly::tests
