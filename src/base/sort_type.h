// SPDX-License-Identifier: MIT
#pragma once

#include <array>

#include "base/enum_names.h"

namespace tessaly::base {

/// The order of note lists.
enum class SortType { title, modified, created };

template <>
struct EnumNames<SortType> {
    static constexpr std::array<EnumName<SortType>, 3> rows{{
        {SortType::title, "title"},
        {SortType::modified, "modified"},
        {SortType::created, "created"},
    }};
};

}  // namespace tessaly::base
