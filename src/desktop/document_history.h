// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QString>
#include <functional>
#include <optional>

#include "desktop/document_edits.h"
#include "desktop/edit_history.h"

class QTextDocument;

namespace tessaly::desktop {

/// The history of a document, in the place of its own, which would take back what others changed as
/// if it were the user's. Every block of edits is a step. Lines do not get longer than a
/// limit: an edit that would make one so is taken back at once, and is no step.
class DocumentHistory : public QObject {
    Q_OBJECT
public:
    /// `longestLine` in UTF-16 units. The document outlives it, and has its layout already.
    DocumentHistory(QTextDocument& document, int longestLine, QObject* parent);

    /// `set` gives the document another text, whose history begins.
    void begin(const std::function<void()>& set);
    /// Changes of others: no step, and none that undo takes back.
    void makeOthers(const DocumentChanges& changes);

    /// Whether edits go on with the last step. To be set to false again.
    void setJoins(bool joins) { _joins = joins; }
    bool canUndo() const { return _history.canUndo(); }
    bool canRedo() const { return _history.canRedo(); }
    /// Where the caret belongs afterwards; nothing: nothing was done.
    std::optional<int> undo();
    std::optional<int> redo();

Q_SIGNALS:
    /// The user, undo or redo have changed the text.
    void edited();
    /// A line would have got too long; the text is as it was.
    void refused();

private:
    enum class Change { users, others, undo, redo, begin };

    void onContentsChange(int position, int removed, int added);
    void onContentsChanged();
    std::optional<int> go(Change way);
    int makeStep(const EditHistory::Step& step, Change way);
    QString textNow(int position, int end);
    bool isTooLong(int position, int end) const;

    QTextDocument& _document;
    const int _longestLine;
    EditHistory _history;
    QString _text;  ///< the document's
    Change _change = Change::users;
    const DocumentChange* _made = nullptr;  ///< that is being made, where it is one alone
    bool _joins = false;
    DocumentChanges _refused;  ///< takes back what is too long
    int _knownRevision = 0;
};

}  // namespace tessaly::desktop
