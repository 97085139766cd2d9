// SPDX-License-Identifier: MIT
#include "desktop/window_links.h"

#include <QDesktopServices>
#include <utility>

#include "app/linked_note.h"
#include "desktop/image_file.h"
#include "desktop/qt_text.h"

namespace tessaly::desktop {

using app::LinkTarget;
using app::Place;

WindowLinks::WindowLinks(app::Services& services, QObject* parent)
    : QObject(parent), _services(services), _openAddress(&QDesktopServices::openUrl) {}

void WindowLinks::open(const app::LookSpan& link) {
    const LinkTarget target = app::linkTarget(link);
    switch (target.kind) {
        case LinkTarget::Kind::web: return openAddress(qt(target.text));
        case LinkTarget::Kind::noteTitle: return openTitle(target.text);
        case LinkTarget::Kind::noteFile: return openFile(target.text);
        case LinkTarget::Kind::day: Q_EMIT placeChosen(Place::ofDay(target.day)); return;
        case LinkTarget::Kind::picture: return openPicture(target.text);
        case LinkTarget::Kind::tag:
        case LinkTarget::Kind::search: Q_EMIT listChosen({target.text, {}, {}}); return;
        case LinkTarget::Kind::refused: Q_EMIT refused(qt(target.text)); return;
    }
}

void WindowLinks::openAddress(const QString& text) {
    const QUrl address(text);
    if (!address.isValid() || !_openAddress(address)) {
        Q_EMIT refused(trText("No program opened %1").arg(text));
    }
}

/// What is missing while they are not may be there all the same.
bool WindowLinks::areNotesRead() {
    const bool areRead = _services.noteCache().initialUpdateDone();
    if (!areRead) {
        Q_EMIT refused(trText("The notes are still being read."));
    }
    return areRead;
}

void WindowLinks::openTitle(const std::string& title) {
    const auto notes = _services.noteCache().generalNotes();
    if (auto filename = app::noteOfTitle(*notes, title)) {
        Q_EMIT placeChosen(Place::ofNote(*std::move(filename)));
    } else if (areNotesRead()) {
        Q_EMIT noteMissing(trText("There is no note called “%1”.").arg(qt(title)), qt(title));
    }
}

void WindowLinks::openFile(const std::string& name) {
    const auto notes = _services.noteCache().generalNotes();
    if (auto filename = app::noteOfFile(*notes, name)) {
        Q_EMIT placeChosen(Place::ofNote(*std::move(filename)));
    } else if (areNotesRead()) {
        Q_EMIT refused(trText("There is no note “%1”.").arg(qt(name)));
    }
}

/// Whatever else lies there could be a program.
void WindowLinks::openPicture(const std::string& name) {
    const auto path = _services.dataStore().pathOf(base::NoteType::images, name);
    const auto kind = path ? _services.ports().files.kindOf(*path)
                           : base::Result<ports::FolderEntry::Kind>(path.failure());
    if (!kind) {
        Q_EMIT refused(trText("“%1” is missing.").arg(qt(name)));
    } else if (*kind != ports::FolderEntry::Kind::file || !ImageFile::isNamedLikePicture(name)) {
        Q_EMIT refused(trText("“%1” is no picture.").arg(qt(name)));
    } else {
        openAddress(QUrl::fromLocalFile(qt(*path)).toString(QUrl::FullyEncoded));
    }
}

}  // namespace tessaly::desktop
