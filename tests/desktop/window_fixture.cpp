// SPDX-License-Identifier: MIT
#include "desktop/window_fixture.h"

#include <QAbstractButton>
#include <QApplication>
#include <QKeySequence>
#include <QLabel>
#include <QSignalSpy>
#include <QTest>
#include <filesystem>

#include <doctest/doctest.h>

#include "desktop/note_pane.h"
#include "desktop/qt_text.h"
#include "desktop/result_delegate.h"
#include "desktop/result_list.h"
#include "desktop/task_rows_view.h"
#include "support/notes_in_text.h"

namespace tessaly::tests {

namespace {

using desktop::qt;

constexpr int longestWait = 20'000;  // milliseconds, on a busy machine
constexpr const char* dataFolder = "planner/";

QModelIndex findRow(const QAbstractItemModel& model, const QString& words,
                    const QModelIndex& parent = {}) {
    for (int row = 0; row < model.rowCount(parent); ++row) {
        const QModelIndex index = model.index(row, 0, parent);
        const bool isIt = index.data(Qt::DisplayRole).toString().contains(words) ||
                          index.data(Qt::AccessibleTextRole).toString().contains(words);
        if (isIt) {
            return index;
        }
        if (const QModelIndex below = findRow(model, words, index); below.isValid()) {
            return below;
        }
    }
    return {};
}

QPoint boxOf(const QAbstractItemView& view, const QModelIndex& index) {
    const QRect place = view.visualRect(index);
    const auto direction = view.layoutDirection();
    if (const auto* days = dynamic_cast<const desktop::TaskRowsView*>(&view)) {
        const auto& model = static_cast<const desktop::TaskRowsModel&>(*days->model());
        const auto& delegate = static_cast<desktop::TaskRowDelegate&>(*days->itemDelegate());
        return delegate.partRect(model.row(index), desktop::TaskRowPart::box, place, direction)
            .center();
    }
    const auto& model = static_cast<const desktop::ResultModel&>(*view.model());
    return desktop::ResultDelegate::boxPlace(place, model.kind(index.row()), direction).center();
}

}  // namespace

bool until(const std::function<bool()>& isTrue) {
    return QTest::qWaitFor(isTrue, longestWait);
}

WindowFixture::WindowFixture(std::string_view notes)
    : _environment{
          {"XDG_CONFIG_HOME", _home.mkdir("config")}, {"XDG_DATA_HOME", _home.mkdir("data")},
          {"XDG_STATE_HOME", _home.mkdir("state")},   {"XDG_CACHE_HOME", _home.mkdir("cache")},
          {"XDG_RUNTIME_DIR", _home.mkdir("run")},    {"TEST_MODE", std::nullopt}} {
    _home.mkdir(std::string(dataFolder) + "Calendar");
    _home.mkdir(std::string(dataFolder) + "Notes");
    for (const auto& [name, text] : notesIn(notes)) {
        write(name, text);
    }
}

WindowFixture::~WindowFixture() {
    _window.reset();
}

void WindowFixture::start() {
    auto host = host::ProgramHost::make(
        {_home / "planner", "2019-03-05T09:00:00", host::HostOptions::Stay::yes, -1,
         [this](const ports::Question& question) {
             asked.push_back(question.title);
             return answer;
         }},
        {"en_GB", ""});
    REQUIRE(host);
    _host = std::move(host).value();
    _stateStore = std::make_unique<platform::JsonUserDefaults>(_home / "state/window.json");
    _window = std::make_unique<desktop::MainWindow>(_host->services(), *_stateStore);
    _window->show();
    REQUIRE(QTest::qWaitForWindowActive(_window.get()));
    QSignalSpy ready{_window.get(), &desktop::MainWindow::ready};
    _window->start();
    REQUIRE(until([&] { return !ready.empty(); }));
}

void WindowFixture::end() {
    REQUIRE(_window->close());
    _window.reset();
    _host.reset();
}

void WindowFixture::write(std::string_view filename, std::string_view text) const {
    _home.write(dataFolder + std::string(filename), text);
}

void WindowFixture::remove(std::string_view filename) const {
    std::filesystem::remove(_home / (dataFolder + std::string(filename)));
}

std::string WindowFixture::textOf(std::string_view filename) const {
    const std::string name = dataFolder + std::string(filename);
    return _home.exists(name) ? _home.read(name) : "-";
}

std::string WindowFixture::textOf(std::string_view filename, std::string_view awaited) const {
    until([&] { return textOf(filename) == awaited; });
    return textOf(filename);
}

desktop::NoteEditor& WindowFixture::editor() {
    return view<desktop::NotePane>().editor();
}

std::string WindowFixture::shown(std::string_view awaited) {
    until([&] { return shown() == awaited; });
    return shown();
}

std::optional<std::string> WindowFixture::wordsLike(std::string_view beginning) {
    std::optional<std::string> found;
    const auto look = [&](const QWidget& widget, const QString& text) {
        if (widget.isVisible() && text.startsWith(qt(beginning))) {
            found = desktop::utf8(text);
        }
    };
    until([&] {
        for (const QLabel* label : _window->findChildren<QLabel*>()) {
            look(*label, label->text());
        }
        for (const QAbstractButton* each : _window->findChildren<QAbstractButton*>()) {
            look(*each, each->text());
        }
        return found.has_value();
    });
    return found;
}

QModelIndex WindowFixture::row(const QAbstractItemView& view, std::string_view words) {
    QModelIndex found;
    until([&] {
        found = findRow(*view.model(), qt(words));
        return found.isValid();
    });
    return found;
}

bool WindowFixture::wordsGone(const QAbstractItemView& view, std::string_view words) {
    return until([&] { return !findRow(*view.model(), qt(words)).isValid(); });
}

void WindowFixture::type(std::string_view text) {
    REQUIRE(QApplication::focusWidget() != nullptr);
    for (const QChar character : qt(text)) {
        QTest::keyClick(QApplication::focusWidget(), character.toLatin1());
    }
}

void WindowFixture::press(const char* keys) {
    REQUIRE(QApplication::focusWidget() != nullptr);
    const QKeySequence sequence{QString::fromLatin1(keys)};
    QTest::keyClick(QApplication::focusWidget(), sequence[0].key(),
                    sequence[0].keyboardModifiers());
}

QAbstractButton* WindowFixture::button(std::string_view name) {
    for (QAbstractButton* each : _window->findChildren<QAbstractButton*>()) {
        const bool isIt = each->accessibleName() == qt(name) || each->text() == qt(name);
        if (isIt && each->isVisible() && each->isEnabled()) {
            return each;
        }
    }
    return nullptr;
}

void WindowFixture::click(std::string_view name) {
    CAPTURE(name);
    REQUIRE(until([&] { return button(name) != nullptr; }));
    QTest::mouseClick(button(name), Qt::LeftButton);
}

void WindowFixture::clickRow(QAbstractItemView& view, std::string_view words) {
    CAPTURE(words);
    const QModelIndex index = row(view, words);
    REQUIRE(index.isValid());
    view.scrollTo(index);
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, view.visualRect(index).center());
}

void WindowFixture::tick(QAbstractItemView& view, std::string_view words) {
    CAPTURE(words);
    const QModelIndex index = row(view, words);
    REQUIRE(index.isValid());
    view.scrollTo(index);
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, boxOf(view, index));
}

void WindowFixture::openNote(std::string_view filename) {
    _window->go(app::Place::ofNote(std::string(filename)));
    editor().setFocus();
}

void WindowFixture::focusEditor() {
    _window->activateWindow();  // there is nobody to do it behind a dialog
    editor().setFocus();
    REQUIRE(until([&] { return editor().hasFocus(); }));
}

}  // namespace tessaly::tests
