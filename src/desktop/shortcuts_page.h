// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>
#include <vector>

namespace tessaly::desktop {

class CommandActions;
class ShortcutGroup;

/// The groups of commands with their keys, in as many columns as there is room for.
class ShortcutsPage : public QWidget {
    Q_OBJECT
public:
    explicit ShortcutsPage(const CommandActions& actions);

    /// Leaves the commands that hold each word of `typed` in their text or keys.
    void filter(const QString& typed);
    bool isEmpty() const;
    void dress();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void flow();

    std::vector<ShortcutGroup*> _groups;
};

}  // namespace tessaly::desktop
