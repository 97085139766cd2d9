// SPDX-License-Identifier: MIT
#include "desktop/completion_view.h"

#include <QAccessible>
#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "desktop/completion_days.h"
#include "desktop/completion_panel.h"
#include "desktop/qt_text.h"

namespace tessaly::desktop {

namespace {

constexpr int narrowestRows = 180;
constexpr int widestRows = 420;

}  // namespace

CompletionView::CompletionView(QWidget& writer) : _writer(writer) {}

CompletionView::~CompletionView() {
    delete _listPanel;
    delete _dayPanel;
}

void CompletionView::makeList() {
    _list = new FloatingList;
    _list->setAccessibleName(trText("Suggestions"));
    _listPanel = new CompletionPanel(_writer.window(), _list);
    connect(_list, &QListWidget::itemClicked, this,
            [this](QListWidgetItem* item) { Q_EMIT rowClicked(_list->row(item)); });
}

void CompletionView::makeDays(const ScheduleContext& context) {
    _days = new CompletionDays(context);
    _dayPanel = new CompletionPanel(_writer.window(), _days);
    _dayPanel->setAccessibleName(trText("Choose a day"));
    connect(&_days->choice(), &DayChoice::moved, this, &CompletionView::tellDay);
    connect(&_days->choice(), &DayChoice::taken, this, &CompletionView::dayClicked);
}

void CompletionView::showRows(const std::vector<FloatingRow>& rows, int current,
                              const QRect& anchor) {
    if (_listPanel == nullptr) {
        makeList();
    }
    _list->setRows(rows);
    _list->setFixedWidth(std::clamp(_list->wantedWidth(), narrowestRows, widestRows));
    show(Shown::rows, anchor);
    _list->choose(current);
    const auto count = static_cast<unsigned long>(rows.size());
    _writer.setAccessibleDescription(qt(fmt::format(
        fmt::runtime(base::trPlural("{} suggestion", "{} suggestions", count)), count)));
}

void CompletionView::showDays(const QString& typed, const ScheduleContext& context,
                              const QRect& anchor) {
    if (_dayPanel == nullptr) {
        makeDays(context);
    }
    _days->read(typed);
    show(Shown::days, anchor);
    tellDay();
}

/// The keys are with a text that knows nothing of days.
void CompletionView::tellDay() {
    _writer.setAccessibleDescription(days().words());
}

void CompletionView::show(Shown shown, const QRect& anchor) {
    if (shown != _shown) {
        hide();
        _toldBefore = _writer.accessibleDescription();
    }
    _shown = shown;
    move(anchor);
}

void CompletionView::move(const QRect& anchor) {
    CompletionPanel* const panel = _shown == Shown::rows ? _listPanel : _dayPanel;
    if (_shown != Shown::nothing && panel != nullptr) {
        panel->popUp(anchor);
    }
}

void CompletionView::hide() {
    const Shown before = std::exchange(_shown, Shown::nothing);
    if (before == Shown::nothing) {
        return;
    }
    if (before == Shown::rows && _listPanel != nullptr) {
        _listPanel->hide();
    } else if (before == Shown::days && _dayPanel != nullptr) {
        _dayPanel->hide();
        _dayPanel->deleteLater();
        _dayPanel = nullptr;
    }
    _writer.setAccessibleDescription(_toldBefore);
    // Rows were told as if they had the keys.
    QAccessibleEvent focus(&_writer, QAccessible::Focus);
    QAccessible::updateAccessibility(&focus);
}

int CompletionView::currentRow() const {
    return _shown == Shown::rows && _list != nullptr ? _list->currentRow() : -1;
}

void CompletionView::stepRow(int rows) {
    const int count = _list->count();
    const int from = _list->currentRow() < 0 && rows < 0 ? count : _list->currentRow();
    _list->choose((from + rows + count) % count);
}

DayChoice& CompletionView::days() const {
    return _days->choice();
}

}  // namespace tessaly::desktop
