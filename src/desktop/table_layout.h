// SPDX-License-Identifier: MIT
#pragma once

#include <QFont>
#include <QHash>
#include <QString>
#include <cstddef>
#include <functional>
#include <vector>

#include "app/table_columns.h"
#include "desktop/block_style.h"

class QTextBlock;
class QTextDocument;

namespace tessaly::desktop {

/// Makes the columns of tables stand below each other, by room between letters: the text stays as
/// it is. All rows of a table are measured when one of them is looked at, as they are while their
/// markup is quiet, so that nothing moves where the caret goes from one to another. A table that is
/// wider than the column, longer than `mostRows`, or holds text from right to left, is not aligned.
class TableLayout {
public:
    /// The document outlives it. `lineLook` tells the look of a line that is in no code.
    TableLayout(const QTextDocument& document,
                std::function<app::LineLook(const QTextBlock& block)> lineLook)
        : _document(document), _lineLook(std::move(lineLook)) {}

    /// Adds to a row's look what makes it a part of its table, in a column of so many pixels.
    void align(const QTextBlock& row, BlockLook& look, qreal columnWidth);
    /// Of what is measured nothing is right any more.
    void forget() { _table = {}; }
    /// The blocks right above and below a range that may be rows of one table with its own.
    std::vector<int> neighbours(int first, int count) const;

    static constexpr int mostRows = 500;

private:
    struct Row {
        std::vector<std::size_t> signs;
        app::CellWidths cells;
        qreal rest = 0;  ///< behind the last sign
    };
    struct Table {
        int first = 0;
        int count = 0;
        int revision = -1;  ///< of the document
        bool isMeasured = false;
        bool hasHead = false;
        QHash<QString, Row> rows;
        QString head;
        app::CellWidths columns;
        std::vector<app::ColumnAlign> aligns;
        qreal width = 0;
    };

    bool mayBeRow(const QTextBlock& block) const;
    void findTable(const QTextBlock& row);
    void measureTable();
    Row measure(const QString& text, const app::LineLook& line, Markup markup, bool isHead) const;
    bool isDivider(int block) const { return _table.hasHead && block == _table.first + 1; }
    void addRooms(const Row& row, const QString& text, BlockLook& look) const;

    const QTextDocument& _document;
    const std::function<app::LineLook(const QTextBlock& block)> _lineLook;
    Table _table;  ///< the one that was looked at last
};

}  // namespace tessaly::desktop
