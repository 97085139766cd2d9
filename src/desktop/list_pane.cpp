// SPDX-License-Identifier: MIT
#include "desktop/list_pane.h"

#include <QAction>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>

#include "app/list_words.h"
#include "desktop/elided_label.h"
#include "desktop/empty_list_view.h"
#include "desktop/icons.h"
#include "desktop/qt_text.h"
#include "desktop/search_options.h"
#include "desktop/theme.h"

namespace tessaly::desktop {
namespace {

using app::CommandId;

constexpr int paneMargin = 12;

QToolButton* headerButton(const QString& words, QWidget* parent) {
    auto* button = new QToolButton(parent);
    button->setAutoRaise(true);
    button->setToolTip(words);
    button->setAccessibleName(words);
    constexpr int size = 16;
    button->setIconSize({size, size});
    return button;
}

/// With the keys of the command that it stands for.
QString withKeys(const QString& words, CommandId command) {
    const char* keys = app::commandRow(command).keys;
    return *keys == '\0' ? words : QStringLiteral("%1 (%2)").arg(words, qt(keys));
}

}  // namespace

ListPane::ListPane(app::Services& services, QWidget* parent)
    : QWidget(parent),
      _services(services),
      _feed(services, [this](const app::ListView& view) { showView(view); }) {
    setAccessibleName(trText("List"));
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(0);
    addHeader();
    addNameRow();
    addRows();
    setFocusProxy(_list);
    connect(&Theme::instance(), &Theme::changed, this, &ListPane::adoptTheme);
    adoptTheme();
}

ListPane::~ListPane() = default;

void ListPane::addHeader() {
    auto* header = new QHBoxLayout;
    header->setContentsMargins(paneMargin + 4, 8, paneMargin - 4, 6);
    header->setSpacing(2);
    auto* words = new QVBoxLayout;
    words->setSpacing(1);
    _title = new ElidedLabel(this);
    _count = new ElidedLabel(this);
    _count->setTone(ElidedLabel::Tone::muted);
    words->addWidget(_title);
    words->addWidget(_count);
    header->addLayout(words, 1);
    _optionsButton = headerButton(trText("Search options"), this);
    _optionsButton->setCheckable(true);
    _saveButton = headerButton(withKeys(trText("Save as view"), CommandId::saveView), this);
    _closeButton = headerButton(withKeys(trText("Close the list"), CommandId::toggleList), this);
    connect(_optionsButton, &QToolButton::clicked, this, &ListPane::showOptions);
    connect(_saveButton, &QToolButton::clicked, this, &ListPane::askViewName);
    connect(_closeButton, &QToolButton::clicked, this, &ListPane::closed);
    for (QToolButton* button : {_optionsButton, _saveButton, _closeButton}) {
        header->addWidget(button);
    }
    static_cast<QVBoxLayout*>(layout())->addLayout(header);
}

void ListPane::addNameRow() {
    _nameRow = new QWidget(this);
    auto* rows = new QVBoxLayout(_nameRow);
    rows->setContentsMargins(paneMargin, 0, paneMargin, 8);
    rows->setSpacing(4);
    auto* fields = new QHBoxLayout;
    _name = new QLineEdit(_nameRow);
    _name->setPlaceholderText(trText("Name of the view"));
    _name->setAccessibleName(trText("Name of the view"));
    auto* save = new QPushButton(trText("Save"), _nameRow);
    fields->addWidget(_name, 1);
    fields->addWidget(save);
    rows->addLayout(fields);
    _nameTrouble = new QLabel(_nameRow);
    _nameTrouble->setWordWrap(true);
    _nameTrouble->hide();
    rows->addWidget(_nameTrouble);
    connect(_name, &QLineEdit::returnPressed, this, &ListPane::saveView);
    connect(save, &QPushButton::clicked, this, &ListPane::saveView);
    auto* escape = new QAction(_nameRow);
    escape->setShortcut(Qt::Key_Escape);
    escape->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    connect(escape, &QAction::triggered, this, &ListPane::hideNameRow);
    _nameRow->addAction(escape);
    _nameRow->hide();
    layout()->addWidget(_nameRow);
}

void ListPane::addRows() {
    _stack = new QStackedWidget(this);
    _list = new ResultList(_stack);
    _empty = new EmptyListView(_stack);
    _stack->addWidget(_list);
    _stack->addWidget(_empty);
    layout()->addWidget(_stack);
    connect(_list, &ResultList::opened, this, &ListPane::opened);
    connect(_list, &ResultList::gesture, this, &ListPane::gesture);
    connect(_list, &ResultList::scheduled, this, &ListPane::scheduled);
    connect(_list, &ResultList::scheduleAsked, this, &ListPane::scheduleAsked);
    connect(_list, &ResultList::searchAsked, this, &ListPane::searchAsked);
    connect(_list, &ResultList::left, this, &ListPane::left);
    connect(_list, &ResultList::moreWanted, this, [this] { _feed.showMore(); });
}

void ListPane::show(const app::ListRequest& request) {
    if (request != _request) {
        hideNameRow();
    }
    _request = request;
    _title->setText(qt(app::titleOf(request)));
    _list->setToday(_services.today());
    _feed.show(request);
    // Lists that have a name of their own have no options.
    const bool isNamed = request.query.starts_with("//");
    _optionsButton->setEnabled(!isNamed || request.query == "//recent");
    _saveButton->setEnabled(!isNamed);
}

void ListPane::again() {
    _list->setToday(_services.today());
    _feed.again();
}

void ListPane::close() {
    _feed.close();
}

void ListPane::showView(const app::ListView& view) {
    const bool isEmpty = view.results.items.empty();
    const bool hadFocus = _stack->currentWidget()->hasFocus();
    _list->setView(view);
    _empty->setWords(isEmpty ? app::emptyWords(view) : app::EmptyList());
    _stack->setCurrentWidget(isEmpty ? static_cast<QWidget*>(_empty) : _list);
    if (hadFocus) {
        _stack->currentWidget()->setFocus();
    }
    _count->setText(qt(app::countWords(view)));
    _count->setAccessibleName(_count->text());
    _filter = view.filter;
    _optionsButton->setChecked(!_filter.empty());
}

void ListPane::showOptions() {
    _optionsButton->setChecked(!_filter.empty());
    if (_options == nullptr) {
        _options = new SearchOptions(
            window(), [this](std::string_view text) { return _feed.dayNamed(text); });
        connect(_options, &SearchOptions::changed, this,
                [this](const search::Filter& filter) { _feed.setOptions(filter); });
        connect(_options, &SearchOptions::closed, this, [this] { _optionsButton->setFocus(); });
    }
    const QPoint place = _optionsButton->mapTo(window(), QPoint());
    _options->popUp({place, _optionsButton->size()}, _filter);
}

void ListPane::enterList() {
    if (_stack->currentWidget() == _list) {
        _list->enter();
    } else {
        _empty->setFocus();
    }
}

bool ListPane::hasListFocus() const {
    return _list->hasFocus();
}

bool ListPane::perform(CommandId command) {
    if (command == CommandId::saveView) {
        askViewName();
        return true;
    }
    return _list->perform(command);
}

std::vector<tasks::TaskReference> ListPane::selectedTasks() const {
    return _list->selectedTasks();
}

void ListPane::askViewName() {
    _nameRow->show();
    _nameTrouble->hide();
    _name->setText(qt(_request.filter));
    _name->selectAll();
    _name->setFocus();
}

void ListPane::hideNameRow() {
    if (_nameRow->isVisible()) {
        const bool hadFocus = _name->hasFocus();
        _nameRow->hide();
        if (hadFocus) {
            enterList();
        }
    }
}

void ListPane::saveView() {
    _feed.saveAsView(utf8(_name->text().trimmed()), [this](const app::ViewSaved& saved) {
        if (saved.isFailure) {
            _nameTrouble->setText(qt(saved.text));
            _nameTrouble->show();
            _name->setFocus();
            return;
        }
        hideNameRow();
        Q_EMIT notice(qt(saved.text));
    });
}

void ListPane::adoptTheme() {
    const Theme& theme = Theme::instance();
    _title->setFont(theme.uiFont(14, QFont::DemiBold));
    _count->setFont(theme.uiFont(11));
    _nameTrouble->setFont(theme.uiFont(12));
    QPalette trouble = _nameTrouble->palette();
    trouble.setColor(QPalette::WindowText, theme.colors().red);
    _nameTrouble->setPalette(trouble);
    const QColor& color = theme.colors().text2;
    _optionsButton->setIcon(icon(IconName::filter, color));
    _saveButton->setIcon(icon(IconName::save, color));
    _closeButton->setIcon(icon(IconName::close, color));
    update();
}

void ListPane::paintEvent(QPaintEvent*) {
    QPainter(this).fillRect(rect(), Theme::instance().colors().rightPane);
}

}  // namespace tessaly::desktop
