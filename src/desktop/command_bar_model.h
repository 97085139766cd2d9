// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractListModel>
#include <QString>
#include <string_view>
#include <variant>
#include <vector>

#include "app/commands.h"
#include "app/place.h"
#include "app/quick_open.h"
#include "base/text_range.h"
#include "desktop/icons.h"

namespace tessaly::desktop {

class CommandActions;

/// What a row of the command bar stands for.
struct NewNote {
    QString title;
};

struct CommandBarRow {
    std::variant<app::CommandId, app::Place, NewNote> choice;
    IconName icon = IconName::note;
    QString title;
    QString detail;  ///< its group or folder
    QString key;
    std::vector<base::TextRange> ranges;  ///< of `title`, that answer what was typed
};

/// The commands that can run and answer `typed`, best first; with nothing typed, those of late
/// first.
std::vector<CommandBarRow> commandBarRows(const CommandActions& actions, std::string_view typed);
/// Notes and days, and behind them a new note called so, if anything is typed.
std::vector<CommandBarRow> commandBarRows(app::QuickOpen& quickOpen, const QString& typed);

/// The rows as a list; the delegate asks for them as they are.
class CommandBarModel : public QAbstractListModel {
    Q_OBJECT
public:
    using QAbstractListModel::QAbstractListModel;

    void setRows(std::vector<CommandBarRow> rows);
    const CommandBarRow& row(int index) const { return _rows[static_cast<std::size_t>(index)]; }

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    std::vector<CommandBarRow> _rows;
};

}  // namespace tessaly::desktop
