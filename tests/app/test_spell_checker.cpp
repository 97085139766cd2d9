// SPDX-License-Identifier: MIT
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <doctest/doctest.h>

#include "app/planner.h"
#include "app/spell_checker.h"

using namespace tessaly;
using tests::Planner;
using Verdict = app::SpellChecker::Verdict;

namespace {

/// Knows some words, and how often it was asked.
struct Dictionary final : ports::Spelling {
    explicit Dictionary(std::size_t& asked) : _asked(asked) {}
    bool knows(std::string_view word) override {
        ++_asked;
        return std::set<std::string_view>{"good", "words"}.contains(word);
    }
    std::vector<std::string> suggestions(std::string_view word) override {
        return {std::string(word) + "1", "2", "3", "4", "5", "6", "7"};
    }

private:
    std::size_t& _asked;
};

/// A user with a dictionary, and a checker over it.
struct Writer {
    enum class Has { dictionary, none };
    explicit Writer(Has has = Has::dictionary) : _ports(planner.services().ports()) {
        if (has == Has::dictionary) {
            _ports.spelling = [this] { return std::make_unique<Dictionary>(asked); };
        }
        begin();
    }

    void begin() { checker = std::make_unique<app::SpellChecker>(_ports); }

    Verdict of(const std::string& word) {
        bool isDone = false;
        checker->lookUp({word}, [&] { isDone = true; });
        REQUIRE(planner.mainQueue().runPostedUntil([&] { return isDone; }));
        return checker->verdict(word);
    }

    std::string list() const {
        return planner.folder().exists("config/words.txt")
                   ? planner.folder().read("config/words.txt")
                   : "-";
    }

    Planner planner;
    std::size_t asked = 0;
    std::unique_ptr<app::SpellChecker> checker;

private:
    app::Ports _ports;
};

}  // namespace

TEST_CASE("words are known once the dictionary has been asked") {
    Writer writer;
    CHECK(writer.checker->verdict("good") == Verdict::unknown);
    CHECK(writer.of("good") == Verdict::right);
    CHECK(writer.of("godo") == Verdict::wrong);
    std::optional<std::vector<std::string>> found;
    writer.checker->suggest("godo", [&](const auto& words) { found = words; });
    REQUIRE(writer.planner.mainQueue().runPostedUntil([&] { return found.has_value(); }));
    CHECK(*found == std::vector<std::string>{"godo1", "2", "3", "4", "5", "6"});
}

TEST_CASE("without a dictionary all words are right") {
    Writer writer(Writer::Has::none);
    CHECK(writer.of("godo") == Verdict::right);
}

TEST_CASE("own words are right, in this run or for good") {
    Writer writer;
    const std::string file = writer.planner.folder() / "config/words.txt";
    CHECK(writer.of("tessaly") == Verdict::wrong);
    writer.checker->ignore("tessaly");
    CHECK(writer.checker->verdict("tessaly") == Verdict::right);
    CHECK(writer.checker->verdict("Tessaly") == Verdict::right);
    CHECK(writer.list() == "-");

    std::string failure;
    const auto failed = [&](const base::Failure& told) { failure = told.description; };
    CHECK(writer.of("Zanzibar") == Verdict::wrong);
    writer.checker->addWord("Zanzibar", failed);
    CHECK(writer.checker->verdict("Zanzibar") == Verdict::right);
    CHECK(writer.of("zanzibar") == Verdict::wrong);

    // Ends while the list may still have to be written. People write it too.
    writer.begin();
    CHECK(writer.list() == "Zanzibar\n");
    writer.planner.folder().write("config/words.txt", "one\r\n\nother");
    CHECK(writer.of("Zanzibar") == Verdict::wrong);
    CHECK(writer.of("One") == Verdict::right);
    writer.checker->addWord("Zanzibar", failed);
    writer.checker->addWord("other", failed);
    writer.begin();
    CHECK(writer.list() == "one\r\n\nother\nZanzibar\n");
    CHECK(failure.empty());
}

TEST_CASE("a word that cannot be kept is told of") {
    Writer writer;
    writer.planner.folder().mkdir("config/words.txt");
    std::string failure;
    writer.checker->addWord("word", [&](const base::Failure& told) { failure = told.description; });
    REQUIRE(writer.planner.mainQueue().runPostedUntil([&] { return !failure.empty(); }));
    CHECK(failure.find("words.txt") != std::string::npos);
}
