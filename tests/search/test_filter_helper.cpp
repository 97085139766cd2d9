// SPDX-License-Identifier: MIT
#include <algorithm>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <doctest/doctest.h>

#include "search/filter_helper.h"
#include "search/filter_plist.h"
#include "store/store_fixture.h"
#include "support/failure_kind.h"

namespace tessaly::search {
namespace {

using base::Failure;
using tests::failureKind;
using Kind = std::optional<Failure::Kind>;
using Names = std::vector<std::string>;
using P = FilterParamater;

const Filter work{FilterItem(P::open), FilterItem(P::keyword, "Müller")};
const Filter home{FilterItem(P::eventItem, "", false)};

struct Filters : tests::StoreFixture {
    FilterHelper helper{
        {store, safeFiles, [this](const std::string& file) { return trash(file); }}};

    std::string put(std::string_view name, const Filter& filter) const {
        return folder.write(std::string("data/Filters/").append(name), *filterToPlist(filter));
    }
    Names names() const { return folder.names("data/Filters"); }
    Names listed() const {
        const auto list = helper.list();
        return list ? *list : Names{list.failure().description};
    }
    bool holds(std::string_view name, const Filter& filter) const {
        const auto loaded = helper.load(name);
        return loaded && *loaded == filter;
    }
    Names keptTexts() const {
        Names texts;
        const auto entries = history.entries();
        for (const auto& entry : *entries) {
            texts.push_back(*history.text(entry));
        }
        return texts;
    }
};

}  // namespace

TEST_CASE("filters are listed and loaded whoever wrote them") {
    const Filters filters;
    CHECK(filters.listed().empty());
    for (const char* name : {"work", "Äpfel", "My.Filter", "b", ".hidden", ".~b.1a2b~", "b~",
                             "b.sync-conflict-20190305-101010-ABCDEFG"}) {
        filters.put(name, work);
    }
    filters.folder.mkdir("data/Filters/folder");
    filters.put("../../outside", work);
    filters.folder.link("data/Filters/link", "../../outside");
    filters.folder.write("data/Filters/cloud.nextcloud", "");
    filters.folder.write("data/Filters/\xFF", "");
    CHECK(filters.listed() == Names{"b", "cloud", "My.Filter", "work", "Äpfel"});
    struct Row {
        std::string name;
        Kind failure;
    };
    for (const Row& row : std::vector<Row>{{"work", {}},
                                           {"Work", {}},
                                           {"a\u0308pfel", {}},
                                           {"my.filter", {}},
                                           {" w/o/r/k ", {}},
                                           {"b.sync-conflict-20190305-101010-ABCDEFG", {}},
                                           {"nope", Failure::Kind::notFound},
                                           {"", Failure::Kind::notFound},
                                           {".hidden", Failure::Kind::notFound},
                                           {"folder", Failure::Kind::notFound},
                                           {"link", Failure::Kind::notFound},
                                           {"../../outside", Failure::Kind::notFound},
                                           {"cloud", Failure::Kind::unavailable}}) {
        CAPTURE(row.name);
        CHECK(failureKind(filters.helper.load(row.name)) == row.failure);
    }
    const auto before = filters.folder.everything();
    CHECK(failureKind(filters.helper.list()) == Kind{});
    CHECK(filters.folder.everything() == before);
}

TEST_CASE("a filter is saved under a name that a file can have") {
    Filters filters;
    filters.put("My.Filter", work);
    struct Row {
        std::string name;
        std::string saved;  ///< none: refused
        Failure::Kind failure = Failure::Kind::malformed;
    };
    for (const Row& row : std::vector<Row>{{"This week", "This week"},
                                           {"a/b: c?", "ab c"},
                                           {"../../out", ""},
                                           {"Über", "Über"},
                                           {"my.filter", "My.Filter"},
                                           {"THIS WEEK", "This week"},
                                           {"a/b: c?", "", Failure::Kind::exists},
                                           {"AB: C", "", Failure::Kind::exists},
                                           {"myfilter", "myfilter"},
                                           {"", ""},
                                           {"//", ""},
                                           {".hidden", ""},
                                           {"plans~", ""},
                                           {"This week (conflicted copy 2019-03-05 101010)", ""}}) {
        CAPTURE(row.name);
        const auto before = filters.names();
        const auto saved = filters.helper.save(row.name, home);
        CHECK((saved ? saved->name : "") == row.saved);
        if (saved) {
            CHECK(filters.holds(row.name, home));
            CHECK(filters.holds(saved->name, home));
            const bool isNew = saved->how == FilterHelper::Saved::How::anew;
            CHECK(isNew == (filters.names() != before));
        } else {
            CHECK(saved.failure().kind == row.failure);
            CHECK(filters.names() == before);
        }
    }
    CHECK(filters.listed() == Names{"ab c", "My.Filter", "myfilter", "This week", "Über"});
    CHECK(filters.folder.names() == Names{"data", "history", "locks"});
}

TEST_CASE("what is replaced stays in the history, and what cannot be read stays as it is") {
    Filters filters;
    filters.put("work", work);
    REQUIRE(filters.helper.save("work", home));
    CHECK(filters.holds("work", home));
    const auto texts = filters.keptTexts();
    CHECK(std::count(texts.begin(), texts.end(), *filterToPlist(work)) == 1);

    for (const char* bytes : {"", "* a note\n", "bplist00"}) {
        CAPTURE(bytes);
        filters.folder.write("data/Filters/other", bytes);
        const auto saved = filters.helper.save("Other", home);
        CHECK(failureKind(saved) == Kind{Failure::Kind::malformed});
        CHECK(filters.folder.read("data/Filters/other") == bytes);
        CHECK(failureKind(filters.helper.load("other")) == Kind{Failure::Kind::malformed});
    }
    filters.folder.write("data/Filters/cloud.nextcloud", "");
    CHECK(failureKind(filters.helper.save("cloud", home)) == Kind{Failure::Kind::unavailable});
    filters.folder.mkdir("data/Filters/folder");
    filters.folder.link("data/Filters/away", "../../away");
    for (const char* name : {"folder", "away"}) {
        CHECK(!filters.helper.save(name, home));
        CHECK(!filters.helper.rename("work", name));
    }
    CHECK(!filters.helper.save("new", {FilterItem(P::keyword, "\xFF")}));
    CHECK(filters.names() == Names{"away", "cloud.nextcloud", "folder", "other", "work"});
    CHECK(!filters.folder.exists("away"));
}

TEST_CASE("a filter is renamed within its folder, never over another one") {
    struct Row {
        std::string from;
        std::string to;
        Kind failure;
        Names names;
    };
    const Names unchanged{"Home", "broken", "work"};
    for (const Row& row : std::vector<Row>{{"work", "P/lans", {}, {"Home", "Plans", "broken"}},
                                           {"WORK", "Work", {}, {"Home", "Work", "broken"}},
                                           {"work", "work", {}, unchanged},
                                           {"broken", "b2", {}, {"Home", "b2", "work"}},
                                           {"work", "home", Failure::Kind::exists, unchanged},
                                           {"work", ".x", Failure::Kind::malformed, unchanged},
                                           {"nope", "x", Failure::Kind::notFound, unchanged}}) {
        CAPTURE(row.from);
        CAPTURE(row.to);
        Filters filters;
        filters.put("work", work);
        filters.put("Home", home);
        filters.folder.write("data/Filters/broken", "?");
        CHECK(failureKind(filters.helper.rename(row.from, row.to)) == row.failure);
        CHECK(filters.names() == row.names);
    }
}

TEST_CASE("a filter that is deleted goes to the trash, or stays") {
    Filters filters;
    const std::string file = filters.put("work", work);
    const auto failed = filters.helper.remove("work");
    CHECK(failureKind(failed) == Kind{Failure::Kind::unavailable});
    CHECK(filters.holds("work", work));

    filters.trash = [&](const std::string& trashed) -> base::Result<base::Done> {
        CHECK(trashed == file);
        std::filesystem::rename(trashed, filters.folder / "trashed");
        return base::Done{};
    };
    REQUIRE(filters.helper.remove("WORK"));
    CHECK(filters.folder.read("trashed") == *filterToPlist(work));
    CHECK(filters.names().empty());
    CHECK(failureKind(filters.helper.remove("work")) == Kind{Failure::Kind::notFound});
}

TEST_CASE("filters are not looked for outside the data folder") {
    Filters filters;
    filters.folder.write("away/work", *filterToPlist(work));
    filters.folder.mkdir("data");
    filters.folder.link("data/Filters", "../away");
    const Kind outside{Failure::Kind::outside};
    CHECK(failureKind(filters.helper.list()) == outside);
    CHECK(failureKind(filters.helper.load("work")) == outside);
    CHECK(failureKind(filters.helper.save("work", home)) == outside);
    CHECK(failureKind(filters.helper.rename("work", "x")) == outside);
    CHECK(failureKind(filters.helper.remove("work")) == outside);
    CHECK(filters.folder.read("away/work") == *filterToPlist(work));
}

TEST_CASE("another program that writes the same name meanwhile loses nothing") {
    Filters filters;
    filters.folder.mkdir("data/Filters");
    int times = 0;
    filters.changes.before = [&](std::string_view, const std::string& file) {
        if (file.ends_with("Filters/work") && times++ < 2) {
            filters.put("work", times == 1 ? work : home);
        }
        return std::optional<Failure>();
    };
    const Filter own{FilterItem(P::done)};
    REQUIRE(filters.helper.save("work", own));
    CHECK(times > 2);
    CHECK(filters.holds("work", own));
    for (const Filter& lost : {work, home}) {
        const auto texts = filters.keptTexts();
        CHECK(std::count(texts.begin(), texts.end(), *filterToPlist(lost)) == 1);
    }
}

}  // namespace tessaly::search
