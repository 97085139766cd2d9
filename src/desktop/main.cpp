// SPDX-License-Identifier: MIT
#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTimer>
#include <QTranslator>
#include <QWindow>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <utility>

#include <fmt/format.h>

#include "app/sample_folder.h"
#include "app/start_up.h"
#include "app/usage_log.h"
#include "base/localisation.h"
#include "desktop/appearance.h"
#include "desktop/desktop_questions.h"
#include "desktop/end_signals.h"
#include "desktop/main_window.h"
#include "desktop/qt_text.h"
#include "desktop/single_instance.h"
#include "desktop/start_options.h"
#include "host/program_host.h"
#include "platform/json_user_defaults.h"
#include "platform/system_locale.h"

namespace {

using namespace tessaly;

enum Exit { done = 0, couldNot = 1, misuse = 2 };

int complain(const std::string& text, Exit exit) {
    std::fputs(fmt::format("tessaly-desktop: {}\n", text).c_str(), stderr);
    return exit;
}

QStringList wordsOf(int argc, char** argv) {
    QStringList words;
    for (int index = 0; index < argc; ++index) {
        words.append(QString::fromLocal8Bit(argv[index]));
    }
    return words;
}

/// The words of the toolkit itself, in menus of text fields and the like.
void translateToolkit(QApplication& application) {
    auto* translator = new QTranslator(&application);
    if (translator->load(QLocale(), QStringLiteral("qtbase"), QStringLiteral("_"),
                         QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        QApplication::installTranslator(translator);
    }
}

/// Our main queue lives on GLib's loop, which must be the one that Qt runs.
bool runsOnGlib() {
    const char* name = QAbstractEventDispatcher::instance()->metaObject()->className();
    return QByteArray(name).contains("Glib");
}

/// Gives a new user notes to begin with, in the default data folder only. Left-over writes of a run
/// that was killed do not keep anybody from anything.
void prepareDataFolder(app::Services& services) {
    (void)app::settleUnfinished(services);
    if (!services.ports().dataFolder && !services.isCloudDriveMissing()) {
        (void)app::makeSampleNotes(services);
    }
}

/// Calls back once: when the window, which is shown already, has been painted, or has not been for
/// a while, as when it is minimised. Belongs to the window.
class FirstPaint : public QObject {
public:
    FirstPaint(QWidget& window, std::function<void()> then)
        : QObject(&window), _then(std::move(then)) {
        constexpr std::chrono::seconds patience{1};
        window.windowHandle()->installEventFilter(this);
        QTimer::singleShot(patience, this, [this] { end(); });
    }

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Expose) {
            // The window is painted while this is handled.
            QTimer::singleShot(0, this, [this] { end(); });
        }
        return false;
    }

private:
    void end() {
        if (const auto then = std::exchange(_then, {})) {
            deleteLater();
            then();
        }
    }

    std::function<void()> _then;
};

class Program {
public:
    Program(app::Services& services, ports::UserDefaults& stateStore,
            desktop::DesktopQuestions& questions)
        : _services(services), _stateStore(stateStore), _questions(questions) {}

    void showWindow() {
        if (_window != nullptr) {
            _window->setWindowState(_window->windowState() & ~Qt::WindowMinimized);
            _window->show();
            _window->raise();
            _window->activateWindow();
            return;
        }
        _window = std::make_unique<desktop::MainWindow>(_services, _stateStore);
        _questions.setWindow(_window.get());
        QObject::connect(_window.get(), &desktop::MainWindow::closed, [] { QApplication::quit(); });
        _window->show();
        // What is shown first needs nothing but the day's note, and does not wait for the rest.
        new FirstPaint(*_window, [this] { _window->start(); });
    }

    void end() {
        if (_window == nullptr || _window->close()) {
            QApplication::quit();
        }
    }

    /// The session ends: there is no time for questions.
    void save() {
        if (_window != nullptr) {
            _window->saveForEnd();
        }
    }

private:
    app::Services& _services;
    ports::UserDefaults& _stateStore;
    desktop::DesktopQuestions& _questions;
    std::unique_ptr<desktop::MainWindow> _window;
};

int runProgram(QApplication& application, const desktop::StartOptions& options,
               const ports::UserLocale& locale) {
    desktop::DesktopQuestions questions;
    const auto host = host::ProgramHost::make({host::dataFolderNamed(options.root), options.now,
                                               host::HostOptions::Stay::yes, -1, questions.port()},
                                              locale);
    if (!host) {
        return complain(host.failure().description, misuse);
    }
    app::Services& services = (*host)->services();
    const app::UsageLog usage;  // off: a sink is for those who want to know
    app::startUp(services, usage);
    prepareDataFolder(services);
    desktop::Appearance appearance;
    appearance.follow();
    platform::JsonUserDefaults stateStore{services.ports().folders.state + "/window.json"};
    Program program{services, stateStore, questions};
    if (!options.standsAlone()) {
        const auto role =
            desktop::SingleInstance::claim({[&](const QByteArray& token) {
                                                if (!token.isEmpty()) {
                                                    qputenv("XDG_ACTIVATION_TOKEN", token);
                                                }
                                                program.showWindow();
                                            },
                                            [&](const QStringList&) { program.showWindow(); }});
        if (role == desktop::SingleInstance::Role::forwarded) {
            return done;
        }
    }
    const desktop::EndSignals signals{[&] { program.end(); }};
    QObject::connect(
        &application, &QGuiApplication::commitDataRequest, &application, [&] { program.save(); },
        Qt::DirectConnection);
    if (!options.isService) {
        program.showWindow();
    }
    const int exit = QApplication::exec();
    usage.record(app::UsageEvent::exit);
    return exit;
}

}  // namespace

int main(int argc, char** argv) {
    const ports::UserLocale locale = platform::systemLocale();
    base::openCatalogue(host::catalogueFolder(), locale.languages);
    const desktop::StartOptions options = desktop::readStartOptions(wordsOf(argc, argv));
    if (!options.misuse.empty()) {
        return complain(options.misuse, misuse);
    }
    if (options.version) {
        std::puts("tessaly-desktop " TESSALY_VERSION);
        return done;
    }
    if (options.help) {
        std::fputs(desktop::startHelp().toUtf8().constData(), stdout);
        return done;
    }
    using desktop::SingleInstance;
    if (!options.standsAlone() &&
        SingleInstance::forward(options.urls) == SingleInstance::Role::forwarded) {
        return done;
    }
    QApplication application{argc, argv};
    QApplication::setApplicationName(QStringLiteral("tessaly"));
    QApplication::setApplicationDisplayName(QStringLiteral("Tessaly"));
    QApplication::setDesktopFileName(QString::fromLatin1(desktop::programId));
    QApplication::setQuitOnLastWindowClosed(false);
    if (!runsOnGlib()) {
        return complain(base::tr("needs a Qt that runs on GLib's loop; is QT_NO_GLIB set?"),
                        couldNot);
    }
    translateToolkit(application);
    return runProgram(application, options, locale);
}
