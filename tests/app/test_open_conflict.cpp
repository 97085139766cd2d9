// SPDX-License-Identifier: MIT
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <doctest/doctest.h>

#include "app/open_conflict.h"
#include "app/planner.h"

namespace {

using namespace tessaly;
using app::OpenConflict;

constexpr const char* note = "Notes/Plans.txt";
constexpr const char* copy = "Notes/Plans.sync-conflict-20190304-101112-ABCDEFG.txt";

/// What the user of an open note sees of its conflict.
class SeenConflict {
public:
    SeenConflict() {
        write(note, "one\ntwo\n");
        write(copy, "one\n2\n");
        _conflict.check();
    }

    void write(std::string_view name, std::string_view text) {
        _planner.folder().write(std::string(tests::Planner::root) + std::string(name), text);
    }
    std::string textOf(std::string_view name) const { return _planner.textOf(name); }
    OpenConflict& conflict() { return _conflict; }
    /// The answers since the last time.
    std::vector<std::string> answers() {
        _planner.mainQueue().runPosted();
        return std::exchange(_answers, {});
    }

private:
    tests::Planner _planner{{.isThreaded = false}};
    std::vector<std::string> _answers;
    OpenConflict _conflict{_planner.services(),
                           {base::NoteType::note, "Plans.txt", std::nullopt},
                           {[this](const app::ShownVersion& version) {
                                _answers.push_back(version.bar.showOtherVersionTitle +
                                                   (version.isCurrent ? "*" : "") + " " +
                                                   (version.text ? *version.text : "-"));
                            },
                            [this] { _answers.push_back("hidden"); },
                            [this](const std::string&) { _answers.push_back("resolved"); },
                            [this](const std::string&) { _answers.push_back("refused"); }}};
};

using Answers = std::vector<std::string>;

}  // namespace

TEST_CASE("versions are gone through, and one is kept") {
    SeenConflict seen;
    CHECK(seen.answers() == Answers{"1/2* one\ntwo\n"});
    seen.conflict().showOther();
    CHECK(seen.answers() == Answers{"2/2 one\n2\n"});
    SUBCASE("another look stays with the version that is shown") {
        seen.conflict().check();
        CHECK(seen.answers() == Answers{"2/2 one\n2\n"});
    }
    SUBCASE("the other one") {
        seen.conflict().choose();
        CHECK(seen.answers() == Answers{"resolved", "hidden"});
        CHECK(seen.textOf(note) == "one\n2\n");
        CHECK(seen.textOf(copy) == "-");
    }
    SUBCASE("the current one, which was edited meanwhile") {
        seen.conflict().showOther();
        seen.write(note, "one\ntwo\nthree\n");
        seen.answers();
        seen.conflict().choose();
        CHECK(seen.answers() == Answers{"resolved", "hidden"});
        CHECK(seen.textOf(note) == "one\ntwo\nthree\n");
        CHECK(seen.textOf(copy) == "-");
    }
    SUBCASE("merged") {
        seen.conflict().merge();
        CHECK(seen.answers() == Answers{"resolved", "hidden"});
        CHECK(seen.textOf(note) == "one\ntwo\n2\n");
        CHECK(seen.textOf(copy) == "-");
    }
    SUBCASE("a version that is not what was seen is not kept") {
        seen.write(copy, "other\n");
        seen.conflict().choose();
        CHECK(seen.answers() == Answers{"refused", "2/2 other\n"});
        CHECK(seen.textOf(note) == "one\ntwo\n");
    }
}
