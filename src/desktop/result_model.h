// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractListModel>
#include <QCache>
#include <QString>
#include <cstddef>
#include <vector>

#include "search/search_results.h"
#include "tasks/task_outcome.h"

namespace tessaly::desktop {

/// The rows of a list as Qt's views want them. New rows take the place of old ones by what they
/// are: a row of the same note with the same text, or else on the same line, is the same row, so
/// that selection and place stay with it. Texts are made for rows that are looked at alone.
class ResultModel : public QAbstractListModel {
    Q_OBJECT
public:
    enum class Kind {
        section,
        task,
        line,        ///< of a note, below the note's section
        listedNote,  ///< a note among others, with its title
        event,       ///< or a reminder
        loading
    };
    /// What is drawn of a row.
    struct Texts {
        enum class SpanKind { tag, date };
        struct Span {
            SpanKind kind;
            int start;
            int length;
        };
        QString title;            ///< of sections, notes and events
        QString content;          ///< one line
        QString folder;           ///< of a section: where its note lies; empty: in none
        std::vector<Span> spans;  ///< of `content`
        int matchStart = 0;       ///< of `content`
        int matchLength = 0;      ///< 0: nothing is marked
    };

    explicit ResultModel(QObject* parent = nullptr);

    /// Shows other rows. For each row so far, where it is now; -1: it is gone.
    std::vector<int> show(std::vector<search::SearchResultItem> rows);

    const search::SearchResultItem& item(int row) const {
        return _rows[static_cast<std::size_t>(row)];
    }
    Kind kind(int row) const { return _kinds[static_cast<std::size_t>(row)]; }
    /// Valid until the next call.
    const Texts& texts(int row) const;
    /// Whether one can be on the row: not on sections and `loading`.
    bool isSelectable(int row) const;
    /// The line of a task's row, by its text.
    tasks::TaskReference reference(int row) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    void reorder(const std::vector<int>& oldRows);
    void removeFrom(std::size_t first);
    void append(std::vector<search::SearchResultItem> rows);
    void exchange(std::vector<search::SearchResultItem> rows);

    std::vector<search::SearchResultItem> _rows;
    std::vector<Kind> _kinds;
    mutable QCache<int, Texts> _texts;
};

}  // namespace tessaly::desktop
