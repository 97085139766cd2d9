// SPDX-License-Identifier: MIT
#include "desktop/folder_chooser.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QVBoxLayout>

#include "desktop/icons.h"
#include "desktop/qt_text.h"
#include "desktop/theme.h"

namespace tessaly::desktop {
namespace {

bool isKeyOfList(int key) {
    return key == Qt::Key_Up || key == Qt::Key_Down || key == Qt::Key_PageUp ||
           key == Qt::Key_PageDown;
}

}  // namespace

FolderChooser::FolderChooser(const QString& title, const QStringList& folders, QWidget* parent)
    : QDialog(parent), _field(new QLineEdit(this)), _list(new QListWidget(this)) {
    setWindowTitle(title);
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowModality(Qt::WindowModal);
    resize(380, 420);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(12, 12, 12, 12);
    column->addWidget(_field);
    column->addWidget(_list);
    _field->setPlaceholderText(trText("Folder"));
    _field->setAccessibleName(title);
    _field->installEventFilter(this);
    _list->setAccessibleName(trText("Folders"));
    _list->setFrameShape(QFrame::NoFrame);
    const QIcon folderIcon = icon(IconName::folder, Theme::instance().colors().text2);
    const auto add = [&](const QString& shown, const QString& folder) {
        auto* row = new QListWidgetItem(folderIcon, shown, _list);
        row->setData(Qt::UserRole, folder);
        row->setSizeHint({0, 30});
    };
    add(trText("Notes"), {});
    for (const QString& folder : folders) {
        add(folder, folder);
    }
    keepMatching({});
    connect(_field, &QLineEdit::textChanged, this, &FolderChooser::keepMatching);
    connect(_field, &QLineEdit::returnPressed, this, &FolderChooser::choose);
    connect(_list, &QListWidget::itemClicked, this, &FolderChooser::choose);
}

bool FolderChooser::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress &&
        isKeyOfList(static_cast<const QKeyEvent*>(event)->key())) {
        QCoreApplication::sendEvent(_list, event);
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

void FolderChooser::keepMatching(const QString& typed) {
    int first = -1;
    for (int row = 0; row < _list->count(); ++row) {
        const bool isKept = _list->item(row)->text().contains(typed.trimmed(), Qt::CaseInsensitive);
        _list->setRowHidden(row, !isKept);
        first = first < 0 && isKept ? row : first;
    }
    _list->setCurrentRow(first);
}

void FolderChooser::choose() {
    if (const QListWidgetItem* row = _list->currentItem()) {
        Q_EMIT folderChosen(row->data(Qt::UserRole).toString());
        accept();
    }
}

}  // namespace tessaly::desktop
