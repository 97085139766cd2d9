// SPDX-License-Identifier: MIT
#include <QApplication>
#include <QClipboard>
#include <QTest>
#include <QTextBlock>
#include <QTextCursor>
#include <algorithm>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <doctest/doctest.h>

#include "app/shown_text.h"
#include "desktop/line_moves.h"
#include "desktop/note_folding.h"
#include "desktop/note_pane.h"
#include "desktop/qt_text.h"
#include "desktop/window_fixture.h"

namespace {

using namespace std::literals;
using namespace tessaly::desktop;
using tessaly::app::shownText;
using tessaly::tests::WindowFixture;

constexpr std::string_view hostilePieces[] = {
    "# Head",
    "## **bold** _i_ `code`",
    "* [ ] task #tag >2019-03-07",
    "\t* [x] done @done(2019-03-01 10:00)",
    "- [-] cancelled",
    "\t\t- item",
    "9. nine",
    "> quoted",
    "```",
    "---",
    "|a|`b|c`|",
    "|---|:-:|",
    "![x](no such file.png)",
    "[broken](",
    "[[Nowhere",
    "https://example.org/?a=%ZZ",
    "words ",
    "no\u00A0break",
    "a\u2028b",
    "c\u0085d\v\f",
    "\0"sv,
    "in\uFEFFside",
    "\u0301\u0308",
    "\U0001F469\u200D\U0001F52C\u200D",
    "\uFFFC\uFFFD",
    "\u0645\u0631\u062D\u0628\u0627 ",
    "* \u05E9\u05DC\u05D5\u05DD **\u05E9**",
    "\t",
    "\n",
    "\n",
    "\n",
    "\n",
    "\r\n",
    "\r\n",
    "\r\n",
    "\r",
    "\r",
    "\uFDD0",
    "\u2029",
};

class Hostile {
public:
    explicit Hostile(unsigned seed) : _random(seed) {}

    int upTo(int most) { return static_cast<int>(_random() % (static_cast<unsigned>(most) + 1U)); }
    std::string text(int size) {
        std::string text = upTo(4) == 0 ? "\uFEFF" : "";
        for (int i = 0; i < size; ++i) {
            text += hostilePieces[static_cast<std::size_t>(
                upTo(static_cast<int>(std::size(hostilePieces)) - 1))];
        }
        return text;
    }

private:
    std::mt19937 _random;
};

std::vector<std::string> hostileTexts() {
    std::vector<std::string> texts{"",       "\n\n\n",
                                   "\r\r\r", "\r\n\r\n",
                                   "\uFEFF", "\uFEFFa\r\n",
                                   "a",      "a\rb\r\nc\nd",
                                   "\u0301", std::string(30'000, 'w') + "\r\n* end"};
    for (unsigned seed = 1; seed <= 10; ++seed) {
        texts.push_back(Hostile(seed).text(30));
    }
    return texts;
}

/// The window, with a note of each text.
class HostileNotes {
public:
    HostileNotes() {
        for (std::size_t i = 0; i < texts.size(); ++i) {
            user.write("Notes/" + nameOf(i), texts[i]);
        }
        user.start();
    }

    static std::string nameOf(std::size_t note) { return "hostile" + std::to_string(note) + ".md"; }
    void open(std::size_t note) {
        user.openNote(nameOf(note));
        REQUIRE(editor().text() == shownText(withoutMark(texts[note])));
        REQUIRE(editor().canEdit());
    }
    std::string saved(std::size_t note) {
        REQUIRE(user.view<NotePane>().saveNow().ok());
        return user.textOf("Notes/" + nameOf(note));
    }
    NoteEditor& editor() { return user.editor(); }

    const std::vector<std::string> texts = hostileTexts();
    WindowFixture user;

private:
    static std::string_view withoutMark(std::string_view text) {
        return text.starts_with("\uFEFF") ? text.substr(3) : text;
    }
};

void placeCaret(NoteEditor& editor, Hostile& hostile) {
    const int last = editor.document()->characterCount() - 1;
    QTextCursor caret = editor.textCursor();
    caret.setPosition(hostile.upTo(last));
    switch (hostile.upTo(5)) {
        case 0:
            caret.setPosition(std::min(last, caret.position() + hostile.upTo(30)),
                              QTextCursor::KeepAnchor);
            break;
        case 1: caret.movePosition(QTextCursor::StartOfBlock); break;
        case 2: caret.movePosition(QTextCursor::EndOfBlock); break;
        default: break;
    }
    editor.setTextCursor(caret);
}

void moveLinesAtRandom(NoteEditor& editor, Hostile& hostile) {
    const int first = hostile.upTo(editor.document()->blockCount() - 1);
    const int last = std::min(first + hostile.upTo(2), editor.document()->blockCount() - 1);
    editor.moveLines({first, last},
                     {hostile.upTo(endForLines(*editor.document())), hostile.upTo(2) - 1});
}

void foldAtRandom(NoteEditor& editor, Hostile& hostile) {
    const int line = hostile.upTo(editor.document()->blockCount() - 1);
    if (editor.folding().canToggle(line)) {
        editor.folding().toggle(line);
    }
}

void gesture(WindowFixture& user, Hostile& hostile) {
    using tessaly::editor::MarkAction;
    NoteEditor& editor = user.editor();
    placeCaret(editor, hostile);
    switch (hostile.upTo(13)) {
        case 0:
        case 1: user.type("x #y"); break;
        case 2: user.press("Return"); break;
        case 3: user.press("Tab"); break;
        case 4: user.press("Shift+Tab"); break;
        case 5: user.press("Backspace"); break;
        case 6: user.press("Delete"); break;
        case 7: Q_EMIT editor.boxClicked(editor.textCursor().blockNumber()); break;
        case 8: foldAtRandom(editor, hostile); break;
        case 9: moveLinesAtRandom(editor, hostile); break;
        case 10: editor.mark(static_cast<MarkAction>(hostile.upTo(19))); break;
        case 11:
            QApplication::clipboard()->setText(qt(hostile.text(4)));
            editor.paste();
            break;
        case 12:
            user.type("#");
            user.press("Down");
            user.press("Return");
            break;
        default: user.press("Ctrl+Return"); break;
    }
}

void takeAllBack(NoteEditor& editor) {
    while (editor.canUndo()) {
        editor.undo();
    }
}

struct ByteLine {
    std::string text;
    std::string end;
};

std::vector<ByteLine> byteLines(std::string_view bytes) {
    std::vector<ByteLine> lines(1);
    while (!bytes.empty()) {
        const std::string_view ends[] = {"\r\n", "\n", "\r", "\u2029", "\uFDD0", "\uFDD1"};
        const auto end = std::find_if(std::begin(ends), std::end(ends),
                                      [&](auto each) { return bytes.starts_with(each); });
        if (end == std::end(ends)) {
            lines.back().text += bytes.front();
            bytes.remove_prefix(1);
        } else {
            lines.back().end = *end;
            lines.emplace_back();
            bytes.remove_prefix(end->size());
        }
    }
    return lines;
}

std::string bytesOf(const std::vector<ByteLine>& lines) {
    std::string bytes;
    for (const ByteLine& line : lines) {
        bytes += line.text + line.end;
    }
    return bytes;
}

void checkTakenBack(HostileNotes& notes, std::size_t note) {
    Hostile hostile(static_cast<unsigned>(note) + 100);
    const std::string opened = notes.editor().text();
    const int gestures = opened.size() > 10'000 ? 2 : 24;  // keys in a long line are slow
    for (int i = 0; i < gestures; ++i) {
        gesture(notes.user, hostile);
        if (hostile.upTo(7) == 0) {
            (void)notes.saved(note);
        }
    }
    const std::string edited = notes.editor().text();
    takeAllBack(notes.editor());
    CHECK(notes.editor().text() == opened);
    CHECK(notes.saved(note) == notes.texts[note]);
    while (notes.editor().canRedo()) {
        notes.editor().redo();
    }
    CHECK(notes.editor().text() == edited);
    CHECK(shownText(notes.saved(note)).ends_with(edited));  // behind a byte-order mark
    takeAllBack(notes.editor());
    CHECK(notes.saved(note) == notes.texts[note]);
}

/// A letter changes no byte beside its own.
void checkLetters(HostileNotes& notes, std::size_t note) {
    Hostile hostile(static_cast<unsigned>(note));
    std::vector<ByteLine> lines = byteLines(notes.texts[note]);
    REQUIRE(static_cast<int>(lines.size()) == notes.editor().document()->blockCount());
    for (int i = 0; i < 3; ++i) {
        const int line = hostile.upTo(static_cast<int>(lines.size()) - 1);
        CAPTURE(line);
        notes.editor().goToLine(line, 1'000'000);
        notes.user.type("x");
        lines[static_cast<std::size_t>(line)].text += "x";
        CHECK(notes.saved(note) == bytesOf(lines));
    }
}

}  // namespace

TEST_CASE("edits change the bytes that they are meant to, and all come back") {
    HostileNotes notes;
    for (std::size_t note = 0; note < notes.texts.size(); ++note) {
        CAPTURE(note);
        notes.open(note);
        checkTakenBack(notes, note);
        checkLetters(notes, note);
    }
}
