// SPDX-License-Identifier: MIT
#include "desktop/spelling_marks.h"

#include <QAction>
#include <QMenu>
#include <QPainter>
#include <QTextBlock>
#include <utility>

#include "app/spelling_words.h"
#include "desktop/block_style.h"
#include "desktop/note_editor.h"
#include "desktop/note_layout.h"
#include "desktop/qt_text.h"
#include "desktop/spelling_underline.h"

namespace tessaly::desktop {

namespace {

using base::TextRange;
using Verdict = app::SpellChecker::Verdict;

std::string wordAt(const QString& text, TextRange range) {
    return utf8(text.mid(static_cast<int>(range.location), static_cast<int>(range.length)));
}

/// The apostrophe that the user writes, where dictionaries have the plain one.
std::string asWritten(std::string suggestion, const std::string& word) {
    const std::string curled = "\u2019";
    if (word.find(curled) == std::string::npos) {
        return suggestion;
    }
    for (auto at = suggestion.find('\''); at != std::string::npos; at = suggestion.find('\'', at)) {
        suggestion.replace(at, 1, curled);
    }
    return suggestion;
}

}  // namespace

SpellingMarks::SpellingMarks(app::Services& services, NoteEditor& editor)
    : QObject(&editor), _services(services), _editor(editor), _checker(services.ports()) {
    layout().setOverlay(
        [this](QPainter& painter, const QTextBlock& block) { paint(painter, block); });
    _editor.setMenuHelper(
        [this](int position, const QPoint& point) { return helpWithMenu(position, point); });
    _timer.setSingleShot(true);
    _timer.setInterval(pause);
    connect(&_timer, &QTimer::timeout, this, &SpellingMarks::lookUp);
    connect(_editor.document(), &QTextDocument::contentsChanged, this, [this] {
        if (_timer.isActive()) {
            _timer.start();
        }
    });
    // The caret's moves that are part of an edit are told before and behind it.
    connect(_editor.document(), &QTextDocument::contentsChange, this,
            [this](int from, int, int added) {
                const int revision = _editor.document()->revision();
                if (std::exchange(_revision, revision) != revision) {
                    _editEnd = from + added;
                }
            });
    connect(&_editor, &NoteEditor::edited, this, [this] { setTyping(true); });
    connect(&_editor, &QTextEdit::cursorPositionChanged, this,
            [this] { setTyping(_isTyping && _editor.textCursor().position() == _editEnd); });
    follow();
}

NoteLayout& SpellingMarks::layout() const {
    return static_cast<NoteLayout&>(*_editor.document()->documentLayout());
}

void SpellingMarks::follow() {
    const bool isOn = _services.globals().isCheckingSpelling();
    if (std::exchange(_isOn, isOn) != isOn) {
        _wanted.clear();
        showAnswers();
    }
}

bool SpellingMarks::isChecking() const {
    return _isOn && _editor.canEdit();
}

std::vector<TextRange> SpellingMarks::marked(const QTextBlock& block) {
    std::vector<TextRange> words = isChecking() ? wrongWords(block) : std::vector<TextRange>();
    std::erase_if(words, [&](TextRange word) { return isBeingTyped(block, word); });
    return words;
}

const std::vector<TextRange>& SpellingMarks::wrongWords(const QTextBlock& block) {
    static const std::vector<TextRange> none;
    const BlockLook* look = BlockLook::of(block);
    if (look == nullptr) {
        return none;
    }
    BlockSpelling& spelling = look->spelling;
    const QString text = block.text();
    if (spelling.answers < 0) {
        spelling.words = app::spellingWords(utf8(text), layout().lookOf(block));
    }
    if (std::exchange(spelling.answers, _answers) != _answers) {
        spelling.wrong.clear();
        for (const TextRange range : spelling.words) {
            const std::string word = wordAt(text, range);
            const Verdict verdict = _checker.verdict(word);
            if (verdict == Verdict::wrong) {
                spelling.wrong.push_back(range);
            } else if (verdict == Verdict::unknown) {
                _wanted.insert(word);
            }
        }
        if (!_wanted.empty() && !_timer.isActive()) {
            _timer.start();
        }
    }
    return spelling.wrong;
}

void SpellingMarks::paint(QPainter& painter, const QTextBlock& block) {
    // Words that an input method has not finished move all places behind them.
    if (block.layout()->preeditAreaText().isEmpty()) {
        for (const TextRange word : marked(block)) {
            paintSpellingUnderline(painter, block, word);
        }
    }
}

void SpellingMarks::setTyping(bool isTyping) {
    if (std::exchange(_isTyping, isTyping) != isTyping) {
        _editor.viewport()->update();
    }
}

bool SpellingMarks::isBeingTyped(const QTextBlock& block, TextRange word) const {
    const QTextCursor caret = _editor.textCursor();
    if (!_isTyping || !_editor.hasFocus() || caret.block() != block) {
        return false;
    }
    const auto place = static_cast<std::size_t>(caret.positionInBlock());
    return place >= word.location && place <= word.end();
}

void SpellingMarks::lookUp() {
    if (!isChecking() || _wanted.empty()) {
        return;
    }
    _checker.lookUp({_wanted.begin(), _wanted.end()}, [this] { showAnswers(); });
    _wanted.clear();
}

void SpellingMarks::showAnswers() {
    ++_answers;
    _editor.viewport()->update();
}

/// Whether the menu is ours: it is of a word that is marked.
bool SpellingMarks::helpWithMenu(int position, const QPoint& point) {
    const QTextBlock block = _editor.document()->findBlock(position);
    const auto place = static_cast<std::size_t>(position - block.position());
    for (const TextRange word : marked(block)) {
        if (place >= word.location && place <= word.end()) {
            _place = {block.blockNumber(), word, wordAt(block.text(), word), point};
            const int request = ++_request;
            _checker.suggest(_place.word,
                             [this, request](const auto& found) { popUp(request, found); });
            // A word of which little is right may take long. Its next menu has them.
            QTimer::singleShot(menuPatience, this,
                               [this, request] { popUp(request, std::nullopt); });
            return true;
        }
    }
    ++_request;
    return false;
}

void SpellingMarks::popUp(int request, const std::optional<std::vector<std::string>>& suggestions) {
    if (request != _request || std::exchange(_shownRequest, request) == request) {
        return;
    }
    _editor.popUpMenu(_place.point, [&](QMenu& menu) {
        const Place place = _place;
        for (const std::string& each : suggestions.value_or(std::vector<std::string>())) {
            const std::string shown = asWritten(each, place.word);
            QAction* action = menu.addAction(qt(shown), this,
                                             [this, place, shown] { replaceWord(place, shown); });
            QFont font = action->font();
            font.setBold(true);
            action->setFont(font);
        }
        if (!suggestions || suggestions->empty()) {
            menu.addAction(suggestions ? trText("No suggestions")
                                       : trText("Looking for suggestions…"))
                ->setEnabled(false);
        }
        menu.addSeparator();
        menu.addAction(trText("Add to Dictionary"), this, [this, place] { addWord(place.word); });
        menu.addAction(trText("Ignore"), this, [this, place] {
            _checker.ignore(place.word);
            showAnswers();
        });
        menu.addSeparator();
    });
}

void SpellingMarks::replaceWord(const Place& place, const std::string& with) {
    const QTextBlock block = _editor.document()->findBlockByNumber(place.block);
    // Another program may have written the note meanwhile.
    if (!block.isValid() || wordAt(block.text(), place.range) != place.word) {
        return;
    }
    QString line = block.text();
    line.replace(static_cast<int>(place.range.location), static_cast<int>(place.range.length),
                 qt(with));
    _editor.rewriteLines({place.block, place.block},
                         [&](const std::string&) { return utf8(line); });
}

void SpellingMarks::addWord(const std::string& word) {
    _checker.addWord(word, [this](const base::Failure& failure) {
        Q_EMIT notice(trText("The word could not be added: %1").arg(qt(failure.description)));
    });
    showAnswers();
}

}  // namespace tessaly::desktop
