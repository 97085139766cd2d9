// SPDX-License-Identifier: MIT
#pragma once

#include <QSplitter>

#include "app/window_state.h"

namespace tessaly::desktop {

/// The panes of the window side by side: sidebar, list, middle and right pane. All but the middle
/// can be folded away, and keep the width that the user gave them; the middle has what is left. The
/// panes stand the other way round where one reads from right to left.
class WindowPanes : public QSplitter {
    Q_OBJECT
public:
    enum class Pane { sideBar, list, middle, right };
    struct Widgets {
        QWidget* sideBar;
        QWidget* list;
        QWidget* middle;
        QWidget* right;
    };
    /// Takes the widgets over.
    WindowPanes(const Widgets& widgets, QWidget* parent);

    void restore(const app::WindowState& state);
    /// Writes what is shown, and how wide, into `state`.
    void keep(app::WindowState& state) const;

    bool isShown(Pane pane) const;
    void setShown(Pane pane, bool isShown);
    void toggle(Pane pane) { setShown(pane, !isShown(pane)); }

    /// The pane that has the keys; nothing: none of them.
    std::optional<Pane> paneOf(const QWidget* focused) const;
    /// The shown pane behind (step 1) or before (-1) another, around the end.
    Pane next(Pane pane, int step) const;

Q_SIGNALS:
    void shownChanged(WindowPanes::Pane pane, bool isShown);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    static constexpr int paneCount = 4;

    void distribute();
    QWidget* widgetOf(Pane pane) const { return widget(static_cast<int>(pane)); }
    int& widthOf(Pane pane) { return _widths[static_cast<std::size_t>(pane)]; }

    std::array<int, paneCount> _widths{};  ///< as the user wants them; of the middle unused
};

}  // namespace tessaly::desktop
