// SPDX-License-Identifier: MIT
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <doctest/doctest.h>

#include "search/filter_plist.h"
#include "support/failure_kind.h"

namespace tessaly::search {
namespace {

using P = FilterParamater;

std::string inXml(const std::string& content) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC \"-//X//DTD PLIST "
           "1.0//EN\" \"x.dtd\">\n<plist version=\"1.0\">" +
           content + "</plist>\n";
}

std::string itemInXml(const std::string& param, const std::string& value = "<string/>",
                      const std::string& display = "<true/>") {
    return "<dict><key>display</key>" + display + "<key>param</key>" + param + "<key>value</key>" +
           value + "</dict>";
}

const std::string open = itemInXml("<string>fp_open</string>");

std::string told(std::string_view bytes) {
    const auto filter = filterFromPlist(bytes);
    if (!filter) {
        CHECK(filter.failure().kind == base::Failure::Kind::malformed);
        return filter.failure().description;
    }
    return std::to_string(filter->size());
}

/// A binary property list of these objects, the first of which is its top; references have one
/// byte.
std::string binary(const std::vector<std::string>& objects) {
    std::string bytes = "bplist00";
    std::string offsets;
    for (const std::string& object : objects) {
        for (const unsigned shift : {16U, 8U, 0U}) {
            offsets += static_cast<char>(bytes.size() >> shift & 0xFFU);
        }
        bytes += object;
    }
    const auto number = [](std::size_t value) {
        std::string text(8, '\0');
        for (std::size_t i = 8; i-- > 0; value >>= 8U) {
            text[i] = static_cast<char>(value & 0xFFU);
        }
        return text;
    };
    const std::size_t table = bytes.size();
    return bytes + offsets + std::string("\0\0\0\0\0\0\3\1", 8) + number(objects.size()) +
           number(0) + number(table);
}

std::string byte(std::size_t value) {
    return std::string(1, static_cast<char>(value));
}

/// A dictionary whose keys are the objects `at`, `at + 1` … and whose values are those behind.
std::string dictionary(std::size_t at, std::size_t count) {
    std::string bytes = byte(0xD0 + count);
    for (std::size_t i = 0; i < 2 * count; ++i) {
        bytes += byte(at + i);
    }
    return bytes;
}

std::string asciiObject(const std::string& text) {
    return byte(0x5F) + byte(0x10) + byte(text.size()) + text;
}

std::vector<std::string> withValue(const std::string& value) {
    return {"\xA1\x01",
            dictionary(2, 3),
            asciiObject("param"),
            asciiObject("value"),
            asciiObject("display"),
            asciiObject("fp_keyword"),
            value,
            "\x09"};
}

}  // namespace

TEST_CASE("any filter comes back as it was written") {
    std::vector<Filter> filters{{}};
    for (const auto& timeframe : base::EnumNames<FilterTimeframe>::rows) {
        Filter filter;
        for (const auto& row : base::EnumNames<P>::rows) {
            filter.emplace_back(row.value, std::string(timeframe.text) + "€𝄞\n<&>\"",
                                filter.size() % 3 != 0);
        }
        filters.push_back(filter);
        filters.push_back({FilterItem(P::keyword, std::string(filters.size() * 700, 'x'))});
    }
    for (const Filter& filter : filters) {
        const auto bytes = filterToPlist(filter);
        REQUIRE(bytes);
        CHECK(bytes->starts_with("bplist00"));
        const auto read = filterFromPlist(*bytes);
        REQUIRE(read);
        CHECK(*read == filter);
    }
    const auto bytes = filterToPlist({FilterItem(P::eventItem)});
    REQUIRE(bytes);
    CHECK(bytes->find("fp_event") != std::string::npos);
    CHECK(bytes->find("param") < bytes->find("value"));
    CHECK(bytes->find("value") < bytes->find("display"));
}

TEST_CASE("what is no text, or too much of it, is not written") {
    for (const std::string& value :
         {std::string("a\0b", 3), std::string("\xFF"), std::string(2U << 20, 'x')}) {
        CHECK(!filterToPlist({FilterItem(P::keyword, value)}));
    }
}

TEST_CASE("a file of another form is refused in words that say where it is wrong") {
    struct Row {
        std::string bytes;
        std::string told;
    };
    const std::string noPlist = "it is no property list";
    const std::vector<Row> rows{
        {inXml("<array>" + open + open + "</array>"), "2"},
        {"\xEF\xBB\xBF\n" + inXml("<array><!-- none --></array>"), "0"},
        {inXml("<array>" +
               itemInXml("<string>fp_open</string><key>more</key><array><dict/></array>") +
               "</array>"),
         "1"},
        {inXml("<array>" + open + itemInXml("<string>fp_eventItem</string>") + "</array>"),
         "item 2: “fp_eventItem” is no parameter of filters"},
        {inXml("<array>" + itemInXml("<string></string>") + "</array>"),
         "item 1: “” is no parameter of filters"},
        {inXml("<array><string>fp_open</string></array>"), "item 1: it is no dictionary"},
        {inXml("<array><dict><key>param</key><string>fp_open</string></dict></array>"),
         "item 1: “value” is missing"},
        {inXml("<array>" + itemInXml("<integer>1</integer>") + "</array>"),
         "item 1: “param” is no text"},
        {inXml("<array>" + itemInXml("<string>fp_open</string>", "<data>YQ==</data>") + "</array>"),
         "item 1: “value” is no text"},
        {inXml("<array>" +
               itemInXml("<string>fp_open</string>", "<string/>", "<string>true</string>") +
               "</array>"),
         "item 1: “display” is neither true nor false"},
        {inXml("<dict>" + open + "</dict>"), noPlist},
        {inXml(open), "it is no list of parameters"},
        {inXml("<array>" + itemInXml("<string>&bomb;</string>") + "</array>"), noPlist},
        {inXml("<array>" + itemInXml("<string>\xFF</string>") + "</array>"), noPlist},
        {"", noPlist},
        {"bplist00", noPlist},
        {"bplist01" + std::string(40, '\0'), noPlist},
        {"* a note", noPlist},
        {"[{\"param\": \"fp_open\", \"value\": \"\", \"display\": true}]", noPlist},
        {inXml("<array>" + std::string(2U << 20, ' ') + "</array>"), noPlist},
        {binary(withValue(asciiObject("x"))), "1"},
        {binary(withValue(asciiObject(std::string("x\0y", 3)))), noPlist},
        {binary(withValue(asciiObject("\xFC"))), "item 1: “value” holds what is no readable text"},
        {binary(withValue(std::string("\x63\0x\0\0\0y", 7))), noPlist},
        {binary(withValue(std::string("\x61\xD8\0", 3))), noPlist},
    };
    for (const Row& row : rows) {
        CAPTURE(row.bytes.substr(0, 300));
        CHECK(told(row.bytes) == row.told);
    }
}

TEST_CASE("a file that is cut off is never taken for a shorter filter") {
    const auto written = filterToPlist({FilterItem(P::open), FilterItem(P::keyword, "a€")});
    REQUIRE(written);
    const std::string xml = inXml("<array>" + open + open + "</array>");
    for (const std::string& bytes : {*written, xml}) {
        const std::size_t end = bytes == xml ? bytes.find("</array>") + 8 : bytes.size();
        for (std::size_t size = 0; size < end; ++size) {
            CAPTURE(size);
            REQUIRE(!filterFromPlist(bytes.substr(0, size)));
        }
    }
}

TEST_CASE("files that would fill memory or stack, or take minutes, are refused") {
    std::vector<std::string> doubling;  // each names the next one sixteen times
    std::vector<std::string> deep;
    for (std::size_t i = 1; i < 200; ++i) {
        doubling.push_back("\xAE" + std::string(14, static_cast<char>(i)));
        deep.push_back("\xA1" + byte(i));
    }
    doubling.push_back("\x08");
    deep.push_back("\x08");
    const std::string large = "\x5F\x12" + std::string("\0\x07\0\0", 4) + std::string(0x70000, 'x');
    std::vector<std::string> repeated{"\xAF\x11\xFF\xFF" + std::string(0xFFFF, '\1'), large};
    std::string nested;
    for (int i = 0; i < 100000; ++i) {
        nested += "<array>";
    }
    std::string ampersands;
    for (int i = 0; i < 200000; ++i) {
        ampersands += "&amp;";
    }
    for (const std::string& bytes :
         {binary(doubling), binary(deep), binary({std::string("\xA1\0", 2)}), binary(repeated),
          inXml(nested), inXml("<!-- </array> -->" + nested),
          inXml("<array><string>" + ampersands + "</string></array>")}) {
        CHECK(told(bytes) == "it is no property list");
    }
}

}  // namespace tessaly::search
