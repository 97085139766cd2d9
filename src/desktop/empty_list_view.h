// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

#include "app/list_words.h"

namespace tessaly::desktop {

/// What stands where a list has no rows: what that means, and what to try.
class EmptyListView : public QWidget {
    Q_OBJECT
public:
    explicit EmptyListView(QWidget* parent = nullptr);

    void setWords(const app::EmptyList& words);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString _title;
    QStringList _hints;
};

}  // namespace tessaly::desktop
