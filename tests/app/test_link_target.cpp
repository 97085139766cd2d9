// SPDX-License-Identifier: MIT
#include <string>
#include <string_view>
#include <vector>

#include <doctest/doctest.h>

#include "app/line_look.h"
#include "app/link_target.h"
#include "app/linked_note.h"
#include "base/day.h"
#include "base/utf8.h"
#include "grammar/line_scanner.h"

using namespace std::literals;
using namespace tessaly;
using app::LinkTarget;
using app::SpanKind;

namespace {

constexpr const char* kindWords[] = {"web",     "title", "file",   "day",
                                     "picture", "tag",   "search", "no"};

/// "web https://…", "day 2019-03-05", "no" with or without the reason.
std::string told(const LinkTarget& target) {
    const std::string kind = kindWords[static_cast<std::size_t>(target.kind)];
    switch (target.kind) {
        case LinkTarget::Kind::refused: return kind;
        case LinkTarget::Kind::day: return kind + " " + base::tagText(target.day);
        default: return kind + " " + target.text;
    }
}

LinkTarget targetOf(SpanKind kind, std::string_view target) {
    return app::linkTarget({kind, {}, std::string(target)});
}

struct TargetRow {
    std::string_view target;
    std::string expected;
};

void checkTargets(SpanKind kind, const std::vector<TargetRow>& rows) {
    for (const TargetRow& row : rows) {
        CAPTURE(row.target);
        const LinkTarget target = targetOf(kind, row.target);
        CHECK(told(target) == row.expected);
        // A refusal says why, and in words that can be shown.
        CHECK(target.text.empty() == (target.kind == LinkTarget::Kind::day));
        CHECK(base::isUtf8(target.text));
    }
}

constexpr std::string_view own = "tessaly://x-callback-url/";

std::vector<TargetRow> withOwn(std::vector<TargetRow> rows, std::vector<std::string>& kept) {
    kept.reserve(rows.size());
    for (TargetRow& row : rows) {
        kept.push_back(std::string(own) + std::string(row.target));
        row.target = kept.back();
    }
    return rows;
}

}  // namespace

TEST_CASE("web addresses are opened, and of other schemes none") {
    checkTargets(SpanKind::link,
                 {
                     {"https://example.org/a?b=c#d", "web https://example.org/a?b=c#d"},
                     {"HTTP://Example.org", "web http://Example.org"},
                     {"mailto:someone@example.org", "web mailto:someone@example.org"},
                     {"<https://example.org/a b>", "web https://example.org/a b"},
                     {"https://example.org \"A title\"", "web https://example.org"},
                     {"www.example.org/x", "web https://www.example.org/x"},
                     {"https://", "no"},
                     {"https:///etc/passwd", "no"},
                     {"https:example.org", "no"},
                     {"mailto:", "no"},
                     {"mailto:a@b?subject=x", "web mailto:a@b?subject=x"},
                     {"mailto:a@b?subject=x&%41ttach=/etc/passwd", "no"},
                     {"https://example.org/\x01", "no"},
                     {"https://example.org/\xff", "no"},
                     {"file:///etc/passwd", "no"},
                     {"FILE:/etc/passwd", "no"},
                     {"javascript:alert(1)", "no"},
                     {"data:text/html,x", "no"},
                     {"smb://host/share", "no"},
                     {"ssh://-oProxyCommand=x", "no"},
                     {"C:\\windows", "no"},
                     {"//host/share", "no"},
                 });
    CHECK(targetOf(SpanKind::link, "file:///x").text ==
          "“file:” addresses are not opened from notes.");
}

TEST_CASE("files of links lie in the data folder or are refused") {
    checkTargets(SpanKind::link, {
                                     {"Other note.md", "file Other note.md"},
                                     {"Other%20note.md", "file Other note.md"},
                                     {"./Work/Plans.txt", "file Work/Plans.txt"},
                                     {"Notes/Work/Plans.txt", "file Work/Plans.txt"},
                                     {"Plans", "file Plans"},
                                     {"Plans.md#head", "file Plans.md"},
                                     {"a+b.md", "file a+b.md"},
                                     {"100%.md", "file 100%.md"},
                                     {"Calendar/20190305.txt", "day 2019-03-05"},
                                     {"20190305.txt", "day 2019-03-05"},
                                     {"Calendar/Plans.txt", "no"},
                                     {"Images/photo.png", "picture photo.png"},
                                     {"../../Images/a/photo%201.png", "picture a/photo 1.png"},
                                     {"../Images/../Notes/x", "no"},
                                     {"#head", "no"},
                                     {"/etc/passwd", "no"},
                                     {"../secret.txt", "no"},
                                     {"Work/../../secret.txt", "no"},
                                     {"%2e%2e/secret.txt", "no"},
                                     {"%2E%2E%2Fsecret.txt", "no"},
                                     {"%2fetc/passwd", "no"},
                                     {"Work//x.txt", "no"},
                                     {"a%00b.txt", "no"},
                                     {"a%ffb.txt", "no"},
                                     {"a%C0%AEb.txt", "no"},
                                     {"Images/a.png\0.desktop"sv, "no"},
                                 });
}

TEST_CASE("addresses of our own lead to places, and change nothing") {
    std::vector<std::string> kept;
    checkTargets(
        SpanKind::link,
        withOwn(
            {
                {"openNote?noteDate=20190305", "day 2019-03-05"},
                {"openNote?notedate=2019-03-05", "day 2019-03-05"},
                {"openNote?noteDate=20190230", "no"},
                {"openNote?noteTitle=Two%20words+more", "title Two words+more"},
                {"openNote?fileName=Work%2FPlans.txt", "file Work/Plans.txt"},
                {"openNote?fileName=20190305.txt", "day 2019-03-05"},
                {"openNote?filename=..%2F..%2Fx.txt", "no"},
                {"openNote?fileName=%2Fetc%2Fpasswd", "no"},
                // The day goes before the file, and that before the title.
                {"openNote?noteTitle=A&fileName=b.txt&noteDate=20190305", "day 2019-03-05"},
                {"openNote?noteTitle=A&fileName=b.txt", "file b.txt"},
                {"openNote?NoteTitle=A", "no"},
                {"openNote?noteTitle=", "no"},
                {"openNote?noteTitle=a%00", "no"},
                {"openNote?noteTitle=a&x=%ff", "no"},
                {"openNote", "no"},
                {"selectTag?name=work", "tag #work"},
                {"selectTag?name=%23work/plans", "tag #work/plans"},
                {"selectTag?name=@bob", "tag @bob"},
                {"selectTag?name=work%20in:Trash", "no"},
                {"search?text=two%20words#x", "search two words"},
                {"search?text=a%0Ab", "search a b"},
                {"addText?text=x&noteDate=20190305", "no"},
                {"deleteNote?noteTitle=A", "no"},
                {"getFilename?x-success=file:///x", "no"},
                {"openNote/deleteNote?noteTitle=A", "title A"},
                {"opennote?noteTitle=A", "no"},
                {"", "no"},
            },
            kept));
    checkTargets(SpanKind::link, {{"TESSALY://X-Callback-Url/openNote?noteTitle=A", "title A"},
                                  {"tessaly:openNote?noteTitle=A", "no"},
                                  {"tessaly://other/openNote?noteTitle=A", "no"},
                                  {"tessaly:", "no"}});
    CHECK(targetOf(SpanKind::link, std::string(own) + "deleteNote?noteTitle=A").text ==
          "Links in notes do not carry out “deleteNote”.");
}

TEST_CASE("titles in brackets, and pictures") {
    checkTargets(SpanKind::noteLink, {{"Two words", "title Two words"},
                                      {"file:///x", "title file:///x"},
                                      {"2019-03-05", "day 2019-03-05"},
                                      {"20190305", "day 2019-03-05"}});
    checkTargets(SpanKind::image, {{"photo.png", "picture photo.png"},
                                   {"../Images/photo.png", "picture photo.png"},
                                   {"Images/Images/photo.png", "picture Images/photo.png"},
                                   {"<my photo.png>", "picture my photo.png"},
                                   {"photo.png 'A title'", "picture photo.png"},
                                   {"https://example.org/x.png", "web https://example.org/x.png"},
                                   {"file:///etc/x.png", "no"},
                                   {"../photo.png", "no"},
                                   {"Images/../../x.png", "no"},
                                   {"%2e%2e/%2e%2e/x.png", "no"},
                                   {"/x.png", "no"}});
}

TEST_CASE("the note that a link names") {
    struct Row {
        const char* filename;
        const char* text;
        int changed;  ///< in seconds since some day
    };
    const Row rows[] = {{"Alpha.txt", "# Plans\n", 10},
                        {"Plans.md", "# Something else\n", 40},
                        {"Work/Beta.txt", "# plans\n", 30},
                        {"Work/Old.txt", "# Plans\n", 20},
                        {"Zeta/A\xcc\x88rger.txt", "words\n", 5}};
    std::vector<store::GeneralNotes::Pointer> notes;
    grammar::NoteScanner scanner;
    for (const Row& row : rows) {
        ports::FileStamp stamp;
        stamp.modified = base::Instant(std::chrono::seconds(row.changed));
        notes.push_back(store::generalNote(row.filename, base::SharedText(std::string(row.text)),
                                           stamp, {}, scanner));
    }
    const store::GeneralNotes all(std::move(notes));
    const auto byTitle = [&](std::string_view title) {
        return app::noteOfTitle(all, title).value_or("-");
    };
    // A title goes before a file's name, the case before its absence, and then the latest change.
    CHECK(byTitle("Plans") == "Work/Old.txt");
    CHECK(byTitle(" PLANS ") == "Work/Beta.txt");
    CHECK(byTitle("beta") == "Work/Beta.txt");
    CHECK(byTitle("Work/Beta") == "Work/Beta.txt");
    CHECK(byTitle("Something else") == "Plans.md");
    CHECK(byTitle("Work") == "-");
    CHECK(byTitle("") == "-");
    const auto byFile = [&](std::string_view name) {
        return app::noteOfFile(all, name).value_or("-");
    };
    CHECK(byFile("Plans.md") == "Plans.md");
    CHECK(byFile("Plans") == "Plans.md");
    CHECK(byFile("Beta.txt") == "-");
    CHECK(byFile("Work/Beta") == "Work/Beta.txt");
}
