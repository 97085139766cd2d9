// SPDX-License-Identifier: MIT
#include "app/window_state.h"

#include <cstdint>
#include <iterator>
#include <optional>
#include <string_view>
#include <utility>

namespace tessaly::app {

namespace {

using ports::DefaultsValue;
using ports::UserDefaults;

constexpr std::size_t mostSearches = 20;
constexpr std::int64_t widestPane = 10'000;

struct KindName {
    Place::Kind kind;
    std::string_view name;
};
constexpr KindName kindNames[] = {
    {Place::Kind::day, "day"}, {Place::Kind::note, "note"}, {Place::Kind::week, "week"}};

template <class Value>
std::optional<Value> storedValue(UserDefaults& defaults, std::string_view key) {
    const auto value = defaults.valueForKey(key);
    if (!value) {
        return std::nullopt;
    }
    const Value* const wanted = std::get_if<Value>(&*value);
    return wanted == nullptr ? std::nullopt : std::optional(*wanted);
}

/// The fields that are stored as they are, each under its key.
template <class State, class Visitor>
void visitFields(State& state, Visitor&& visit) {
    visit("geometry", state.geometry);
    visit("isSideBarShown", state.isSideBarShown);
    visit("isListShown", state.isListShown);
    visit("isRightPaneShown", state.isRightPaneShown);
    visit("sideBarWidth", state.sideBarWidth);
    visit("listWidth", state.listWidth);
    visit("rightPaneWidth", state.rightPaneWidth);
    visit("wasAtDay", state.wasAtDay);
    visit("listQuery", state.list.query);
    visit("listFilter", state.list.filter);
    visit("listTitle", state.list.title);
    visit("recentSearches", state.recentSearches);
}

struct FieldReader {
    UserDefaults& defaults;

    void operator()(std::string_view key, int& width) const {
        const auto value = storedValue<std::int64_t>(defaults, key);
        if (value && *value > 0 && *value <= widestPane) {
            width = static_cast<int>(*value);
        }
    }
    template <class Field>
    void operator()(std::string_view key, Field& field) const {
        if (auto value = storedValue<Field>(defaults, key)) {
            field = std::move(*value);
        }
    }
};

/// Each store is a write of the whole file, so what has not changed is left alone.
class FieldWriter {
public:
    explicit FieldWriter(UserDefaults& defaults) : _defaults(defaults) {}

    void operator()(std::string_view key, int width) { write(key, std::int64_t{width}); }
    template <class Field>
    void operator()(std::string_view key, const Field& field) {
        write(key, DefaultsValue{field});
    }

    const base::Result<base::Done>& result() const { return _result; }

private:
    void write(std::string_view key, const DefaultsValue& value) {
        if (_result && _defaults.valueForKey(key) != value) {
            _result = _defaults.setValue(key, value);
        }
    }

    UserDefaults& _defaults;
    base::Result<base::Done> _result{base::Done{}};
};

std::string_view placeKindName(Place::Kind kind) {
    return kindNames[static_cast<std::size_t>(kind)].name;
}

/// What of a place is not told by its kind.
std::string placeDetail(const Place& place) {
    return place.kind == Place::Kind::note ? place.filename : base::tagText(place.day);
}

std::optional<Place> storedPlace(std::string_view name, const std::string& detail) {
    for (const KindName& each : kindNames) {
        if (each.name != name) {
            continue;
        }
        if (each.kind == Place::Kind::note) {
            return detail.empty() ? std::nullopt : std::optional(Place::ofNote(detail));
        }
        const auto day = base::dayFromTagText(detail);
        return day ? std::optional(Place{each.kind, *day, {}}) : std::nullopt;
    }
    return std::nullopt;
}

}  // namespace

WindowState readWindowState(UserDefaults& defaults) {
    WindowState state;
    visitFields(state, FieldReader{defaults});
    const auto place = storedPlace(storedValue<std::string>(defaults, "place").value_or(""),
                                   storedValue<std::string>(defaults, "placeDetail").value_or(""));
    if (place) {
        state.place = *place;
    } else {
        state.wasAtDay = true;
    }
    return state;
}

base::Result<base::Done> keepWindowState(UserDefaults& defaults, const WindowState& state) {
    WindowState kept = state;
    if (kept.recentSearches.size() > mostSearches) {
        kept.recentSearches.resize(mostSearches);
    }
    FieldWriter writer{defaults};
    visitFields(kept, writer);
    writer("place", std::string{placeKindName(kept.place.kind)});
    writer("placeDetail", placeDetail(kept.place));
    return writer.result();
}

}  // namespace tessaly::app
