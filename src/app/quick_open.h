// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "app/fuzzy_match.h"
#include "app/place.h"
#include "app/services.h"
#include "base/text_range.h"

namespace tessaly::app {

/// A row of quick open.
struct QuickOpenRow {
    Place place;
    std::string title;
    std::string detail;                   ///< its folder, or the day as "2019-03-05"
    std::vector<base::TextRange> ranges;  ///< of `title`
};

/// The notes and days that `typed` may mean, best first: a day that it names, days whose date
/// begins so, notes by title (all folders); nothing by its text. With nothing typed: those last
/// changed. Quick enough for each key at 100,000 notes (a first key may take longer). Main thread.
class QuickOpen {
public:
    explicit QuickOpen(Services& services);
    ~QuickOpen();
    std::vector<QuickOpenRow> rows(std::string_view typed, std::size_t most = 50);

private:
    class Titles;

    void addDays(std::vector<QuickOpenRow>& rows, std::string_view typed, std::size_t most) const;
    std::vector<QuickOpenRow> lastChanged(std::size_t most) const;
    QuickOpenRow dayRow(base::Day day) const;

    Services& _services;
    base::LocaleFormats _formats;
    std::unique_ptr<Titles> _titles;  ///< of the snapshot that was asked last
};

}  // namespace tessaly::app
