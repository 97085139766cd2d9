// SPDX-License-Identifier: MIT
#pragma once

#include <QTimer>
#include <QWidget>
#include <optional>

#include "app/background.h"
#include "app/services.h"
#include "app/text_counts.h"

namespace tessaly::desktop {

class ElidedLabel;
class NoteEditor;

/// A quiet line that tells how much the text of an editor has, or what is selected of it. It is
/// counted in the background when typing pauses, and there only while the editor is.
class TextCountLabel : public QWidget {
    Q_OBJECT
public:
    /// Both outlive it.
    TextCountLabel(app::Services& services, NoteEditor& editor);

    static constexpr int pause = 300;  ///< milliseconds without a change, before it is counted
    /// Narrower, it would be in the way, in pixels.
    static constexpr int leastWidth = 300;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void count();
    void tell(const app::TextCounts& whole, const std::optional<app::TextCounts>& selected);
    void dress();

    app::Services& _services;
    NoteEditor& _editor;
    ElidedLabel* _label;
    QTimer _timer;
    int _countedRevision = -1;  ///< of the document that `_whole` is of
    app::TextCounts _whole;
    int _request = 0;
    app::Background _background;  ///< the last member: what it runs tells the others
};

}  // namespace tessaly::desktop
