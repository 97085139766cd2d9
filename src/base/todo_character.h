// SPDX-License-Identifier: MIT
#pragma once

#include <array>

#include "base/enum_names.h"

namespace tessaly::base {

/// The marker that a task line opens with: `*`, `-`, or digits followed by `.` or `)`.
enum class TodoCharacter { asterisk, dash, number };

template <>
struct EnumNames<TodoCharacter> {
    static constexpr std::array<EnumName<TodoCharacter>, 3> rows{{
        {TodoCharacter::asterisk, "asterisk"},
        {TodoCharacter::dash, "dash"},
        {TodoCharacter::number, "number"},
    }};
};

}  // namespace tessaly::base
