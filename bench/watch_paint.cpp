// SPDX-License-Identifier: MIT
// A library to be loaded into a Qt program beforehand (LD_PRELOAD). Once the program's first window
// has been painted, prints a line of JSON and ends the program: "moment", nanoseconds of the
// monotonic clock; "cpu", milliseconds of the processor since the start; "text", the letters in
// text fields that are to be seen; "tree", the rows that trees begin with.
#include <QAbstractItemModel>
#include <QApplication>
#include <QEvent>
#include <QTreeView>
#include <QVariant>
#include <QWidget>
#include <QWindow>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace {

// Programs that this one starts are none of ours.
[[maybe_unused]] const int isAlone = ::unsetenv("LD_PRELOAD");

double cpuMilliseconds() {
    timespec cpu{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &cpu);
    return static_cast<double>(cpu.tv_sec) * 1e3 + static_cast<double>(cpu.tv_nsec) / 1e6;
}

qsizetype shownLetters(const QWidget& widget) {
    const QVariant text = widget.property("plainText");
    return text.isValid() && widget.isVisible() ? text.toString().size() : 0;
}

qsizetype treeRows(QWidget& widget) {
    const auto* tree = qobject_cast<QTreeView*>(&widget);
    return tree != nullptr && tree->isVisible() ? tree->model()->rowCount() : 0;
}

void printAndEnd() {
    const auto moment = std::chrono::steady_clock::now().time_since_epoch();
    const double cpu = cpuMilliseconds();
    qsizetype letters = 0;
    qsizetype rows = 0;
    for (QWidget* widget : QApplication::allWidgets()) {
        letters += shownLetters(*widget);
        rows += treeRows(*widget);
    }
    std::printf("{\"moment\": %lld, \"cpu\": %.3f, \"text\": %lld, \"tree\": %lld}\n",
                static_cast<long long>(std::chrono::nanoseconds(moment).count()), cpu,
                static_cast<long long>(letters), static_cast<long long>(rows));
    std::fflush(stdout);
    std::_Exit(0);
}

class PaintWatch : public QObject {
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        auto* window = qobject_cast<QWindow*>(watched);
        if (window == nullptr || event->type() != QEvent::Expose || !window->isExposed()) {
            return false;
        }
        // A window is painted, and given to the screen, while it handles this.
        qApp->removeEventFilter(this);
        watched->event(event);
        printAndEnd();
        return true;
    }
};

void watch() {
    qApp->installEventFilter(new PaintWatch(qApp));
}

}  // namespace

Q_COREAPP_STARTUP_FUNCTION(watch)
