// SPDX-License-Identifier: MIT
#include "desktop/shortcuts_page.h"

#include <QAction>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QStyle>
#include <algorithm>

#include "app/commands.h"
#include "desktop/command_actions.h"
#include "desktop/qt_text.h"
#include "desktop/theme.h"

namespace tessaly::desktop {

namespace {

constexpr int narrowestColumn = 330;
constexpr int betweenColumns = 36;
constexpr int betweenGroups = 22;

QStringList partedWords(const char* words) {
    return qt(words).split(u' ', Qt::SkipEmptyParts);
}

/// Of the two keys that are called Enter, one is told.
QStringList keyTextsOf(const app::CommandRow& row) {
    QStringList texts;
    for (const QKeySequence& key : keysOf(row)) {
        if (key[0].key() != Qt::Key_Return) {
            texts.append(key.toString(QKeySequence::NativeText));
        }
    }
    return texts;
}

QString groupTitle(app::CommandGroup group) {
    return trText(app::groupText(group));
}

}  // namespace

/// A heading, and a row for each command below it.
class ShortcutGroup : public QWidget {
public:
    ShortcutGroup(QWidget* parent, const QString& title)
        : QWidget(parent), _heading(new QLabel(title)), _grid(new QGridLayout(this)) {
        _grid->setContentsMargins(0, 0, 0, 0);
        _grid->setHorizontalSpacing(10);
        _grid->setVerticalSpacing(5);
        _grid->setColumnStretch(0, 1);
        _grid->addWidget(_heading, 0, 0);
    }

    /// `letters` work in lists alone.
    void addRow(const QString& text, const QStringList& keys, const QStringList& letters) {
        Line line{new QLabel(text), new QWidget, {}, {}, text + u' ' + keys.join(u' ')};
        line.name->setTextFormat(Qt::PlainText);
        auto* row = new QHBoxLayout(line.keys);
        row->setContentsMargins(0, 0, 0, 0);
        row->setSpacing(4);
        row->addStretch(1);
        addPills(row, keys, line.keyPills);
        addPills(row, letters, line.letterPills);
        const QStringList all = keys + letters;
        line.name->setAccessibleName(text + u' ' + all.join(QStringLiteral(", ")));
        const int at = _grid->rowCount();
        // A row's words have what its own keys leave of the width.
        auto* whole = new QHBoxLayout;
        whole->addWidget(line.name, 1);
        whole->addWidget(line.keys);
        _grid->addLayout(whole, at, 0);
        _lines.push_back(std::move(line));
    }

    void filter(const QStringList& words) {
        bool isAnyLeft = false;
        for (const Line& line : _lines) {
            const bool isLeft = std::ranges::all_of(words, [&](const QString& word) {
                return line.found.contains(word, Qt::CaseInsensitive);
            });
            line.name->setVisible(isLeft);
            line.keys->setVisible(isLeft);
            isAnyLeft = isAnyLeft || isLeft;
        }
        setVisible(isAnyLeft);
    }

    void dress() {
        const Theme& theme = Theme::instance();
        _heading->setFont(theme.sectionFont());
        QPalette muted = _heading->palette();
        muted.setColor(QPalette::WindowText, theme.colors().text2);
        _heading->setPalette(muted);
        for (const Line& line : _lines) {
            line.name->setFont(theme.uiFont());
            dressPills(line.keyPills, theme.colors().codeBack, theme.colors().text);
            dressPills(line.letterPills, theme.colors().accentSoft, theme.colors().link);
        }
    }

private:
    struct Line {
        QLabel* name;
        QWidget* keys;
        std::vector<QLabel*> keyPills;
        std::vector<QLabel*> letterPills;
        QString found;  ///< what the filter looks at
    };

    static void addPills(QHBoxLayout* row, const QStringList& texts, std::vector<QLabel*>& pills) {
        for (const QString& text : texts) {
            auto* pill = new QLabel(text);
            pill->setTextFormat(Qt::PlainText);
            pill->setLayoutDirection(Qt::LeftToRight);
            row->addWidget(pill);
            pills.push_back(pill);
        }
    }

    static void dressPills(const std::vector<QLabel*>& pills, const QColor& back,
                           const QColor& color) {
        for (QLabel* pill : pills) {
            pill->setFont(Theme::instance().uiFont(12, QFont::Medium));
            pill->setStyleSheet(QStringLiteral("QLabel { background: %1; color: %2; border-radius: "
                                               "5px; padding: 2px 6px; }")
                                    .arg(back.name(), color.name()));
        }
    }

    QLabel* _heading;
    QGridLayout* _grid;
    std::vector<Line> _lines;
};

ShortcutsPage::ShortcutsPage(const CommandActions& actions) {
    std::vector<ShortcutGroup*> byGroup(app::commandGroups);
    for (std::size_t i = 0; i < app::commandGroups; ++i) {
        byGroup[i] = new ShortcutGroup(this, groupTitle(static_cast<app::CommandGroup>(i)));
    }
    for (const app::CommandRow& row : app::commandRows()) {
        if (actions.action(row.id)->isVisible()) {
            byGroup[static_cast<std::size_t>(row.group)]->addRow(trText(row.text), keyTextsOf(row),
                                                                 partedWords(row.listKeys));
        }
    }
    auto* moves = new ShortcutGroup(this, trText("In Lists"));
    for (const app::ListMove& move : app::listMoves()) {
        moves->addRow(trText(move.text), {}, partedWords(move.keys));
    }
    _groups = std::move(byGroup);
    _groups.push_back(moves);
    dress();
    filter({});
}

void ShortcutsPage::filter(const QString& typed) {
    const QStringList words = typed.simplified().split(u' ', Qt::SkipEmptyParts);
    for (ShortcutGroup* group : _groups) {
        group->filter(words);
    }
    flow();
}

bool ShortcutsPage::isEmpty() const {
    return std::ranges::all_of(_groups,
                               [](const ShortcutGroup* group) { return group->isHidden(); });
}

void ShortcutsPage::dress() {
    for (ShortcutGroup* group : _groups) {
        group->dress();
    }
}

void ShortcutsPage::resizeEvent(QResizeEvent*) {
    flow();
}

/// Column by column, each about as high as the others.
void ShortcutsPage::flow() {
    int all = 0;
    for (const ShortcutGroup* group : _groups) {
        all += group->isHidden() ? 0 : group->sizeHint().height() + betweenGroups;
    }
    const int columns =
        std::max(1, (width() + betweenColumns) / (narrowestColumn + betweenColumns));
    const int columnWidth = (width() - (columns - 1) * betweenColumns) / columns;
    int column = 0;
    int top = 0;
    int highest = 0;
    int before = 0;
    for (ShortcutGroup* group : _groups) {
        if (group->isHidden()) {
            continue;
        }
        const int height = group->sizeHint().height();
        const bool isPastShare = before + height / 2 > all * (column + 1) / columns;
        if (isPastShare && top > 0 && column + 1 < columns) {
            ++column;
            top = 0;
        }
        const QRect place(column * (columnWidth + betweenColumns), top, columnWidth, height);
        group->setGeometry(QStyle::visualRect(layoutDirection(), rect(), place));
        top += height + betweenGroups;
        before += height + betweenGroups;
        highest = std::max(highest, top);
    }
    setMinimumHeight(highest);
}

}  // namespace tessaly::desktop
