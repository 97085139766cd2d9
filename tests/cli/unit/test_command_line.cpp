// SPDX-License-Identifier: MIT
#include <doctest/doctest.h>

#include "cli/command_line.h"

using namespace tessaly::cli;

namespace {

/// Everything that was understood, in one line; misuse as "!".
std::string understood(std::vector<const char*> words) {
    words.insert(words.begin(), "tessaly");
    const auto invocation = parseCommandLine(static_cast<int>(words.size()), words.data());
    if (!invocation) {
        return "!";
    }
    std::string text = invocation->verb == nullptr ? "-" : invocation->verb->name;
    for (const std::string& argument : invocation->arguments) {
        text += " " + argument;
    }
    for (const auto& [name, value] : invocation->options) {
        text += " " + name + "=" + value;
    }
    text += invocation->root ? " root=" + *invocation->root : "";
    text += invocation->now ? " now=" + *invocation->now : "";
    return text + (invocation->json ? " json" : "") + (invocation->help ? " help" : "");
}

}  // namespace

TEST_CASE("options stand anywhere, and values may look like verbs, options or nothing") {
    CHECK(understood({}) == "-");
    CHECK(understood({"--json"}) == "- json");
    CHECK(understood({"--root", "list", "list"}) == "list root=list");
    CHECK(understood({"list", "--root=a", "--json", "--root", "b"}) == "list root=b json");
    CHECK(understood({"show", "list"}) == "show list");
    CHECK(understood({"show", "today", "--json"}) == "show today json");
    CHECK(understood({"show", "--", "--json"}) == "show --json");
    CHECK(understood({"show", "", "--root=a"}) == "show  root=a");
    CHECK(understood({"search", "is:open", "--", "-call", "--", "[a,b]", "--json", "list"}) ==
          "search is:open -call -- [a,b] --json list");
    CHECK(understood({"day", "-1w"}) == "day -1w");
    CHECK(understood({"--now", "2019-12-31", "day", "+3d"}) == "day +3d now=2019-12-31");
    CHECK(understood({"parse", "-"}) == "parse -");
    CHECK(understood({"settings", "set", "fontDelta", "-3"}) == "settings set fontDelta -3");
    CHECK(understood({"settings", "set", "fontFamily", ""}) == "settings set fontFamily ");
    CHECK(understood({"tasks", "--state", "open,done"}) == "tasks --state=open,done");
    CHECK(understood({"list", "--all"}) == "list --all=");
    CHECK(understood({"show", "-h"}) == "show help");
    CHECK(understood({"show", "--version"}) == "show");
    CHECK(understood({"--help", "list"}) == "list help");
    CHECK(understood({"help"}) == "- help");
    CHECK(understood({"help", "list"}) == "list help");
}

TEST_CASE("what cannot be understood is misuse") {
    CHECK(understood({"show"}) == "!");
    CHECK(understood({"show", "a", "b"}) == "!");
    CHECK(understood({"today", "list"}) == "!");
    CHECK(understood({"frob", "today"}) == "!");
    CHECK(understood({"today", "--all"}) == "!");
    CHECK(understood({"--all", "list"}) == "!");
    CHECK(understood({"list", "--all", "--calendar"}) == "!");
    CHECK(understood({"list", "--folder"}) == "!");
    CHECK(understood({"list", "--folder", "--", "a"}) == "!");
    CHECK(understood({"tasks", "--state", "open", "--state", "open"}) == "!");
    CHECK(understood({"--", "list"}) == "!");
    CHECK(understood({"list", "--", "a"}) == "!");
    CHECK(understood({"help", "lst"}) == "!");
    CHECK(understood({"--color", "red", "list"}) == "!");
    CHECK(understood({"-x"}) == "!");
}
