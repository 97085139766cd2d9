// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "app/services.h"
#include "base/failure.h"
#include "search/filter_item.h"
#include "search/result_rows.h"
#include "search/search_helper.h"
#include "search/search_results.h"
#include "store/note_reader.h"

namespace tessaly::app {

struct NoteSearch {
    std::string query;
    search::Filter filter;     ///< empty: none
    std::size_t mostRows = 0;  ///< 0: all
    search::ResultRows::Objects objects = search::ResultRows::Objects::left;
    std::string filterName = {};  ///< for explanations
};

struct FoundNotes {
    search::SearchResults results;
    store::ReadReport report;
};

/// Searches all notes once, by reading them (or out of memory, where they are held). The same rows
/// in the same order as the search field gives, all of them final.
FoundNotes searchNotes(Services& services, const NoteSearch& wanted,
                       store::NoteReader::Options options = {});

/// How a query is read, in words for the user, one thing a line.
std::vector<std::string> explainSearch(Services& services, const NoteSearch& wanted);

/// Why a search that found nothing may have been meant otherwise, in words for the user, one thing
/// a line: words that are no operators though they look like it, a list that is none, a folder in
/// which no note lies. For the last all notes are read once more, with `options`.
std::vector<std::string> remarksOn(Services& services, const NoteSearch& wanted,
                                   const store::NoteReader::Options& options);

/// What searches depend on, from the settings as they are now.
search::SearchSettings searchSettings(Services& services);

}  // namespace tessaly::app
