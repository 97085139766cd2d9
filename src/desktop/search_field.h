// SPDX-License-Identifier: MIT
#pragma once

#include <QLineEdit>

class QCompleter;
class QStringListModel;

namespace tessaly::desktop {

/// Where a search is typed.
class SearchField : public QLineEdit {
    Q_OBJECT
public:
    explicit SearchField(QWidget* parent = nullptr);

    /// Takes the keyboard, with what it holds selected.
    void enter();
    /// Without telling `typed`.
    void setQuery(const QString& query);
    /// What Down offers in an empty field, newest first.
    void setRecentSearches(const QStringList& searches);

Q_SIGNALS:
    /// With every key.
    void typed(const QString& query);
    /// Enter: the search is one to remember.
    void kept(const QString& query);
    /// Down, or Enter: to the list.
    void listWanted();
    /// Escape in an empty field.
    void left();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QCompleter* _completer;
    QStringListModel* _recent;
    bool _isSetting = false;
};

}  // namespace tessaly::desktop
