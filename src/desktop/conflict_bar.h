// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

#include "sync/conflict_manager.h"

class QLabel;
class QPushButton;

namespace tessaly::desktop {

/// Tells above the editor that a note has several versions, and which of them is shown.
class ConflictBarView : public QWidget {
    Q_OBJECT
public:
    enum class Version { current, other };
    enum class Work { none, running };

    explicit ConflictBarView(QWidget* parent = nullptr);

    /// Differences can be asked for of a version that is not the current one.
    void show(const sync::ConflictBar& bar, Version version);
    bool showsDifferences() const;
    void setShowsDifferences(bool isShown);
    /// While the versions are worked on, no button can be pressed.
    void setWork(Work work);

Q_SIGNALS:
    void otherVersionAsked();
    void thisVersionChosen();
    void mergeAsked();
    void differencesToggled(bool isShown);

private:
    void paintTheme();

    QLabel* _date;
    QLabel* _device;
    QPushButton* _showOther;
    QPushButton* _differences;
    QPushButton* _chooseThis;
    QPushButton* _merge;
};

}  // namespace tessaly::desktop
