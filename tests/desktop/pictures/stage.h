// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QWidget>
#include <functional>
#include <string>
#include <vector>

#include "app/services.h"
#include "desktop/main_window.h"
#include "desktop/theme.h"

namespace tessaly::pictures {

/// A look, and what the names of its pictures end in.
struct NamedLook {
    QString name;
    desktop::Theme::Look look;
};

/// The window on a folder of notes, and where its pictures go. Main thread.
class Stage {
public:
    /// `services` and `stateStore` outlive it. `ending` is added to the names of the pictures.
    Stage(app::Services& services, ports::UserDefaults& stateStore, QString folder, QString ending,
          std::vector<NamedLook> looks);

    desktop::MainWindow& window() { return _window; }
    app::Services& services() { return _services; }

    /// Lets the window do what it has to do.
    void settle(int milliseconds = 250);
    void goTo(base::Day day);
    void goTo(const std::string& note);
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void type(const QString& text);
    /// A picture of the window, or of another widget, in every look.
    void take(const QString& name, QWidget* shown = nullptr);

    bool isWhole() const { return _isWhole; }  ///< every picture could be written

private:
    app::Services& _services;
    desktop::MainWindow _window;
    const QString _folder;
    const QString _ending;
    const std::vector<NamedLook> _looks;
    bool _isWhole = true;
};

/// What there is to see.
struct View {
    const char* name;
    void (*show)(Stage& stage);
};
std::vector<View> demoViews();    ///< of a planner that is in use
std::vector<View> editorViews();  ///< of a note that holds everything
std::vector<View> emptyViews();   ///< of one that has just been begun

}  // namespace tessaly::pictures
