// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>

class QLineEdit;
class QListWidget;

namespace tessaly::desktop {

/// Asks for one of many folders: what is typed keeps those that hold it. The keys of the list work
/// while one types.
class FolderChooser : public QDialog {
    Q_OBJECT
public:
    /// `folders` relative to that of all notes, which is offered first, as an empty name.
    FolderChooser(const QString& title, const QStringList& folders, QWidget* parent);

Q_SIGNALS:
    void folderChosen(const QString& folder);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void keepMatching(const QString& typed);
    void choose();

    QLineEdit* _field;
    QListWidget* _list;
};

}  // namespace tessaly::desktop
