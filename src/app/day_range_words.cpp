// SPDX-License-Identifier: MIT
#include "app/day_range_words.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string_view>

namespace tessaly::app {
namespace {

/// How many bytes both texts begin with, up to the last blank among them.
std::size_t commonStart(std::string_view a, std::string_view b) {
    const auto differ = std::mismatch(a.begin(), a.end(), b.begin(), b.end()).first;
    const std::size_t blank = a.substr(0, static_cast<std::size_t>(differ - a.begin())).rfind(' ');
    return blank == a.npos ? 0 : blank + 1;
}

/// How many bytes both texts end with, from the first of them on that begins another word.
std::size_t commonEnd(std::string_view a, std::string_view b) {
    const auto differ = std::mismatch(a.rbegin(), a.rend(), b.rbegin(), b.rend()).first;
    const std::string_view end = a.substr(static_cast<std::size_t>(a.rend() - differ));
    const std::size_t word = end.find_first_of(" ,");
    return word == end.npos ? 0 : end.size() - word;
}

}  // namespace

std::string dayRangeWords(base::Day first, base::Day last, const base::LocaleFormats& formats) {
    const std::string from = formats.day(first, "dMMMMyyyy");
    const std::string to = formats.day(last, "dMMMMyyyy");
    const std::size_t start = commonStart(from, to);
    const std::size_t end = from == to ? 0 : commonEnd(from, to);
    return from == to ? from : from.substr(0, from.size() - end) + " – " + to.substr(start);
}

}  // namespace tessaly::app
