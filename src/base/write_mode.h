// SPDX-License-Identifier: MIT
#pragma once

#include <array>

#include "base/enum_names.h"

namespace tessaly::base {

/// How text is added to a note that exists.
enum class WriteMode { append, prepend, overwrite };

template <>
struct EnumNames<WriteMode> {
    static constexpr std::array<EnumName<WriteMode>, 3> rows{{
        {WriteMode::append, "append"},
        {WriteMode::prepend, "prepend"},
        {WriteMode::overwrite, "overwrite"},
    }};
};

}  // namespace tessaly::base
