// SPDX-License-Identifier: MIT
#pragma once

#include <QTextBlock>
#include <QTextLayout>
#include <vector>

#include <doctest/doctest.h>

#include "desktop/shown_editor.h"

namespace tessaly::tests {

/// Blocks lie one below the other without gaps, from margin to margin, whichever are measured.
inline void checkStack(const ShownEditor& editor) {
    const desktop::NoteLayout& layout = editor.layout();
    const QTextDocument& document = *editor.document();
    std::vector<QRectF> areas;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        (void)layout.blockBoundingRect(block);
    }
    qreal bottom = document.documentMargin();
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        const QRectF area = layout.blockBoundingRect(block);
        REQUIRE(area.top() == doctest::Approx(bottom));
        if (!block.isVisible()) {
            REQUIRE(area.height() == 0);
            continue;
        }
        REQUIRE(area.height() > 10);
        REQUIRE(layout.blockAt(area.center().y()) == block.blockNumber());
        const QTextLayout& text = *block.layout();
        REQUIRE(text.lineCount() > 0);
        // Every character is in a line, and every line in the block.
        const QTextLine last = text.lineAt(text.lineCount() - 1);
        const auto composed = static_cast<int>(text.preeditAreaText().size());
        REQUIRE(last.textStart() + last.textLength() == block.length() - 1 + composed);
        REQUIRE(text.lineAt(0).y() >= 0);
        REQUIRE(last.y() + last.height() <= area.height() + 0.5);
        for (const qreal y : {area.top() + 0.1, area.center().y(), area.bottom() - 0.1}) {
            const int hit = layout.hitTest({area.center().x(), y}, Qt::FuzzyHit);
            REQUIRE(document.findBlock(hit) == block);
        }
        bottom = area.bottom();
    }
    CHECK(layout.documentSize().height() == doctest::Approx(bottom + document.documentMargin()));
}

}  // namespace tessaly::tests
