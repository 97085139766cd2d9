// SPDX-License-Identifier: MIT
#include "desktop/window_panes.h"

#include <algorithm>

namespace tessaly::desktop {

namespace {

using Pane = WindowPanes::Pane;

/// Narrower than this, a pane is of no use.
struct WidthBounds {
    int least;
    int most;
};
constexpr std::array<WidthBounds, 4> bounds{{{180, 420}, {240, 640}, {320, 1 << 24}, {220, 520}}};

const WidthBounds& boundsOf(Pane pane) {
    return bounds[static_cast<std::size_t>(pane)];
}

constexpr std::array<Pane, 3> sidePanes{Pane::sideBar, Pane::list, Pane::right};

}  // namespace

WindowPanes::WindowPanes(const Widgets& widgets, QWidget* parent)
    : QSplitter(Qt::Horizontal, parent) {
    setHandleWidth(1);
    setChildrenCollapsible(false);
    const std::array<QWidget*, paneCount> panes{widgets.sideBar, widgets.list, widgets.middle,
                                                widgets.right};
    for (int index = 0; index < paneCount; ++index) {
        QWidget* const pane = panes[static_cast<std::size_t>(index)];
        // Before it is added: each change afterwards measures all panes anew.
        pane->setMinimumWidth(boundsOf(static_cast<Pane>(index)).least);
        addWidget(pane);
        setStretchFactor(index, index == static_cast<int>(Pane::middle) ? 1 : 0);
    }
    connect(this, &QSplitter::splitterMoved, this, [this] {
        const QList<int> now = sizes();
        for (const Pane pane : sidePanes) {
            if (isShown(pane)) {
                widthOf(pane) = now[static_cast<int>(pane)];
            }
        }
    });
}

void WindowPanes::restore(const app::WindowState& state) {
    const auto take = [this](Pane pane, int width, bool isPaneShown) {
        widthOf(pane) = std::clamp(width, boundsOf(pane).least, boundsOf(pane).most);
        widgetOf(pane)->setVisible(isPaneShown);
    };
    take(Pane::sideBar, state.sideBarWidth, state.isSideBarShown);
    take(Pane::list, state.listWidth, state.isListShown);
    take(Pane::right, state.rightPaneWidth, state.isRightPaneShown);
    distribute();
}

void WindowPanes::keep(app::WindowState& state) const {
    state.isSideBarShown = isShown(Pane::sideBar);
    state.isListShown = isShown(Pane::list);
    state.isRightPaneShown = isShown(Pane::right);
    state.sideBarWidth = _widths[static_cast<std::size_t>(Pane::sideBar)];
    state.listWidth = _widths[static_cast<std::size_t>(Pane::list)];
    state.rightPaneWidth = _widths[static_cast<std::size_t>(Pane::right)];
}

bool WindowPanes::isShown(Pane pane) const {
    return !widgetOf(pane)->isHidden();
}

void WindowPanes::setShown(Pane pane, bool isPaneShown) {
    if (pane == Pane::middle || isShown(pane) == isPaneShown) {
        return;
    }
    widgetOf(pane)->setVisible(isPaneShown);
    distribute();
    Q_EMIT shownChanged(pane, isPaneShown);
}

std::optional<Pane> WindowPanes::paneOf(const QWidget* focused) const {
    for (int index = 0; index < paneCount; ++index) {
        if (focused != nullptr &&
            (focused == widget(index) || widget(index)->isAncestorOf(focused))) {
            return static_cast<Pane>(index);
        }
    }
    return std::nullopt;
}

Pane WindowPanes::next(Pane pane, int step) const {
    int index = static_cast<int>(pane);
    do {
        index = (index + step + paneCount) % paneCount;
    } while (!isShown(static_cast<Pane>(index)));
    return static_cast<Pane>(index);
}

void WindowPanes::resizeEvent(QResizeEvent* event) {
    QSplitter::resizeEvent(event);
    distribute();
}

/// Side panes are as wide as wanted; where the middle would be too narrow, they give way, the right
/// one first.
void WindowPanes::distribute() {
    if (width() <= 0) {
        return;
    }
    std::array<int, paneCount> wanted{};
    int left = width() - boundsOf(Pane::middle).least;
    for (const Pane pane : sidePanes) {
        if (isShown(pane)) {
            const int given = std::clamp(widthOf(pane), boundsOf(pane).least,
                                         std::max(left, boundsOf(pane).least));
            wanted[static_cast<std::size_t>(pane)] = given;
            left -= given;
        }
    }
    wanted[static_cast<std::size_t>(Pane::middle)] =
        std::max(left, 0) + boundsOf(Pane::middle).least;
    setSizes(QList<int>(wanted.begin(), wanted.end()));
}

}  // namespace tessaly::desktop
