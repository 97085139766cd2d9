// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstddef>
#include <memory>
#include <random>
#include <string>
#include <string_view>

#include <doctest/doctest.h>

#include "search/needle.h"

namespace tessaly::search {

namespace {

char small(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool isSame(char a, char b) {
    return small(a) == b;
}

std::size_t expectedFind(std::string_view haystack, std::string_view needle, std::size_t from) {
    for (std::size_t at = from; at + needle.size() <= haystack.size(); ++at) {
        if (std::equal(needle.begin(), needle.end(), haystack.begin() + static_cast<long>(at),
                       [](char n, char h) { return isSame(h, n); })) {
            return at;
        }
    }
    return Needle::npos;
}

/// A block of just this size, so that a sanitizer sees who reads beyond it.
class Block {
public:
    explicit Block(std::string_view text) : _size(text.size()), _bytes(new char[text.size()]) {
        std::copy(text.begin(), text.end(), _bytes.get());
    }
    std::string_view view() const { return {_bytes.get(), _size}; }

private:
    std::size_t _size;
    std::unique_ptr<char[]> _bytes;
};

void check(std::string_view haystack, const Needle& needle, std::size_t from = 0) {
    const std::size_t expected = expectedFind(haystack, needle.text(), from);
    if (needle.find(haystack, from) != expected) {
        CAPTURE(haystack);
        CAPTURE(needle.text());
        CAPTURE(from);
        REQUIRE(needle.find(haystack, from) == expected);
    }
}

std::string repeated(std::string_view unit, std::size_t size) {
    std::string text;
    while (text.size() < size) {
        text += unit;
    }
    return text;
}

}  // namespace

TEST_CASE("A needle is found at any place of a text of any length, and only there") {
    const Needle needles[] = {Needle("x"),      Needle("["),  Needle("@{"),      Needle("me"),
                              Needle("zebra-"), Needle("ü"),  Needle("größe"),   Needle("aaaaaaab"),
                              Needle("会議"),   Needle("`z"), Needle("\xA4\xC3")};
    for (const Needle& needle : needles) {
        std::string capitals = needle.text();
        std::transform(capitals.begin(), capitals.end(), capitals.begin(),
                       [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
        for (std::size_t size = 0; size <= 150; ++size) {
            // What differs by one bit from what is looked for, as letters do from their capitals.
            std::string others(size, '.');
            for (std::size_t i = 0; i < size; ++i) {
                others[i] = static_cast<char>(needle.text()[i % needle.text().size()] ^
                                              (i % 3 == 0 ? 0x40 : 0x60));
            }
            check(Block(others).view(), needle);
            for (std::size_t at = 0; at + capitals.size() <= size; ++at) {
                std::string with = others;
                with.replace(at, capitals.size(), capitals);
                const Block block(with);
                check(block.view(), needle);
                check(block.view(), needle, at);
                check(block.view(), needle, at + 1);
            }
        }
    }
}

TEST_CASE("A needle is found as by comparing everywhere") {
    std::mt19937 random(7);
    const auto below = [&random](std::size_t end) { return random() % end; };
    const std::string_view alphabets[] = {"ab", "aAbB", "a\xC3\xA4\xC3\x84 ", "[{;\x1B@`\0"};
    for (int round = 0; round < 20'000; ++round) {
        const std::string_view alphabet = alphabets[below(std::size(alphabets))];
        const auto text = [&](std::size_t size) {
            std::string made(size, ' ');
            std::generate(made.begin(), made.end(),
                          [&] { return alphabet[below(alphabet.size())]; });
            return made;
        };
        std::string wanted = text(below(7));
        std::transform(wanted.begin(), wanted.end(), wanted.begin(), small);
        const Block block(text(below(81)));
        check(block.view(), Needle(wanted), below(block.view().size() + 2));
    }
    CHECK(Needle("").find("abc", 3) == 3);
    CHECK(Needle("").find("abc", 4) == Needle::npos);
    CHECK_FALSE(Needle("a").isIn(""));
}

TEST_CASE("Texts that nearly match everywhere") {
    std::mt19937 random(8);
    for (int round = 0; round < 100; ++round) {
        const std::string unit = repeated(random() % 2 == 0 ? "ab" : "a", 1 + random() % 20) + "b";
        std::string haystack = repeated(unit, 8'000);
        for (auto changes = random() % 4; changes > 0; --changes) {
            haystack[random() % haystack.size()] = 'A';
        }
        std::string wanted = haystack.substr(random() % 4'000, 2 + random() % 2'000);
        std::transform(wanted.begin(), wanted.end(), wanted.begin(), small);
        wanted.back() = random() % 2 == 0 ? 'a' : wanted.back();
        check(Block(haystack).view(), Needle(wanted), random() % 5'000);
    }
    // Comparing at each place would take minutes.
    const std::string periodic = repeated("aB", 4'000'000);
    const std::string wanted = repeated("ab", 400'000) + "a";
    CHECK(Needle(wanted + "a").find(periodic) == Needle::npos);
    CHECK(Needle(wanted + "c").find(periodic + "aC") == periodic.size() + 2 - wanted.size() - 1);
    CHECK(Needle(wanted + "a").find(periodic + "aa") == periodic.size() + 2 - wanted.size() - 1);
}

}  // namespace tessaly::search
