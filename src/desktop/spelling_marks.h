// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPoint>
#include <QTimer>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "app/services.h"
#include "app/spell_checker.h"
#include "base/text_range.h"

class QPainter;
class QTextBlock;

namespace tessaly::desktop {

class NoteEditor;
class NoteLayout;

/// Underlines the words of an editor that no dictionary knows, and offers others for them in its
/// context menu. Words are looked up when they have been in sight and typing pauses; the one that
/// is being typed is not underlined.
class SpellingMarks : public QObject {
    Q_OBJECT
public:
    /// Belongs to the editor. `services` outlive it.
    SpellingMarks(app::Services& services, NoteEditor& editor);

    /// The setting may be another one than before.
    void follow();
    /// What is underlined in a block that is laid out, in UTF-16 units of it; what has not been
    /// looked up yet is asked for.
    std::vector<base::TextRange> marked(const QTextBlock& block);

    static constexpr int pause = 350;  ///< milliseconds of typing none, before words are looked up
    static constexpr int menuPatience = 250;  ///< that a menu waits for suggestions

Q_SIGNALS:
    /// In words for the user: what could not be done.
    void notice(const QString& text);

private:
    NoteLayout& layout() const;
    bool isChecking() const;
    const std::vector<base::TextRange>& wrongWords(const QTextBlock& block);
    void paint(QPainter& painter, const QTextBlock& block);
    void setTyping(bool isTyping);
    bool isBeingTyped(const QTextBlock& block, base::TextRange word) const;
    void lookUp();
    void showAnswers();

    /// A marked word for which a menu is shown.
    struct Place {
        int block = 0;
        base::TextRange range;  ///< in it
        std::string word;
        QPoint point;
    };
    bool helpWithMenu(int position, const QPoint& point);
    /// Nothing: they have not come in time.
    void popUp(int request, const std::optional<std::vector<std::string>>& suggestions);
    void replaceWord(const Place& place, const std::string& with);
    void addWord(const std::string& word);

    app::Services& _services;
    NoteEditor& _editor;
    app::SpellChecker _checker;
    bool _isOn = false;
    int _answers = 0;               ///< grows when words have become right or wrong
    std::set<std::string> _wanted;  ///< words that were in sight, not looked up yet
    QTimer _timer;
    int _revision = 0;       ///< of the document, by the last edit
    int _editEnd = 0;        ///< where it ended
    bool _isTyping = false;  ///< the caret has not moved since it was made here
    Place _place;
    int _request = 0;       ///< the newest menu
    int _shownRequest = 0;  ///< of those the last that is shown
};

}  // namespace tessaly::desktop
