// SPDX-License-Identifier: MIT
#include "desktop/note_versions.h"

#include <utility>

#include "app/shown_text.h"
#include "base/localisation.h"
#include "desktop/conflict_bar.h"
#include "desktop/note_editor.h"
#include "desktop/qt_text.h"
#include "desktop/version_differences.h"
#include "store/note_document.h"

namespace tessaly::desktop {

namespace {

/// A version's bytes as the editor shows texts, or why it cannot be shown.
base::Result<std::string> shownBytes(const base::Result<std::string>& bytes) {
    if (!bytes) {
        return bytes.failure();
    }
    const auto text = store::decodedText(*bytes);
    if (!text) {
        return base::Failure{base::Failure::Kind::malformed,
                             base::tr("This version is not UTF-8 text, and cannot be shown.")};
    }
    return app::shownText(*text);
}

}  // namespace

NoteVersions::NoteVersions(app::Services& services, Note note, QWidget* parent)
    : QStackedWidget(parent),
      _services(services),
      _note(std::move(note)),
      _bar(new ConflictBarView(parent)),
      _text(new NoteEditor(this)),
      _differences(new VersionDifferences(this)) {
    _text->setAccessibleName(trText("Another version of this note"));
    _text->setEditing(NoteEditor::Editing::never);
    addWidget(_text);
    addWidget(_differences);
    connectBar();
}

NoteVersions::~NoteVersions() = default;

void NoteVersions::connectBar() {
    connect(_bar, &ConflictBarView::otherVersionAsked, this, [this] {
        if (_conflict != nullptr && _note.save()) {
            _conflict->showOther();
        }
    });
    connect(_bar, &ConflictBarView::thisVersionChosen, this,
            [this] { resolve(&app::OpenConflict::choose); });
    connect(_bar, &ConflictBarView::mergeAsked, this,
            [this] { resolve(&app::OpenConflict::merge); });
    connect(_bar, &ConflictBarView::differencesToggled, this, [this] {
        if (_version) {
            showPage();
        }
    });
}

void NoteVersions::open(const app::NoteAddress& address) {
    _conflict = std::make_unique<app::OpenConflict>(
        _services, address,
        app::OpenConflict::Handlers{[this](const app::ShownVersion& version) { show(version); },
                                    [this] {
                                        leaveVersions();
                                        Q_EMIT shownChanged();
                                    },
                                    [this](const std::string& text) {
                                        _note.reread();
                                        Q_EMIT notice(qt(text));
                                    },
                                    [this](const std::string& why) { Q_EMIT notice(qt(why)); }});
}

void NoteVersions::check() {
    if (_conflict != nullptr) {
        _conflict->check();
    }
}

void NoteVersions::close() {
    _conflict.reset();
    leaveVersions();
}

void NoteVersions::leaveVersions() {
    _version.reset();
    _bar->hide();
    _bar->setShowsDifferences(false);
    _bar->setWork(ConflictBarView::Work::none);
}

void NoteVersions::show(const app::ShownVersion& version) {
    _version = version;
    _bar->setWork(ConflictBarView::Work::none);
    _bar->show(version.bar, version.isCurrent ? ConflictBarView::Version::current
                                              : ConflictBarView::Version::other);
    if (!version.isCurrent) {
        const auto text = shownBytes(version.text);
        _text->setText(text ? *text : text.failure().description);
    }
    showPage();
}

NoteVersions::Shown NoteVersions::shown() const {
    if (!_version || _version->isCurrent) {
        return Shown::note;
    }
    return currentWidget() == _text ? Shown::text : Shown::differences;
}

void NoteVersions::showPage() {
    const bool areWanted = !_version->isCurrent && _bar->showsDifferences();
    const auto text = areWanted ? std::optional(shownBytes(_version->text)) : std::nullopt;
    if (text && *text) {
        _differences->show(_note.shownText(), **text);
        setCurrentWidget(_differences);
    } else {
        setCurrentWidget(_text);
    }
    Q_EMIT shownChanged();
}

void NoteVersions::resolve(void (app::OpenConflict::*how)()) {
    if (_conflict == nullptr || !_note.save()) {
        return;
    }
    _bar->setWork(ConflictBarView::Work::running);
    (_conflict.get()->*how)();
}

}  // namespace tessaly::desktop
