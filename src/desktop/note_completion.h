// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QRect>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/completion.h"
#include "app/completion_feed.h"
#include "app/services.h"
#include "base/note_type.h"
#include "desktop/completion_keys.h"
#include "desktop/suggestions.h"
#include "desktop/typing_run.h"

class QKeyEvent;

namespace tessaly::desktop {

class NoteEditor;

/// Offers what the word before an editor's caret can become, while the user writes: tags, mentions,
/// titles of notes, days. The keys stay the editor's; a few of them are for what is offered while
/// it is in sight. Main thread.
class NoteCompletion : public QObject {
    Q_OBJECT
public:
    /// `services` and `editor` outlive it. `noteType` tells the kind of the note in the editor.
    NoteCompletion(app::Services& services, NoteEditor& editor,
                   std::function<base::NoteType()> noteType, QObject* parent);
    ~NoteCompletion() override;

    /// Offers something now, also where the user has sent it away.
    void suggest();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    /// Where a word begins. It stays the same while the word is written.
    struct WordStart {
        app::CompletionKind kind;
        int line;
        std::size_t unit;
        bool operator==(const WordStart&) const = default;
    };
    /// The word that is written, and what the editor was like when something was offered for it.
    struct Session {
        WordStart start;
        app::CompletionPlace place;
        std::shared_ptr<const app::CompletionWords> words;
        int caret;
        int revision;
    };
    std::optional<app::CompletionPlace> placeAtCaret() const;
    WordStart startOf(const app::CompletionPlace& place) const;
    void onTyped(TypingRun::Kind kind);
    void onReady(app::CompletionKind kind);
    using Words = std::shared_ptr<const app::CompletionWords>;
    void begin(const app::CompletionPlace& place, Words words);
    void offer();
    void offerWords();
    void offerDays();
    std::vector<app::NextMark> marksAtCaret() const;
    QRect wordPlace() const;
    void move();
    void endWhenStale();
    void checkLater();
    void end();

    CompletionKey meaningOf(const QKeyEvent& event) const;
    bool canTake() const;
    bool press(const QKeyEvent& event);
    void takeChosen();
    void step(int rows);
    void take(const Suggestions::Choice& choice);
    void takeDay(base::Day day);
    void make(const editor::Edit& edit);

    app::Services& _services;
    NoteEditor& _editor;
    const std::function<base::NoteType()> _noteType;
    app::CompletionFeed _feed;
    std::optional<Session> _session;
    std::optional<Session> _dismissed;          ///< for whose word the user wants nothing
    std::vector<Suggestions::Choice> _choices;  ///< by row
    int _firstChoice = -1;                      ///< the row that was the current one at first
    bool _isCheckPosted = false;
    const std::unique_ptr<CompletionView> _view;
};

}  // namespace tessaly::desktop
