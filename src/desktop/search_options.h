// SPDX-License-Identifier: MIT
#pragma once

#include <QFrame>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

#include "base/day.h"
#include "search/filter_item.h"

class QAbstractButton;
class QCheckBox;
class QComboBox;
class QLineEdit;

namespace tessaly::desktop {

/// The options of a search: states, kinds, timeframe. A child of the window that lies over it.
class SearchOptions : public QFrame {
    Q_OBJECT
public:
    using DayNamed = std::function<std::optional<base::Day>(std::string_view text)>;

    SearchOptions(QWidget* window, DayNamed dayNamed);

    /// Opens below `anchor` (of the window), showing `filter`.
    void popUp(const QRect& anchor, const search::Filter& filter);

Q_SIGNALS:
    /// With every change. What is not offered here, as a keyword, stays as it was.
    void changed(const search::Filter& filter);
    void closed();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    /// The keyboard stays within.
    bool focusNextPrevChild(bool next) override;

private:
    struct Box {
        search::FilterParamater parameter;
        QCheckBox* box;
    };
    void addBoxes();
    void addTimeframe();
    void addDays();
    void setFilter(const search::Filter& filter);
    search::Filter filter() const;
    void tellChange();
    void clearAll();
    void showDays();
    void dismiss();

    DayNamed _dayNamed;
    search::Filter _kept;  ///< what is not offered
    std::vector<Box> _boxes;
    QComboBox* _timeframe = nullptr;
    QWidget* _days = nullptr;
    QLineEdit* _first = nullptr;
    QLineEdit* _last = nullptr;
    QAbstractButton* _clear = nullptr;
    bool _isFilling = false;
};

}  // namespace tessaly::desktop
