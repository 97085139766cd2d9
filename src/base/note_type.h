// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <string_view>

#include "base/enum_names.h"

namespace tessaly::base {

/// The kind of a note, or of a folder of the data folder.
enum class NoteType { calendar, note, trash, none, filters, images };

/// The raw value of a kind is the name of its folder below the data folder; `none` has none.
template <>
struct EnumNames<NoteType> {
    static constexpr std::array<EnumName<NoteType>, 6> rows{{
        {NoteType::calendar, "Calendar"},
        {NoteType::note, "Notes"},
        {NoteType::trash, ".Trash"},
        {NoteType::none, ""},
        {NoteType::filters, "Filters"},
        {NoteType::images, "Images"},
    }};
};

/// The folder of a kind, relative to the data folder; empty for `none`.
constexpr std::string_view folderName(NoteType type) {
    return rawValue(type);
}

/// The kind whose folder is called `folder`, spelt exactly so; `none` for any other name.
constexpr NoteType noteTypeOfFolder(std::string_view folder) {
    return fromRawValue<NoteType>(folder).value_or(NoteType::none);
}

}  // namespace tessaly::base
