// SPDX-License-Identifier: MIT
#include <future>
#include <string>
#include <vector>

#include <doctest/doctest.h>
#include <fmt/format.h>

#include "app/planner.h"
#include "app/search_notes.h"
#include "base/enum_names.h"

using namespace tessaly;
using app::NoteSearch;
using app::Services;
using search::FilterItem;
using search::FilterParamater;
using tests::Planner;

namespace {

constexpr const char* notes =
    "-- Calendar/20190305.txt\n* Call Bob #home\n\t* [x] Ask @maria @done(2019-03-04)\nBob called\n"
    "-- Calendar/20190304.md\n* [>] Call later, Bob >2019-03-08\nno task of bob's\n"
    "-- Calendar/20190401.txt\n"
    "-- Calendar/2019-3-8.txt\n* A stray that bob has\n"
    "-- Calendar/old/20190306.txt\n* In a folder, bob\n"
    "-- Notes/Plans.txt\n# Plans for Bob\n* [ ] Bob, call back\n- call Bob\n* [-] without\n"
    "-- Notes/Plans (conflicted copy 2019-03-01).txt\n* Of the other device, bob\n"
    "-- Notes/Work/Deep/e.md\n# \xc3\x89t\xc3\xa9 #work\n* \xc3\x89T\xc3\x89 comes #work/garden\n"
    "-- Notes/Work/nfd.txt\ne\xcc\x81te\xcc\x81 once more\n* [ ] bob in e\xcc\x81te\xcc\x81\n"
    "-- Notes/Work/Bob.txt\n\n"
    "-- Notes/Work/kelvin.txt\n# Cold\n* 300 \xe2\x84\xaa, at \xe2\x84\xaa"
    "elvin's\n"
    "-- Notes/Work/\xc4\xb0zmir.txt\n\n"
    "-- Notes/Work/dotted.txt\n# Lands\n* [x] \xc4\xb0stanbul\n\xc4\xb0zmir\n"
    "-- Notes/Work/greek.txt\n\xce\xa4\xce\xaf\xcd\xbe \xe1\xbf\xaf\n* "
    "\xce\x9f\xce\x94\xce\x9f\xce\xa3\n"
    "-- Notes/joined.txt\n# One\n\xef\xbb\xbf* call bob\n"
    "-- Notes/_Ideas.txt\n* [>] Idea of @bob >2019-03-07\n* Undated idea\n"
    "-- Notes/.hidden.txt\n* Not bob's\n";

void writeNotes(Planner& planner) {
    planner.write(notes);
    const std::string root{Planner::root};
    planner.folder().write(root + "Notes/bom.txt", "\xef\xbb\xbf# Marked\r\n* Bob\r\n* two\r\nbob");
    planner.folder().write(root + "Notes/latin bob.txt", "# Caf\xe9 bob\n");
    std::string many = "# Many\n";
    for (int i = 0; i < 300; ++i) {
        many +=
            fmt::format("* [{}] task {} of bob's many\nline {}\n", i % 3 == 0 ? "x" : " ", i, i);
    }
    planner.folder().write(root + "Notes/many.txt", many);
}

std::string textOf(const search::SearchResults& results) {
    std::string text = fmt::format("{} rows{}\n", results.total, results.hasTodos ? ", todos" : "");
    if (results.agendaDate) {
        text += base::tagText(*results.agendaDate) + "\n";
    }
    for (const search::SearchResultItem& row : results.items) {
        text += fmt::format(
            "{}|{}|{}|{}|{}|{}+{}|{}|{}|{}|{}\n", base::rawValue(row.type), row.title, row.content,
            row.filename, row.groupFilename, row.highlightRange.location, row.highlightRange.length,
            row.lineIndex ? static_cast<int>(*row.lineIndex) : -1, base::rawValue(row.lineType),
            row.day ? base::tagText(*row.day) : std::string(), static_cast<int>(row.position));
    }
    return text;
}

std::string ofField(Services& services, const NoteSearch& wanted) {
    search::SearchHelper& helper = services.searchHelper();
    std::promise<std::string> answer;
    search::SearchHelper::Request request;
    request.query = wanted.query;
    request.filter = wanted.filter;
    request.mostRows = wanted.mostRows;
    std::string last;
    request.results = [&](const std::string&, const search::SearchResults& results, bool isFinal) {
        last = isFinal ? textOf(results) : last;
    };
    request.finished = [&] { answer.set_value(last); };
    helper.search(++helper.searchId, request);
    return answer.get_future().get();
}

std::string ofCommand(Services& services, const NoteSearch& wanted) {
    return textOf(app::searchNotes(services, wanted).results);
}

std::vector<NoteSearch> searches() {
    std::vector<NoteSearch> all;
    for (const char* query : {"bob",
                              "call bob",
                              "k",
                              "i",
                              "\xe2\x84\xaa",
                              "kelvin",
                              "zmir",
                              "izmir",
                              ";",
                              "`",
                              "\xc3\x89T\xc3\x89",
                              "te\xcc\x81",
                              "\xce\xbf\xce\xb4\xce\xbf\xcf\x82",
                              "#work",
                              "#wor",
                              "@bob",
                              "@done",
                              ",b",
                              "",
                              "//recent",
                              "//inbox",
                              "//nix",
                              "is:done bob",
                              "is:task title:plans",
                              "title:bob",
                              "in:work",
                              "-bob",
                              "on:2019-03-05",
                              "before:2019-03-06 bob",
                              "mar",
                              "today",
                              "latin",
                              "e",
                              "*",
                              "task 17",
                              "\xe9",
                              "stray"}) {
        all.push_back({query, {}});
    }
    const auto filter = [&](const char* query, std::vector<FilterItem> items) {
        all.push_back({query, std::move(items)});
    };
    filter("", {FilterItem(FilterParamater::open)});
    filter("//inbox", {FilterItem(FilterParamater::noteItem)});
    filter("bob", {FilterItem(FilterParamater::noStatus), FilterItem(FilterParamater::done)});
    filter("",
           {FilterItem(FilterParamater::keyword, "Call"), FilterItem(FilterParamater::scheduled)});
    filter("#work", {FilterItem(FilterParamater::keyword, "comes")});
    filter("bob", {FilterItem(FilterParamater::timeframe, "fptf_past")});
    all.push_back({std::string("a\0b", 3), {}});
    all.push_back({std::string(1 << 20, 'i'), {}});
    all.push_back({"bob", {}, 7});
    return all;
}

}  // namespace

TEST_CASE("a search finds the same in the files, in memory and in the field") {
    for (const char* settings : {R"({"sortBy":0})", R"({"sortBy":1})"}) {
        CAPTURE(settings);
        Planner planner;
        planner.set(settings);
        writeNotes(planner);
        Services& services = planner.services();
        const auto all = searches();
        std::vector<std::string> fromFiles;
        for (const NoteSearch& wanted : all) {
            fromFiles.push_back(ofCommand(services, wanted));
        }
        services.noteCache().load();
        services.noteCache().waitUntilIdle();
        for (std::size_t index = 0; index < all.size(); ++index) {
            CAPTURE(all[index].query.substr(0, 100));
            CAPTURE(index);
            CHECK(ofField(services, all[index]) == fromFiles[index]);
            CHECK(ofCommand(services, all[index]) == fromFiles[index]);
        }
    }
}

TEST_CASE("what folding makes of a text is found in the text as it lies") {
    Planner planner;
    writeNotes(planner);
    const struct {
        const char* query;
        const char* row;
    } rows[] = {
        {"kelvin",
         "at \xe2\x84\xaa"
         "elvin's|Work/kelvin.txt|Work/kelvin.txt"},
        {"zmir", "|Work/dotted.txt|Work/dotted.txt"},
        {"\xce\xaf;", "|Work/greek.txt|Work/greek.txt"},
        {"\xc3\xa9t\xc3\xa9", "bob in e\xcc\x81te\xcc\x81|Work/nfd.txt|"},
        {"bob", "noteTodo|Bob|Bob|bom.txt|bom.txt|0+3|1|"},
        {"mon, 1 apr", "note|"},
    };
    for (const auto& row : rows) {
        CAPTURE(std::string(row.query));
        const std::string found = ofCommand(planner.services(), {row.query, {}});
        CHECK_MESSAGE(found.find(row.row) != std::string::npos, found);
    }
}
