// SPDX-License-Identifier: MIT
#include "hostile_lines.h"

namespace tessaly::bench {

namespace {

constexpr HostileFamily families[] = {
    {"tabs", "\t", "x - y"},
    {"tabs then marker", "\t", "- y"},
    {"spaces", " ", ""},
    {"spaces then text", " ", "x"},
    {"no-break spaces", "\u00a0", "x"},
    {"digits", "1", "x"},
    {"unclosed tag arguments", "#t( ", ""},
    {"unclosed mention arguments", "@m( ", ""},
    {"closed tag argument", "#t(", " )"},
    {"one long tag", "t", "#t"},
    {"tag of slashes", "#a/", "("},
    {"hashes", "#", ""},
    {"hashes then blank", "#", " x"},
    {"hash and digits", "#1", ""},
    {"sign then digits", " #1 @1", "x"},
    {"sign then punctuation", " #!.,", "x"},
    {"quoted signs", "\"#", ""},
    {"round brackets", "(", ""},
    {"square brackets", "[", ""},
    {"boxes", "* [x", "] y"},
    {"dates cut short", ">2019-01-", ""},
    {"dates", " >2019-01-01", ""},
    {"date mentions", " @2019-01-01(", ""},
    {"completions cut short", "@done(", ""},
    {"completions without end", " @done(2019-01-01 10:00", ""},
    {"completions", " @done(2019-01-01 10:00 AM)", ""},
    {"repeats", " @repeat(1/", ""},
    {"not UTF-8", "\xff#", ""},
    {"ideographs", "\u4f1a#", "("},
    {"line separators", "\u2028* ", "x"},
};

}  // namespace

std::span<const HostileFamily> hostileFamilies() {
    return families;
}

std::string hostileLine(const HostileFamily& family, std::size_t bytes) {
    std::string line;
    while (line.size() < bytes) {
        line += family.unit;
    }
    return line + family.end;
}

}  // namespace tessaly::bench
