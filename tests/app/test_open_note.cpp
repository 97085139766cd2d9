// SPDX-License-Identifier: MIT
#include <filesystem>
#include <memory>
#include <set>
#include <sstream>

#include <doctest/doctest.h>

#include "app/open_note.h"
#include "app/stepped_planner.h"

using namespace tessaly;
using namespace std::chrono_literals;
using app::OpenNote;
using tests::SteppedPlanner;
using SaveState = OpenNote::SaveState;

namespace {

constexpr const char* file = "Notes/Plans.txt";
const app::NoteAddress plans{base::NoteType::note, "Plans.txt", std::nullopt};
const app::NoteAddress today{base::NoteType::calendar, "20190305.txt", base::Day{}};

/// An editor of one note, in which a test types.
class Editor {
public:
    explicit Editor(SteppedPlanner& planner, const app::NoteAddress& address = plans)
        : _note(std::make_unique<OpenNote>(planner.services(), address, handlers())) {
        text = _note->text();
    }

    OpenNote& note() { return *_note; }
    void close() { _note.reset(); }

    void type(const std::string& all) {
        text = all;
        _note->edited();
    }

    std::string text;
    int merges = 0;
    int gone = 0;
    std::string states;  // as told: "s", "u", "f"

private:
    OpenNote::Handlers handlers() {
        return {.currentText = [this] { return text; },
                .onMerged =
                    [this](const std::string& merged) {
                        type(merged);  // as an editor's own signal would have it
                        ++merges;
                    },
                .onSaveState =
                    [this](SaveState state) { states += "suf"[static_cast<std::size_t>(state)]; },
                .onGone = [this] { ++gone; }};
    }

    std::unique_ptr<OpenNote> _note;
};

struct SavedRow {
    const char* what;
    const char* before;  // the file's bytes; null: there is none
    const char* typed;
    const char* outside;  // the file's bytes while that is not saved yet; null: as before
    const char* after;
    const char* shown;  // null: what was typed
};

const SavedRow savedRows[] = {
    {"a plain change", "a\nb\n", "a\nb\nc\n", nullptr, "a\nb\nc\n", nullptr},
    {"no final line break", "a\nb", "a\nbc", nullptr, "a\nbc", nullptr},
    {"byte-order mark",
     "\xef\xbb\xbf"
     "a\n",
     "a\nb\n", nullptr,
     "\xef\xbb\xbf"
     "a\nb\n",
     nullptr},
    {"mark and CRLF, joined",
     "\xef\xbb\xbf"
     "a\r\nb\r\n",
     "A\r\nb\r\n",
     "\xef\xbb\xbf"
     "a\r\nb\r\nc\r\n",
     "\xef\xbb\xbf"
     "A\r\nb\r\nc\r\n",
     "A\r\nb\r\nc\r\n"},
    {"all is deleted", "a\n", "", nullptr, "", nullptr},
    {"a new note", nullptr, "a", nullptr, "a", nullptr},
    {"a new note that somebody else makes", nullptr, "mine\n", "theirs\n", "mine\ntheirs\n",
     "mine\ntheirs\n"},
    {"nothing in a note that is not there", nullptr, "", nullptr, "-", nullptr},
    {"two lines, one changed by each", "a\nb\nc\n", "A\nb\nc\n", "a\nb\nC\n", "A\nb\nC\n",
     "A\nb\nC\n"},
    {"the same change by both", "a\n", "b\n", "b\n", "b\n", nullptr},
    {"a task completed there and dated here", "* Call\n", "* Call >2019-03-08\n", "* [x] Call\n",
     "* [x] Call >2019-03-08\n", "* [x] Call >2019-03-08\n"},
};

void check(const SavedRow& row) {
    CAPTURE(row.what);
    SteppedPlanner planner;
    if (row.before != nullptr) {
        planner.write(file, row.before);
    }
    Editor editor{planner};
    REQUIRE_FALSE(editor.note().obstacle());
    editor.type(row.typed);
    if (row.outside != nullptr) {
        planner.write(file, row.outside);
    }
    planner.pass(1s);
    CHECK(planner.textOf(file) == row.after);
    CHECK(editor.text == (row.shown != nullptr ? row.shown : row.typed));
    CHECK(editor.note().saveState() == SaveState::saved);
    CHECK(editor.note().text() == editor.text);
}

struct RereadRow {
    const char* what;
    const char* typed;    // null: nothing
    const char* outside;  // null: the file goes
    const char* shown;
    int gone;
    const char* saved;  // what the file holds in the end
};

// The note holds "a\nb\n" before.
const RereadRow rereadRows[] = {
    {"nothing typed", nullptr, "a\nx\nb\n", "a\nx\nb\n", 0, "a\nx\nb\n"},
    {"nothing typed, and gone", nullptr, nullptr, "a\nb\n", 1, "-"},
    {"typed, and gone", "a\nb\nc\n", nullptr, "a\nb\nc\n", 0, "a\nb\nc\n"},
    {"typed, and written", "a\nb\nc\n", "x\na\nb\n", "x\na\nb\nc\n", 0, "x\na\nb\nc\n"},
    {"typed, and written alike", "a\nc\n", "a\nc\n", "a\nc\n", 0, "a\nc\n"},
    {"typed, and no text any more", "a\nb\nc\n", "a\xff\n", "a\nb\nc\n", 0, "a\xff\n"},
};

void check(const RereadRow& row) {
    CAPTURE(row.what);
    SteppedPlanner planner;
    planner.write(file, "a\nb\n");
    Editor editor{planner};
    if (row.typed != nullptr) {
        editor.type(row.typed);
    }
    if (row.outside != nullptr) {
        planner.write(file, row.outside);
    } else {
        std::filesystem::remove(planner.folder() / planner.path(file));
    }
    editor.note().reread();
    planner.settle();
    CHECK(editor.text == row.shown);
    CHECK(editor.gone == row.gone);
    planner.pass(1s);
    CHECK(planner.textOf(file) == row.saved);
    CHECK(editor.gone == row.gone);
}

/// Somebody types, somebody else writes the file, the disk fails and jobs are slow, in an order
/// that the seed gives. Each line written has a word of its own.
class Quarrel {
public:
    explicit Quarrel(unsigned seed) : _planner(seed) {
        if (_planner.draw(4) != 0) {
            outsideWrites("first\nsecond\n" + newWord() + "\n");
        }
        _editor = std::make_unique<Editor>(_planner);
        _planner.files().before([this](int, std::string_view, const std::string&) { meddle(); });
    }

    void run(int steps) {
        for (int i = 0; i < steps; ++i) {
            step();
        }
    }

    /// Everything is well again.
    void calmDown() {
        _planner.files().heal();
        _planner.settle();
        _editor->note().reread();
        for (int trial = 0; trial < 2; ++trial) {
            _planner.settle();
            _planner.pass(OpenNote::retryInterval);
        }
    }

    void check() {
        const std::string held = bytes();
        CHECK(_editor->note().saveState() == SaveState::saved);
        if (const auto& failure = _editor->note().saveFailure()) {
            FAIL_CHECK(failure->description);
        }
        if (held != "-" || _editor->gone == 0) {
            CHECK((held == "-" ? "" : held) == _editor->text);
        }
        const std::string everything = held + "\n" + _editor->text + "\n" + _planner.history();
        std::istringstream stream{everything};
        std::set<std::string> words;
        for (std::string word; stream >> word;) {
            words.insert(word);
        }
        for (const std::string& word : _typed) {
            CHECK_MESSAGE(words.contains(word), word);
        }
        for (const std::string& word : _written) {
            CHECK_MESSAGE(words.contains(word), word);
        }
    }

private:
    using Lines = std::vector<std::string>;

    std::string newWord() { return "w" + std::to_string(++_words); }
    std::string bytes() const { return _planner.textOf(file); }

    static Lines linesOf(const std::string& text) {
        Lines lines;
        std::istringstream stream{text};
        for (std::string line; std::getline(stream, line);) {
            lines.push_back(line);
        }
        return lines;
    }
    static std::string textOf(const Lines& lines) {
        std::string text;
        for (const std::string& line : lines) {
            text += line + "\n";
        }
        return text;
    }

    /// `text` with a new word in a line of its own, or in one that is there.
    std::string withNews(const std::string& text, std::set<std::string>& news) {
        Lines lines = linesOf(text);
        const std::string word = newWord();
        news.insert(word);
        const std::size_t place = _planner.draw(lines.size() + 1);
        if (place < lines.size() && _planner.draw(3) == 0) {
            lines[place] += " " + word;
        } else {
            const char* const marker = _planner.draw(2) == 0 ? "* " : "";
            lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(place), marker + word);
        }
        return textOf(lines);
    }

    void step() {
        switch (_planner.draw(9)) {
            case 0:
            case 1:
            case 2: type(); break;
            case 3: outsideChanges(); break;
            case 4:
            case 5: _planner.step(); break;
            case 6: _planner.mainQueue().runPosted(); break;
            case 7:
                _planner.mainQueue().advance(std::chrono::milliseconds(_planner.draw(900)));
                break;
            default: sayReread();
        }
    }

    void type() {
        if (_planner.draw(6) == 0 && !_editor->text.empty()) {
            forgetLine();
            return;
        }
        _editor->type(withNews(_editor->text, _typed));
    }

    /// What the user deletes is missed by nobody.
    void forgetLine() {
        Lines lines = linesOf(_editor->text);
        const auto place = lines.begin() + static_cast<std::ptrdiff_t>(_planner.draw(lines.size()));
        std::istringstream stream{*place};
        for (std::string word; stream >> word;) {
            _typed.erase(word);
            _written.erase(word);
        }
        lines.erase(place);
        _editor->type(textOf(lines));
    }

    void sayReread() {
        if (_planner.draw(8) == 0) {
            (void)_editor->note().saveNow();  // may fail, as the disk does
        } else {
            _editor->note().reread();
        }
    }

    /// At any call of ours.
    void meddle() {
        if (_planner.draw(50) == 0) {
            _planner.files().failThis(_planner.draw(2) == 0 ? base::Failure::Kind::noSpace
                                                            : base::Failure::Kind::denied);
        } else if (_planner.draw(60) == 0) {
            outsideChanges();
        }
    }

    void outsideChanges() {
        const std::string now = bytes();
        switch (_planner.draw(7)) {
            case 0:
                if (now != "-") {
                    forgetWritten(now, "");
                    std::filesystem::remove(_planner.folder() / _planner.path(file));
                }
                break;
            case 1: _stale = now == "-" ? "" : now; break;  // read, to be written later
            case 2: outsideWrites(withNews(_stale, _written)); break;
            default: outsideWrites(withNews(now == "-" ? "" : now, _written));
        }
    }

    void outsideWrites(const std::string& text) {
        forgetWritten(bytes(), text);
        _planner.write(file, text);
    }

    /// What the other one takes away of his own is his affair. What the user typed is not.
    void forgetWritten(const std::string& before, const std::string& after) {
        std::istringstream stream{before};
        for (std::string word; stream >> word;) {
            if (after.find(word) == after.npos) {
                _written.erase(word);
            }
        }
    }

    SteppedPlanner _planner;
    std::unique_ptr<Editor> _editor;
    std::set<std::string> _typed;
    std::set<std::string> _written;
    std::string _stale;
    int _words = 100;
};

}  // namespace

TEST_CASE("what is typed is saved, joined with what others wrote, in the file's own form") {
    for (const SavedRow& row : savedRows) {
        check(row);
    }
}

TEST_CASE("what others write is joined into the open text, and the save goes on") {
    for (const RereadRow& row : rereadRows) {
        check(row);
    }
}

TEST_CASE("whatever happens, no line is lost, and editor and file agree in the end") {
    for (unsigned seed = 1; seed <= 150; ++seed) {
        CAPTURE(seed);
        Quarrel quarrel{seed};
        quarrel.run(60);
        quarrel.calmDown();
        quarrel.check();
    }
}

TEST_CASE("typing without a pause is saved often enough, and no more often") {
    SteppedPlanner planner;
    Editor editor{planner};
    int saves = 0;
    std::string held = "-";
    for (int key = 0; key < 100; ++key) {
        editor.type(editor.text + "x");
        planner.pass(100ms);
        const std::string now = planner.textOf(file);
        saves += now != held;
        held = now;
        CHECK(editor.text.size() - (held == "-" ? 0 : held.size()) <= 8);
    }
    CHECK(saves <= 10s / OpenNote::longestUnsaved);
    planner.pass(OpenNote::longestUnsaved);
    CHECK(planner.textOf(file) == editor.text);
}

TEST_CASE("short pauses do not make for more saves") {
    SteppedPlanner planner;
    Editor editor{planner};
    int saves = 0;
    std::string held = "-";
    for (int word = 0; word < 20; ++word) {
        editor.type(editor.text + "word ");
        for (int tenth = 0; tenth < 4; ++tenth) {
            planner.pass(100ms);
            saves += std::exchange(held, planner.textOf(file)) != held;
        }
    }
    CHECK(saves <= 8s / OpenNote::longestUnsaved);
}

TEST_CASE("what is typed while a save runs is kept and saved next") {
    SteppedPlanner planner;
    planner.write(file, "a\n");
    Editor editor{planner};
    editor.type("a\nb\n");
    planner.mainQueue().advance(OpenNote::pause);
    planner.write(file, "outside\na\n");
    while (planner.step()) {
    }
    editor.type("a\nb\nc\n");
    CHECK(planner.textOf(file) == "outside\na\nb\n");
    planner.mainQueue().runPosted();
    CHECK(editor.text == "outside\na\nb\nc\n");
    CHECK(editor.note().saveState() == SaveState::unsaved);
    planner.pass(1s);
    CHECK(planner.textOf(file) == "outside\na\nb\nc\n");
    CHECK(editor.states == "us");
}

TEST_CASE("a long text is joined beside the main thread, and what is typed meanwhile stays") {
    SteppedPlanner planner;
    std::string lines;
    for (int i = 0; i < 30'000; ++i) {
        lines += "line " + std::to_string(i) + "\n";
    }
    planner.write(file, lines);
    Editor editor{planner};
    editor.type(lines + "typed\n");
    planner.write(file, "outside\n" + lines);
    editor.note().reread();
    int typed = 0;
    while (planner.step() || planner.mainQueue().runPosted() > 0) {
        if (editor.merges == 0) {
            editor.type(editor.text + "more " + std::to_string(++typed) + "\n");
        }
    }
    CHECK(typed > 2);
    CHECK(editor.text.starts_with("outside\nline 0\n"));
    CHECK(editor.text.ends_with("more " + std::to_string(typed) + "\n"));
    CHECK(editor.note().saveNow());
    CHECK(planner.textOf(file) == editor.text);
}

TEST_CASE("a save that fails is told, kept trying, and good again when the disk is") {
    SteppedPlanner planner;
    planner.write(file, "a\n");
    Editor editor{planner};
    planner.files().before([&](int, std::string_view operation, const std::string&) {
        if (operation == "replace") {
            planner.files().failThis(base::Failure::Kind::noSpace);
        }
    });
    editor.type("b\n");
    planner.pass(1s);
    CHECK(editor.note().saveState() == SaveState::failed);
    REQUIRE(editor.note().saveFailure());
    CHECK(editor.note().saveFailure()->kind == base::Failure::Kind::noSpace);
    CHECK_FALSE(editor.note().saveNow());
    planner.pass(2 * OpenNote::retryInterval);
    CHECK(planner.log().lines().size() == 1);
    const auto copy = editor.note().keepCopy();
    REQUIRE(copy);
    CHECK(copy->starts_with(planner.folder() / "state/"));
    CHECK(planner.folder().read(copy->substr(planner.folder().path().size() + 1)) == "b\n");
    CHECK(editor.note().keepCopy());
    planner.files().heal();
    planner.pass(OpenNote::retryInterval);
    CHECK(planner.textOf(file) == "b\n");
    CHECK(editor.states == "ufs");
}

TEST_CASE("each call of a save can fail, and nothing is lost") {
    bool hasFailed = true;
    int call = 0;
    for (; hasFailed; ++call) {
        CAPTURE(call);
        SteppedPlanner planner;
        planner.write(file, "theirs\n");
        Editor editor{planner};
        editor.type("theirs\nmine\n");
        planner.files().failAt(call, base::Failure::Kind::other);
        (void)editor.note().saveNow();
        hasFailed = planner.files().calls() > call;
        const std::string held = planner.textOf(file);
        CHECK((held == "theirs\n" || held == "theirs\nmine\n"));
        CHECK(editor.text == "theirs\nmine\n");
        planner.files().heal();
        CHECK(editor.note().saveNow());
        CHECK(planner.textOf(file) == "theirs\nmine\n");
    }
    CHECK(call > 20);
}

TEST_CASE("a note that is left while a save runs is saved, and tells nobody") {
    SteppedPlanner planner;
    planner.write(file, "a\n");
    Editor editor{planner};
    editor.type("b\n");
    planner.mainQueue().advance(OpenNote::pause);
    editor.note().reread();
    planner.write(file, "a\noutside\n");
    const std::string states = editor.states;
    editor.close();
    planner.pass(10s);
    CHECK(planner.textOf(file) == "b\noutside\n");
    CHECK(editor.merges == 0);
    CHECK(editor.states == states);
    CHECK(planner.mainQueue().timers() == 0);
}

TEST_CASE("an editor may close its note from within a call") {
    SteppedPlanner planner;
    planner.write(file, "a\n");
    std::unique_ptr<OpenNote> note;
    int calls = 0;
    note = std::make_unique<OpenNote>(
        planner.services(), plans,
        OpenNote::Handlers{[] { return std::string("a\n"); },
                           [&](const std::string&) {
                               ++calls;
                               note.reset();
                           },
                           [&](SaveState) { ++calls; }, [&] { ++calls; }});
    planner.write(file, "b\n");
    note->reread();
    planner.settle();
    CHECK(calls == 1);
    CHECK_FALSE(note);
}

TEST_CASE("a day gets its note with the first word, not before") {
    SteppedPlanner planner;
    Editor editor{planner, today};
    CHECK_FALSE(editor.note().exists());
    editor.type("");
    planner.pass(1s);
    CHECK_FALSE(planner.folder().exists(planner.path("Calendar")));
    editor.type("* First");
    CHECK(editor.note().saveNow());
    CHECK(planner.textOf("Calendar/20190305.txt") == "* First");
    CHECK(editor.note().exists());
}

TEST_CASE("what is no text cannot be edited, until it is one") {
    SteppedPlanner planner;
    planner.write(file, "caf\xe9\n");
    Editor editor{planner};
    REQUIRE(editor.note().obstacle());
    CHECK(editor.note().obstacle()->description == "Notes/Plans.txt is not UTF-8 text");
    editor.type("typed all the same");
    CHECK(editor.note().saveNow());
    CHECK(planner.textOf(file) == "caf\xe9\n");
    editor.text.clear();
    planner.write(file, "caf\xc3\xa9\n");
    editor.note().reread();
    planner.settle();
    CHECK_FALSE(editor.note().obstacle());
    CHECK(editor.text == "caf\xc3\xa9\n");
}
