// SPDX-License-Identifier: MIT
#include "desktop/table_layout.h"

#include <QTextBlock>
#include <QTextBoundaryFinder>
#include <QTextDocument>
#include <QTextLayout>
#include <QTextOption>
#include <algorithm>
#include <cmath>
#include <utility>

#include "desktop/line_formats.h"
#include "desktop/qt_text.h"
#include "desktop/theme.h"

namespace tessaly::desktop {

namespace {

using Formats = QList<QTextLayout::FormatRange>;

constexpr qreal dividerPitch = 13;
constexpr qreal unbounded = 1e6;

int unitAt(std::size_t place) {
    return static_cast<int>(place);
}

bool holdsRightToLeft(const QString& text) {
    return std::any_of(text.begin(), text.end(), [](QChar c) {
        return c.direction() == QChar::DirR || c.direction() == QChar::DirAL;
    });
}

void makeBold(Formats& formats, const QString& text) {
    QTextCharFormat bold;
    bold.setFontWeight(QFont::Bold);
    formats.push_back({0, static_cast<int>(text.size()), bold});
}

/// The letters that the sign at `sign` follows: room is not put into one that takes several units.
base::TextRange letterBefore(const QString& text, std::size_t sign) {
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    finder.setPosition(static_cast<qsizetype>(sign));
    const auto start =
        static_cast<std::size_t>(std::max<qsizetype>(0, finder.toPreviousBoundary()));
    return {start, sign - start};
}

/// Room that a letter has behind it already, as those beside grounds have.
qreal spacingAt(const Formats& formats, std::size_t place) {
    qreal spacing = 0;
    for (const QTextLayout::FormatRange& range : formats) {
        const bool isIn =
            range.start <= unitAt(place) && unitAt(place) < range.start + range.length;
        if (isIn && range.format.hasProperty(QTextFormat::FontLetterSpacing)) {
            const bool isAbsolute = range.format.fontLetterSpacingType() == QFont::AbsoluteSpacing;
            spacing = isAbsolute ? range.format.fontLetterSpacing() : 0;
        }
    }
    return spacing;
}

}  // namespace

bool TableLayout::mayBeRow(const QTextBlock& block) const {
    if (!block.isValid() || block.length() > static_cast<int>(app::longestStyledLine)) {
        return false;
    }
    const QString text = block.text();
    const auto first =
        std::find_if_not(text.begin(), text.end(), [](QChar c) { return c.isSpace(); });
    return first != text.end() && *first == u'|' &&
           std::find(std::next(first), text.end(), u'|') != text.end();
}

std::vector<int> TableLayout::neighbours(int first, int count) const {
    std::vector<int> found;
    QTextBlock block = _document.findBlockByNumber(first).previous();
    for (int i = 0; i <= mostRows && mayBeRow(block); ++i, block = block.previous()) {
        found.push_back(block.blockNumber());
    }
    block = _document.findBlockByNumber(first + count);
    for (int i = 0; i <= mostRows && mayBeRow(block); ++i, block = block.next()) {
        found.push_back(block.blockNumber());
    }
    return found;
}

void TableLayout::findTable(const QTextBlock& row) {
    const int number = row.blockNumber();
    if (_table.revision == _document.revision() && number >= _table.first &&
        number < _table.first + _table.count) {
        return;
    }
    QTextBlock first = row;
    QTextBlock last = row;
    int count = 1;
    while (count <= mostRows && mayBeRow(first.previous())) {
        first = first.previous();
        ++count;
    }
    while (count <= mostRows && mayBeRow(last.next())) {
        last = last.next();
        ++count;
    }
    _table.first = first.blockNumber();
    _table.count = count;
    _table.revision = _document.revision();
    _table.isMeasured = false;
    if (count <= mostRows) {
        measureTable();
    }
}

TableLayout::Row TableLayout::measure(const QString& text, const app::LineLook& line, Markup markup,
                                      bool isHead) const {
    Row row;
    row.signs = app::cellSigns(utf8(text));
    QTextLayout layout(text, _document.defaultFont());
    QTextOption option = _document.defaultTextOption();
    option.setWrapMode(QTextOption::NoWrap);
    layout.setTextOption(option);
    Formats formats = formatsOf(line, text, markup, _document.defaultFont());
    if (isHead) {
        makeBold(formats, text);
    }
    layout.setFormats(formats);
    layout.beginLayout();
    QTextLine all = layout.createLine();
    all.setLineWidth(unbounded);
    layout.endLayout();
    for (std::size_t i = 0; i + 1 < row.signs.size(); ++i) {
        row.cells.push_back(all.cursorToX(unitAt(row.signs[i + 1])) -
                            all.cursorToX(unitAt(row.signs[i])));
    }
    row.rest = row.signs.empty() ? 0
                                 : all.cursorToX(static_cast<int>(text.size())) -
                                       all.cursorToX(unitAt(row.signs.back()));
    return row;
}

void TableLayout::measureTable() {
    const QTextBlock first = _document.findBlockByNumber(_table.first);
    const auto aligns =
        _table.count > 1 ? app::columnAligns(utf8(first.next().text())) : std::nullopt;
    _table.hasHead = aligns.has_value();
    _table.aligns = aligns.value_or(std::vector<app::ColumnAlign>());
    // Lines that read alike are measured once, and those that are as they were not again; but the
    // head is bold.
    QHash<QString, Row> before = std::exchange(_table.rows, {});
    const QString head = _table.hasHead ? first.text() : QString();
    if (std::exchange(_table.head, head) != head) {
        before.clear();
    }
    std::vector<app::CellWidths> cells;
    qreal rest = 0;
    QTextBlock block = first;
    for (int i = 0; i < _table.count; ++i, block = block.next()) {
        const QString text = block.text();
        if (holdsRightToLeft(text)) {
            return;
        }
        if (isDivider(block.blockNumber())) {
            continue;
        }
        auto row = _table.rows.find(text);
        if (row == _table.rows.end()) {
            const auto known = before.constFind(text);
            row = _table.rows.insert(text, known != before.constEnd()
                                               ? *known
                                               : measure(text, _lineLook(block), Markup::quiet,
                                                         !head.isEmpty() && text == head));
        }
        cells.push_back(row->cells);
        rest = std::max(rest, row->rest);
    }
    _table.columns = app::columnWidths(cells);
    _table.width = rest;
    for (const double column : _table.columns) {
        _table.width += column;
    }
    _table.isMeasured = true;
}

void TableLayout::align(const QTextBlock& block, BlockLook& look, qreal columnWidth) {
    findTable(block);
    if (_table.count > mostRows) {
        return;
    }
    const QString text = block.text();
    const qreal room = columnWidth - look.shape.indent;
    const bool isAligned = _table.isMeasured && _table.width <= room;
    const bool isHead = _table.hasHead && text == _table.head;
    if (isHead) {
        makeBold(look.formats, text);
    }
    if (isDivider(block.blockNumber()) && look.markup == Markup::quiet) {
        look.formats.push_back({0, static_cast<int>(text.size()), hiddenFormat()});
        look.shape.pitch = std::round(dividerPitch * scaleOf(_document.defaultFont()));
        look.rule = isAligned ? _table.width : room;
        return;
    }
    const auto known = _table.rows.constFind(text);
    const Row row = look.markup == Markup::quiet && known != _table.rows.constEnd()
                        ? *known
                        : measure(text, look.line, look.markup, isHead);
    QTextCharFormat faint;
    faint.setForeground(Theme::instance().colors().text3);
    for (const std::size_t sign : row.signs) {
        look.formats.push_back({unitAt(sign), 1, faint});
    }
    if (isAligned) {
        addRooms(row, text, look);
    }
}

void TableLayout::addRooms(const Row& row, const QString& text, BlockLook& look) const {
    const Formats formats = formatsOf(look.line, text, look.markup, _document.defaultFont());
    const auto add = [&](base::TextRange letter, qreal room) {
        if (room > 0) {
            QTextCharFormat spaced;
            spaced.setFontLetterSpacingType(QFont::AbsoluteSpacing);
            spaced.setFontLetterSpacing(spacingAt(formats, letter.location) + room);
            look.formats.push_back({unitAt(letter.location), unitAt(letter.length), spaced});
        }
    };
    const auto rooms = app::cellRooms(row.cells, _table.columns, _table.aligns);
    for (std::size_t i = 0; i < rooms.size(); ++i) {
        const base::TextRange sign{row.signs[i], 1};
        const bool isEmpty = row.signs[i] + 1 == row.signs[i + 1];
        add(sign, isEmpty ? rooms[i].before + rooms[i].behind : rooms[i].before);
        if (!isEmpty) {
            add(letterBefore(text, row.signs[i + 1]), rooms[i].behind);
        }
    }
}

}  // namespace tessaly::desktop
