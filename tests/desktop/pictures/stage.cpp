// SPDX-License-Identifier: MIT
#include "desktop/pictures/stage.h"

#include <QApplication>
#include <QTest>
#include <cstdio>
#include <utility>

#include "store/note_cache.h"

namespace tessaly::pictures {

Stage::Stage(app::Services& services, ports::UserDefaults& stateStore, QString folder,
             QString ending, std::vector<NamedLook> looks)
    : _services(services),
      _window(services, stateStore),
      _folder(std::move(folder)),
      _ending(std::move(ending)),
      _looks(std::move(looks)) {
    _window.resize(1280, 800);
    _window.show();
    (void)QTest::qWaitForWindowActive(&_window);
    _window.start();
    settle(600);
    _services.noteCache().waitUntilIdle();
    settle();
}

void Stage::settle(int milliseconds) {
    QTest::qWait(milliseconds);
}

void Stage::goTo(base::Day day) {
    _window.go(app::Place::ofDay(day));
    settle();
}

void Stage::goTo(const std::string& note) {
    _window.go(app::Place::ofNote(note));
    settle();
}

void Stage::press(Qt::Key key, Qt::KeyboardModifiers modifiers) {
    QWidget* const focused = QApplication::focusWidget();
    QTest::keyClick(focused != nullptr ? focused : &_window, key, modifiers);
    settle();
}

void Stage::type(const QString& text) {
    QTest::keyClicks(QApplication::focusWidget(), text);
    settle(400);
}

void Stage::take(const QString& name, QWidget* shown) {
    for (const NamedLook& look : _looks) {
        desktop::Theme::instance().apply(look.look);
        settle(60);
        const QString path =
            QStringLiteral("%1/%2-%3%4.png").arg(_folder, name, look.name, _ending);
        if (!(shown != nullptr ? shown : &_window)->grab().save(path, "PNG")) {
            std::fprintf(stderr, "cannot write %s\n", qUtf8Printable(path));
            _isWhole = false;
        }
    }
    desktop::Theme::instance().apply(_looks.front().look);
}

}  // namespace tessaly::pictures
