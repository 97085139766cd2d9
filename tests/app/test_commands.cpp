// SPDX-License-Identifier: MIT
#include <map>
#include <set>
#include <sstream>
#include <string>

#include <doctest/doctest.h>

#include "app/commands.h"
#include "base/enum_names.h"

using namespace tessaly;

namespace {

std::set<std::string> partsOf(const char* text) {
    std::istringstream words{text};
    std::set<std::string> parts;
    for (std::string word; words >> word;) {
        CHECK_MESSAGE(parts.insert(word).second, word);
    }
    return parts;
}

}  // namespace

TEST_CASE("no key or letter is that of two commands, and every name is its own") {
    std::map<std::string, std::string> keys;
    std::map<std::string, std::string> letters;
    std::set<std::string> names;
    for (const app::ListMove& move : app::listMoves()) {
        for (const std::string& letter : partsOf(move.keys)) {
            letters[letter] = move.text;
        }
    }
    for (const app::CommandRow& row : app::commandRows()) {
        const std::string name = row.name;
        CAPTURE(name);
        CHECK(names.insert(name).second);
        CHECK(*row.text != '\0');
        for (const std::string& key : partsOf(row.keys)) {
            CHECK_MESSAGE(keys.emplace(key, name).second, key, " is that of ", keys[key]);
        }
        for (const std::string& letter : partsOf(row.listKeys)) {
            CHECK_MESSAGE(letters.emplace(letter, name).second, letter, " is that of ",
                          letters[letter]);
            CHECK(app::listCommand(letter) == row.id);
        }
    }
    CHECK_FALSE(app::listCommand(""));
    CHECK_FALSE(app::listCommand("o e"));
}

TEST_CASE("every command can be done by a key, and every mark of the editor is a command") {
    std::set<editor::MarkAction> marks;
    for (const app::CommandRow& row : app::commandRows()) {
        CHECK_MESSAGE(*row.keys != '\0', row.name);
        if (row.mark) {
            CHECK_MESSAGE(marks.insert(*row.mark).second, row.name);
            CHECK(row.group == app::CommandGroup::format);
        }
    }
    CHECK(marks.size() == base::EnumNames<editor::MarkAction>::rows.size());
}
