// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QString>
#include <QUrl>
#include <functional>
#include <string>
#include <utility>

#include "app/link_target.h"
#include "app/place.h"
#include "app/services.h"

namespace tessaly::desktop {

/// Leads the window where a link of a note leads, or hands it to another program. Main thread.
class WindowLinks : public QObject {
    Q_OBJECT
public:
    /// False: no program opened the address.
    using OpenAddress = std::function<bool(const QUrl& address)>;

    /// `services` outlives it.
    WindowLinks(app::Services& services, QObject* parent);
    /// In the place of the desktop's own way.
    void setOpenAddress(OpenAddress openAddress) { _openAddress = std::move(openAddress); }

    void open(const app::LookSpan& link);

Q_SIGNALS:
    void placeChosen(const tessaly::app::Place& place);
    void listChosen(const tessaly::app::ListRequest& request);
    /// In words for the user: why the link was not opened.
    void refused(const QString& text);
    /// The same, where there could be such a note.
    void noteMissing(const QString& text, const QString& title);

private:
    void openAddress(const QString& text);
    void openTitle(const std::string& title);
    void openFile(const std::string& filename);
    void openPicture(const std::string& name);
    bool areNotesRead();

    app::Services& _services;
    OpenAddress _openAddress;
};

}  // namespace tessaly::desktop
