// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/day.h"

namespace tessaly::app {

/// What the middle of the window shows.
struct Place {
    enum class Kind {
        day,   ///< the note of `day`, whose file need not exist
        note,  ///< the general note `filename`
        week   ///< the agenda of the week that holds `day`
    } kind = Kind::day;
    base::Day day{};
    std::string filename;  ///< of a general note, relative to its kind's folder

    static Place ofDay(base::Day day) { return {Kind::day, day, {}}; }
    static Place ofWeek(base::Day day) { return {Kind::week, day, {}}; }
    static Place ofNote(std::string filename) { return {Kind::note, {}, std::move(filename)}; }
    bool operator==(const Place&) const = default;
};

/// What the list shows beside it.
struct ListRequest {
    std::string query;   ///< as of the search: "#tag", "in:Work", "//inbox", words
    std::string filter;  ///< the name of a saved filter; empty: none
    std::string title;   ///< in the user's words; empty: the query itself
    bool operator==(const ListRequest&) const = default;
};

/// The name of a note after `from`, which is it or a folder that it lies in, became `to`; empty
/// when that is, for the note is gone. Nothing: it is not concerned.
std::optional<std::string> renamedFilename(const std::string& filename, const std::string& from,
                                           const std::string& to);

/// Where the user has been, as a browser keeps it. Main thread.
class Navigation {
public:
    explicit Navigation(Place start) : _places{std::move(start)} {}

    const Place& current() const { return _places[_index]; }
    /// Goes to a place, which forgets those that were gone back from; where it is shown already,
    /// nothing happens.
    void go(Place place);
    bool canGoBack() const { return _index > 0; }
    bool canGoForward() const { return _index + 1 < _places.size(); }
    void back();
    void forward();
    /// A note, or a folder with all notes in it, has another name, or none any more (empty): what
    /// was there leads elsewhere, or is forgotten; the place before it is current then. A note that
    /// is the only place there is stays.
    void renamed(const std::string& from, const std::string& to);

    static constexpr std::size_t mostPlaces = 100;

private:
    std::vector<Place> _places;  ///< never empty
    std::size_t _index = 0;
};

}  // namespace tessaly::app
