// SPDX-License-Identifier: MIT
#include "desktop/side_bar_delegate.h"

#include <QAbstractItemModel>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QPainterPath>
#include <QTreeView>
#include <array>
#include <optional>

#include "desktop/icons.h"
#include "desktop/side_bar_model.h"
#include "desktop/theme.h"

namespace tessaly::desktop {
namespace {

using search::SideBarItemType;

// Pixels that do not depend on the screen's scale.
constexpr int rowHeight = 30;
constexpr int inset = 8;  ///< of the selection
constexpr int cornerRadius = 7;
constexpr int iconLeft = 16;
constexpr int iconSize = 16;
constexpr int textGap = 9;
constexpr int levelStep = 16;  ///< of indentation
constexpr int headLeft = 18;
constexpr int rightGap = 18;
constexpr int chevronSize = 12;
constexpr int chevronRoom = 34;  ///< what a click near it may miss it by included

struct RowIcon {
    SideBarItemType type;
    IconName icon;
};
constexpr std::array rowIcons{
    RowIcon{SideBarItemType::today, IconName::calendar},
    RowIcon{SideBarItemType::week, IconName::week},
    RowIcon{SideBarItemType::inbox, IconName::inbox},
    RowIcon{SideBarItemType::recent, IconName::recent},
    RowIcon{SideBarItemType::folder, IconName::folder},
    RowIcon{SideBarItemType::note, IconName::note},
    RowIcon{SideBarItemType::archive, IconName::archive},
    RowIcon{SideBarItemType::trash, IconName::trash},
    RowIcon{SideBarItemType::view, IconName::view},
    RowIcon{SideBarItemType::hashtag, IconName::hashtag},
    RowIcon{SideBarItemType::attag, IconName::mention},
    RowIcon{SideBarItemType::preferences, IconName::preferences},
    RowIcon{SideBarItemType::help, IconName::help},
};

SideBarItemType typeOf(const QModelIndex& index) {
    return static_cast<SideBarItemType>(index.data(SideBarModel::typeRole).toInt());
}

std::optional<IconName> iconOf(SideBarItemType type) {
    for (const RowIcon& row : rowIcons) {
        if (row.type == type) {
            return row.icon;
        }
    }
    return std::nullopt;
}

bool isHead(const QModelIndex& index) {
    return !index.parent().isValid() && !iconOf(typeOf(index));
}

bool hasRowsBelow(const QModelIndex& index) {
    return index.model()->hasChildren(index);
}

QColor iconColor(SideBarItemType type, bool isSelected) {
    const Colors& colors = Theme::instance().colors();
    if (type == SideBarItemType::hashtag) {
        return colors.tag;
    }
    if (type == SideBarItemType::attag) {
        return colors.purple;
    }
    return isSelected ? colors.accent : colors.text2;
}

/// One row as it is being painted. Places are thought of from left to right, and mirrored where
/// they are used.
class RowPainter {
public:
    RowPainter(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index)
        : _painter(painter),
          _option(option),
          _index(index),
          _type(typeOf(index)),
          _isSelected(option.state.testFlag(QStyle::State_Selected)) {}

    void paintHead() {
        const Theme& theme = Theme::instance();
        if (_isSelected) {
            paintBack();
        }
        const bool isHovered = _option.state.testFlag(QStyle::State_MouseOver);
        if (!isOpen() || isHovered || _isSelected) {
            paintChevron();
        }
        // Nearer to the rows that it heads than to those before it.
        QRect place = _option.rect.adjusted(headLeft, 6, -chevronRoom, 0);
        paintText(place, theme.sectionFont(), theme.colors().text2,
                  _index.data().toString().toUpper());
    }

    void paintRow() {
        const Theme& theme = Theme::instance();
        if (_type == SideBarItemType::help && _index.row() > 0) {
            // It belongs to the program, not to what stands above it.
            _painter.fillRect(_option.rect.left() + headLeft, _option.rect.top(),
                              _option.rect.width() - 2 * headLeft, 1, theme.colors().line);
        }
        paintBack();
        const int left = iconLeft + _index.data(SideBarModel::levelRole).toInt() * levelStep;
        if (const auto icon = iconOf(_type)) {
            const QRect place(_option.rect.left() + left,
                              _option.rect.center().y() + 1 - iconSize / 2, iconSize, iconSize);
            const bool isOpenFolder = *icon == IconName::folder && isOpen() && hasRowsBelow(_index);
            paintIcon(&_painter, mirrored(place), isOpenFolder ? IconName::folderOpen : *icon);
        }
        int right = rightGap;
        if (!SideBarDelegate::chevronOf(_option.rect, _index, _option.direction).isEmpty()) {
            paintChevron();
            right += chevronSize + 6;
        }
        right += paintCount(right);
        const QRect place = _option.rect.adjusted(left + iconSize + textGap, 0, -right, 0);
        paintText(place, theme.uiFont(13, _isSelected ? QFont::Medium : QFont::Normal),
                  theme.colors().text, _index.data().toString());
    }

private:
    QRect mirrored(const QRect& place) const {
        return QStyle::visualRect(_option.direction, _option.rect, place);
    }

    bool isOpen() const { return _option.state.testFlag(QStyle::State_Open); }

    void paintIcon(QPainter* painter, const QRect& place, IconName name) const {
        desktop::paintIcon(*painter, place, name, iconColor(_type, _isSelected));
    }

    void paintBack() {
        const Colors& colors = Theme::instance().colors();
        const QRectF place = QRectF(_option.rect).adjusted(inset, 1, -inset, -1);
        _painter.setPen(Qt::NoPen);
        if (_isSelected) {
            _painter.setBrush(colors.rowSelected);
            _painter.drawRoundedRect(place, cornerRadius, cornerRadius);
        } else if (_option.state.testFlag(QStyle::State_MouseOver)) {
            _painter.setBrush(colors.rowHover);
            _painter.drawRoundedRect(place, cornerRadius, cornerRadius);
        }
        if (_option.state.testFlag(QStyle::State_HasFocus) &&
            _option.state.testFlag(QStyle::State_KeyboardFocusChange)) {
            _painter.setBrush(Qt::NoBrush);
            _painter.setPen(QPen(colors.accent, 1.5));
            _painter.drawRoundedRect(place.adjusted(.75, .75, -.75, -.75), cornerRadius,
                                     cornerRadius);
        }
    }

    void paintChevron() {
        const QColor color = Theme::instance().colors().text2;
        QRect place(_option.rect.right() - rightGap - chevronSize + 3,
                    _option.rect.center().y() + 1 - chevronSize / 2, chevronSize, chevronSize);
        if (isHead(_index)) {
            place.translate(0, 3);
        }
        place = mirrored(place);
        if (isOpen()) {
            desktop::paintIcon(_painter, place, IconName::chevronDown, color);
            return;
        }
        _painter.save();
        if (_option.direction == Qt::RightToLeft) {
            _painter.translate(2 * place.center().x() + 1, 0);
            _painter.scale(-1, 1);
        }
        desktop::paintIcon(_painter, place, IconName::chevronRight, color);
        _painter.restore();
    }

    /// The width that it has taken.
    int paintCount(int right) {
        const int count = _index.data(SideBarModel::countRole).toInt();
        // How many notes an open folder holds is to be seen below it.
        const bool isShown = count > 0 && !(_type == SideBarItemType::folder && isOpen());
        if (!isShown) {
            return 0;
        }
        const Theme& theme = Theme::instance();
        const QFont font = theme.uiFont(12);
        const QString number = _option.locale.toString(count);
        const int width = QFontMetrics(font).horizontalAdvance(number);
        QRect place = _option.rect;
        place.setLeft(place.right() - right - width + 1);
        place.setWidth(width);
        _painter.setFont(font);
        _painter.setPen(theme.colors().text2);
        _painter.drawText(mirrored(place), Qt::AlignCenter, number);
        return width + 8;
    }

    void paintText(const QRect& place, const QFont& font, const QColor& color,
                   const QString& text) {
        _painter.setFont(font);
        _painter.setPen(color);
        const QString shown = QFontMetrics(font).elidedText(text, Qt::ElideRight, place.width());
        const Qt::Alignment alignment = QStyle::visualAlignment(_option.direction, Qt::AlignLeft) |
                                        Qt::AlignAbsolute | Qt::AlignVCenter;
        _painter.drawText(mirrored(place), static_cast<int>(alignment) | Qt::TextSingleLine, shown);
    }

    QPainter& _painter;
    const QStyleOptionViewItem& _option;
    const QModelIndex& _index;
    const SideBarItemType _type;
    const bool _isSelected;
};

}  // namespace

QRect SideBarDelegate::chevronOf(const QRect& row, const QModelIndex& index,
                                 Qt::LayoutDirection direction) {
    if (!hasRowsBelow(index)) {
        return {};
    }
    return QStyle::visualRect(direction, row, row.adjusted(row.width() - chevronRoom, 0, 0, 0));
}

void SideBarDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                            const QModelIndex& index) const {
    QStyleOptionViewItem own = option;
    const auto* view = qobject_cast<const QTreeView*>(option.widget);
    own.state.setFlag(QStyle::State_Open, view != nullptr && view->isExpanded(index));
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    RowPainter row(*painter, own, index);
    if (isHead(index)) {
        row.paintHead();
    } else {
        row.paintRow();
    }
    painter->restore();
}

// All are alike, as the view takes it.
QSize SideBarDelegate::sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const {
    return {0, rowHeight};
}

QWidget* SideBarDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem&,
                                       const QModelIndex& index) const {
    auto* edit = new QLineEdit(parent);
    edit->setFont(Theme::instance().uiFont());
    edit->setAccessibleName(index.data(Qt::DisplayRole).toString());
    return edit;
}

void SideBarDelegate::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                                           const QModelIndex& index) const {
    const int left =
        iconLeft + index.data(SideBarModel::levelRole).toInt() * levelStep + iconSize + 2;
    editor->setGeometry(QStyle::visualRect(option.direction, option.rect,
                                           option.rect.adjusted(left, 1, -inset, -1)));
}

/// The base takes Enter only when the event loop runs again; where the focus has gone by then, it
/// would end the editing a second time.
bool SideBarDelegate::eventFilter(QObject* editor, QEvent* event) {
    auto* const edit = qobject_cast<QWidget*>(editor);
    if (edit != nullptr && event->type() == QEvent::KeyPress) {
        const int key = static_cast<const QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            Q_EMIT commitData(edit);
            Q_EMIT closeEditor(edit, NoHint);
            return true;
        }
    }
    return QStyledItemDelegate::eventFilter(editor, event);
}

}  // namespace tessaly::desktop
