// SPDX-License-Identifier: MIT
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>
#include <functional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <doctest/doctest.h>

#include "desktop/change_rebase.h"
#include "desktop/document_edits.h"
#include "desktop/edit_history.h"
#include "desktop/note_editor.h"
#include "desktop/qt_text.h"

namespace {

using namespace tessaly::desktop;
using Source = EditHistory::Source;

/// A text that a user and others change at random; every letter is there once, so that one that is
/// lost, doubled or brought back is seen.
class SharedText {
public:
    explicit SharedText(unsigned seed) : _random(seed) {
        for (int i = 0; i < 12; ++i) {
            _text += letter(_initial);
        }
        _wanted = _text;
    }

    void changeAsUser() {
        const DocumentChanges changes = randomChanges(_users);
        _history.record(inverseOf(changes, _text),
                        upTo(2) > 0 ? Source::newStep : Source::sameStep);
        make(changes);
    }
    void changeAsOthers() {
        const DocumentChanges changes = randomChanges(_others);
        for (const DocumentChange& change : changes) {
            for (const QChar gone : _text.mid(change.position, change.removed)) {
                _wanted.remove(gone);
            }
            _wanted += change.inserted;
        }
        _history.rebase(changes);
        make(changes);
    }
    bool undo() { return makeStep(_history.undo(), Source::undo); }
    bool redo() { return makeStep(_history.redo(), Source::redo); }
    int upTo(int most) { return static_cast<int>(_random() % (1U + static_cast<unsigned>(most))); }

    const QString& text() const { return _text; }
    /// What there was and what others wrote, without what others took out.
    QString withoutUser() const { return sorted(_wanted); }
    static QString sorted(QString text) {
        std::sort(text.begin(), text.end());
        return text;
    }

private:
    static QChar letter(char16_t& next) { return QChar(next++); }

    DocumentChanges randomChanges(char16_t& next) {
        DocumentChanges changes;
        int position = 0;
        const auto length = static_cast<int>(_text.size());
        for (int count = 1 + upTo(2); count > 0; --count) {
            position += upTo(length - position);
            DocumentChange change{position, std::min(upTo(3), length - position), {}};
            for (int i = upTo(3); i > 0; --i) {
                change.inserted += letter(next);
            }
            position += change.removed;
            changes.push_back(change);
        }
        return changes;
    }
    bool makeStep(const EditHistory::Step& step, Source source) {
        for (auto changes = step.rbegin(); changes != step.rend(); ++changes) {
            _history.record(inverseOf(*changes, _text), source);
            make(*changes);
        }
        return !step.empty();
    }
    void make(const DocumentChanges& changes) {
        for (auto change = changes.rbegin(); change != changes.rend(); ++change) {
            REQUIRE(change->position + change->removed <= _text.size());
            _text.replace(change->position, change->removed, change->inserted);
        }
    }

    std::mt19937 _random;
    EditHistory _history;
    QString _text;
    QString _wanted;
    char16_t _initial = u'a';
    char16_t _users = 0x4E00;
    char16_t _others = 0xAC00;
};

constexpr auto longest = static_cast<std::size_t>(NoteEditor::longestLine);

/// An editor that is worked on by keys, and by others.
struct SharedEditor : NoteEditor {
    using NoteEditor::insertFromMimeData;
    void select(std::size_t start, std::size_t end) {
        setTextCursor(cursorAt(*document(), {start, end - start}));
    }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(this, key, modifiers);
    }
    void write(const char* text) { QTest::keyClicks(this, QString::fromLatin1(text)); }
};

struct UndoRow {
    std::string what;
    std::function<void(SharedEditor&)> work;
    std::vector<std::string> undone;  // the text after each undo, until there is nothing to undo
};

void checkUndo(const UndoRow& row) {
    CAPTURE(row.what);
    SharedEditor editor;
    editor.setText("one\ntwo\n");
    row.work(editor);
    std::vector<std::string> texts{editor.text()};
    std::vector<std::string> undone;
    while (editor.canUndo()) {
        editor.undo();
        undone.push_back(editor.text());
        texts.push_back(editor.text());
    }
    const auto inOne = [](const std::vector<std::string>& all) {
        std::string joined;
        for (const std::string& each : all) {
            joined += each + "|";
        }
        return joined;
    };
    CHECK(inOne(undone) == inOne(row.undone));
    for (texts.pop_back(); !texts.empty(); texts.pop_back()) {
        editor.redo();
        CHECK(editor.text() == texts.back());
    }
    CHECK_FALSE(editor.canRedo());
}

struct LongRow {
    std::string what;
    std::string text;
    std::size_t start;
    std::size_t end;
    std::function<void(SharedEditor&)> work;
};

void checkRefused(const LongRow& row) {
    CAPTURE(row.what);
    SharedEditor editor;
    editor.setText(row.text);
    editor.goToLine(0);
    editor.write("y");
    editor.undo();
    editor.select(row.start, row.end);
    QSignalSpy edits(&editor, &NoteEditor::edited);
    QSignalSpy notices(&editor, &NoteEditor::notice);
    row.work(editor);
    CHECK((editor.text() == row.text));
    CHECK(selectionOf(editor.textCursor()).location == row.start);
    CHECK(selectionOf(editor.textCursor()).end() == row.end);
    CHECK(edits.isEmpty());
    CHECK(notices.count() == 1);
    CHECK_FALSE(editor.canUndo());
    editor.redo();
    CHECK((editor.text() == "y" + row.text));
}

}  // namespace

TEST_CASE("all of a user's steps and none of the others' are taken back, and made again") {
    for (unsigned seed = 0; seed < 400; ++seed) {
        CAPTURE(seed);
        SharedText shared(seed);
        for (int i = 0; i < 30; ++i) {
            switch (shared.upTo(4)) {
                case 0:
                case 1: shared.changeAsUser(); break;
                case 2: shared.changeAsOthers(); break;
                case 3: shared.undo(); break;
                default: shared.redo(); break;
            }
        }
        while (shared.redo()) {
        }
        const QString before = shared.text();
        while (shared.undo()) {
        }
        CHECK((SharedText::sorted(shared.text()) == shared.withoutUser()));
        while (shared.redo()) {
        }
        CHECK((shared.text() == before));
    }
}

TEST_CASE("undo takes back what was typed, around what others wrote meanwhile") {
    const UndoRow rows[] = {
        {"above",
         [](SharedEditor& editor) {
             editor.write("my ");
             editor.replaceText("zero\nmy one\ntwo\n");
         },
         {"zero\none\ntwo\n"}},
        {"between two steps",
         [](SharedEditor& editor) {
             editor.goToLine(1);
             editor.write("my ");
             editor.replaceText("one\nmy two\nthree\n");
             editor.write("own ");
         },
         {"one\nmy two\nthree\n", "one\ntwo\nthree\n"}},
        {"in the same line",
         [](SharedEditor& editor) {
             editor.write("my ");
             editor.replaceText("my one more\ntwo\n");
         },
         {"one more\ntwo\n"}},
        {"in what was typed",
         [](SharedEditor& editor) {
             editor.write("abcd");
             editor.replaceText("ab+cdone\ntwo\n");
         },
         {"+one\ntwo\n"}},
        {"what was typed is gone already",
         [](SharedEditor& editor) {
             editor.key(Qt::Key_Return);
             editor.write("my");
             editor.replaceText("\none\ntwo\n");
         },
         {"one\ntwo\n"}},
        {"where a line was deleted",
         [](SharedEditor& editor) {
             editor.select(0, 4);
             editor.key(Qt::Key_Delete);
             editor.replaceText("two\nthree\n");
         },
         {"one\ntwo\nthree\n"}},
        {"what was replaced in many places",
         [](SharedEditor& editor) {
             editor.selectAll();
             editor.rewriteLines([](const std::string& line) { return line + "!"; });
             editor.replaceText("one!\nnew\ntwo!\n");
         },
         {"one\nnew\ntwo\n"}},
        {"all that there was", [](SharedEditor& editor) { editor.replaceText(""); }, {}},
    };
    for (const UndoRow& row : rows) {
        checkUndo(row);
    }
}

TEST_CASE("no gesture makes a line longer than can be edited, and none is half done") {
    const std::string half(longest / 2 + 1, 'x');
    const std::string two = half + "\n" + half;
    const std::size_t second = half.size() + 1;
    const std::string full(longest, 'x');
    const auto pressed = [](Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        return [=](SharedEditor& editor) { editor.key(key, modifiers); };
    };
    const LongRow rows[] = {
        {"Backspace", two, second, second, pressed(Qt::Key_Backspace)},
        {"Delete", two, half.size(), half.size(), pressed(Qt::Key_Delete)},
        {"word before", two, second, second, pressed(Qt::Key_Backspace, Qt::ControlModifier)},
        {"word behind", two, half.size(), half.size(),
         pressed(Qt::Key_Delete, Qt::ControlModifier)},
        {"selection", two, half.size() - 1, second, pressed(Qt::Key_Backspace)},
        {"cut", two, half.size() - 1, second, [](SharedEditor& editor) { editor.cut(); }},
        {"over a selection", two, half.size(), second, pressed(Qt::Key_A)},
        {"letter", "a\n" + full, 2, 2, pressed(Qt::Key_A)},
        {"indent", "a\n* " + full.substr(2), 2, 2, pressed(Qt::Key_Tab)},
        {"mark", "a\n" + full, 2, 9,
         [](SharedEditor& editor) { editor.mark(tessaly::editor::MarkAction::bold); }},
        {"rewrite", "a\n" + full, 2, 2,
         [](SharedEditor& editor) {
             editor.rewriteLines([](const std::string& line) { return line + "!"; });
         }},
        {"paste", two, 0, 1,
         [&](SharedEditor& editor) {
             QMimeData pasted;
             pasted.setText(qt("a\n" + half));
             editor.insertFromMimeData(&pasted);
         }},
    };
    for (const LongRow& row : rows) {
        checkRefused(row);
    }
}

TEST_CASE("a step is not taken back into a line that others have made too long for it") {
    SharedEditor editor;
    editor.setText(std::string(longest - 10, 'x'));
    editor.select(0, 20);
    editor.key(Qt::Key_Delete);
    const std::string made = std::string(longest - 30, 'x') + " by others, more than";
    editor.replaceText(made);
    QSignalSpy notices(&editor, &NoteEditor::notice);
    editor.undo();
    CHECK((editor.text() == made));
    CHECK(notices.count() == 1);
    editor.replaceText(std::string(longest - 30, 'x'));
    editor.undo();
    CHECK((editor.text() == std::string(longest - 10, 'x')));
}
