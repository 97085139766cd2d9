// SPDX-License-Identifier: MIT
#pragma once

#include <QPointer>
#include <QTimer>
#include <QWidget>
#include <cstddef>
#include <optional>
#include <vector>

#include "base/text_range.h"

class QLabel;
class QLineEdit;
class QToolButton;

namespace tessaly::desktop {

class NoteEditor;

/// How a text is looked for.
struct TextSearch {
    QString text;
    bool isCaseSensitive = false;
    bool isWholeWords = false;
    bool operator==(const TextSearch&) const = default;
};

/// Where a text holds what is looked for, in order and not overlapping; in UTF-16 units.
std::vector<base::TextRange> occurrences(const QString& text, const TextSearch& search);

/// Finds and replaces in an editor, below which it stands. Hidden until it is opened; Escape closes
/// it.
class FindBar : public QWidget {
    Q_OBJECT
public:
    enum class Fields { find, findAndReplace };

    explicit FindBar(QWidget* parent = nullptr);

    /// The editor that is searched; it may go before the bar. Null: none.
    void setEditor(NoteEditor* editor);
    /// Shows the bar, with what is selected in the editor as the text to look for.
    void open(Fields fields);
    void close();

    void findNext();
    void findPrevious();
    /// Replaces the match that is selected, and goes to the next.
    void replaceOne();
    /// One undo step.
    void replaceAll();

Q_SIGNALS:
    void closed();

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    enum class Direction { forward, backward };

    void build();
    TextSearch search() const;
    void look();
    void goTo(std::size_t match);
    void step(Direction direction);
    std::optional<std::size_t> selectedMatch() const;
    void tellCount();
    void paintTheme();

    QPointer<NoteEditor> _editor;
    QMetaObject::Connection _editorChanges;
    std::vector<base::TextRange> _matches;
    QLineEdit* _findField = nullptr;
    QLineEdit* _replaceField = nullptr;
    QWidget* _replaceRow = nullptr;
    QToolButton* _caseButton = nullptr;
    QToolButton* _wordsButton = nullptr;
    QLabel* _count = nullptr;
    QTimer _lookLater;
};

}  // namespace tessaly::desktop
