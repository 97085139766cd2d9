// SPDX-License-Identifier: MIT
#include <string>
#include <vector>

#include <doctest/doctest.h>

#include "platform/metadata_query_contract.h"
#include "platform/possible_changes.h"
#include "platform/watch_tree.h"

namespace tessaly::platform {
namespace {

using tests::Changes;
using tests::entryAt;
using tests::treeAt;

TEST_CASE("a place is told once, and not beside its tree") {
    struct Row {
        Changes added;
        Changes taken;
    };
    for (const Row& row : {
             Row{{}, {}},
             Row{{entryAt("b"), entryAt("a"), entryAt("b")}, {entryAt("a"), entryAt("b")}},
             Row{{entryAt("a"), treeAt("a"), entryAt("a")}, {treeAt("a")}},
             Row{{entryAt("a/b/c"), treeAt("a/b/d"), entryAt("a b"), entryAt("a0"), treeAt("a")},
                 {treeAt("a"), entryAt("a b"), entryAt("a0")}},
             Row{{treeAt("a"), entryAt("a/b/c"), treeAt("a/b"), entryAt("ab"), entryAt("a.md")},
                 {treeAt("a"), entryAt("a.md"), entryAt("ab")}},
             Row{{entryAt("a"), entryAt("a/b"), treeAt("")}, {treeAt("")}},
             Row{{treeAt(""), entryAt("a"), treeAt("b")}, {treeAt("")}},
         }) {
        PossibleChanges changes;
        for (const auto& change : row.added) {
            changes.add(change);
        }
        CHECK(tests::textOf(changes.take()) == tests::textOf(row.taken));
        CHECK(changes.empty());
    }
}

TEST_CASE("too many places are the root") {
    PossibleChanges changes;
    for (std::size_t i = 0; i < PossibleChanges::most; ++i) {
        changes.add(entryAt("Notes/" + std::to_string(i)));
    }
    CHECK(changes.take().size() == PossibleChanges::most);
    for (std::size_t i = 0; i < 2 * PossibleChanges::most; ++i) {
        changes.add(entryAt("Notes/" + std::to_string(i)));
    }
    CHECK(changes.take() == Changes{treeAt("")});
}

TEST_CASE("a folder has one watch and a watch one folder") {
    WatchTree tree;
    tree.set("", 1);
    tree.set("a", 2);
    tree.set("a/b", 3);
    tree.set("a b", 4);
    tree.set("c", 5);
    // The kernel gives the watch of "a" for a folder at another place, and "c" is another folder.
    tree.set("d", 2);
    tree.set("c", 6);
    CHECK(tree.size() == 5);
    CHECK(!tree.watchOf("a"));
    CHECK(*tree.folderOf(2) == "d");
    CHECK(tree.folderOf(5) == nullptr);
    CHECK(tree.forgetTree("a") == std::vector{3});
    CHECK(tree.forgetTree("") == std::vector{1, 4, 6, 2});
    CHECK(tree.size() == 0);
}

}  // namespace
}  // namespace tessaly::platform
