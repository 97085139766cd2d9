// SPDX-License-Identifier: MIT
// window_load ROOT NOW SEARCH: opens the window on a data folder, waits until all notes are in it,
// searches, and prints a line of JSON: "ready", milliseconds until all notes were in; "blocks", the
// longest times that the window did not answer, each with when it ended after the first paint, and
// "searchBlocks"; "loaded" and "searched", bytes of memory held then.
#include <QApplication>
#include <QElapsedTimer>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <optional>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

#include <fmt/core.h>

#include "app/start_up.h"
#include "app/usage_log.h"
#include "desktop/appearance.h"
#include "desktop/main_window.h"
#include "host/program_host.h"
#include "platform/json_user_defaults.h"
#include "platform/system_locale.h"
#include "store/note_cache.h"

namespace {

using namespace tessaly;

constexpr int tickMilliseconds = 5;

long residentBytes() {
    std::ifstream file("/proc/self/statm");
    long all = 0;
    long resident = 0;
    file >> all >> resident;
    return resident * ::sysconf(_SC_PAGESIZE);
}

/// Notices when the main loop comes late to a timer.
class BlockWatch {
public:
    BlockWatch() {
        _timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&_timer, &QTimer::timeout, [this] { tick(); });
        _all.start();
        _sinceTick.start();
        _timer.start(tickMilliseconds);
    }

    double passed() const { return static_cast<double>(_all.nsecsElapsed()) / 1e6; }

    /// The longest so far, as JSON; they are forgotten.
    std::string take() {
        std::sort(_blocks.rbegin(), _blocks.rend());
        std::string json;
        for (std::size_t index = 0; index < std::min<std::size_t>(_blocks.size(), 5); ++index) {
            json += fmt::format("{}[{:.1f}, {:.1f}]", index == 0 ? "" : ", ", _blocks[index].first,
                                _blocks[index].second);
        }
        _blocks.clear();
        return "[" + json + "]";
    }

private:
    void tick() {
        const double late = static_cast<double>(_sinceTick.nsecsElapsed()) / 1e6;
        _sinceTick.start();
        if (late > 2 * tickMilliseconds) {
            _blocks.emplace_back(late - tickMilliseconds, passed());
        }
    }

    QTimer _timer;
    QElapsedTimer _all;
    QElapsedTimer _sinceTick;
    std::vector<std::pair<double, double>> _blocks;  ///< milliseconds, and when they ended
};

void after(std::chrono::milliseconds time, std::function<void()> job) {
    QTimer::singleShot(time, qApp, std::move(job));
}

/// The steps of the run, each begun by the one before it.
class Run {
public:
    Run(app::Services& services, desktop::MainWindow& window, std::string word)
        : _services(services), _window(window), _word(std::move(word)) {}

    void begin() {
        _watch.emplace();
        _window.start();
        awaitNotes();
    }

private:
    void awaitNotes() {
        if (!_services.noteCache().initialUpdateDone()) {
            return after(std::chrono::milliseconds(tickMilliseconds), [this] { awaitNotes(); });
        }
        _ready = _watch->passed();
        // What follows from the load comes in the next moments.
        after(std::chrono::seconds(3), [this] { search(); });
    }

    void search() {
        fmt::print("{{\"ready\": {:.1f}, \"loaded\": {}, \"blocks\": {}", _ready, residentBytes(),
                   _watch->take());
        _window.showList({_word, {}, {}});
        after(std::chrono::seconds(2), [this] { end(); });
    }

    void end() {
        fmt::print(", \"searched\": {}, \"searchBlocks\": {}}}\n", residentBytes(), _watch->take());
        std::fflush(stdout);
        std::_Exit(0);
    }

    app::Services& _services;
    desktop::MainWindow& _window;
    std::string _word;
    std::optional<BlockWatch> _watch;
    double _ready = 0;
};

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    if (argc != 4) {
        std::fputs("usage: window_load ROOT NOW SEARCH\n", stderr);
        return 2;
    }
    const auto host = host::ProgramHost::make(
        {std::string(argv[1]), std::string(argv[2]), host::HostOptions::Stay::yes, -1, {}},
        platform::systemLocale());
    if (!host) {
        fmt::print(stderr, "window_load: {}\n", host.failure().description);
        return 2;
    }
    app::Services& services = (*host)->services();
    app::startUp(services, app::UsageLog());
    desktop::Appearance appearance;
    appearance.follow();
    platform::JsonUserDefaults state(services.ports().folders.state + "/window.json");
    desktop::MainWindow window(services, state);
    window.show();
    Run run(services, window, argv[3]);
    after(std::chrono::milliseconds(300), [&run] { run.begin(); });  // it has been painted
    return QApplication::exec();
}
