// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "base/failure.h"

namespace tessaly::platform {

/// The JSON object that `bytes`, the contents of `file`, are; an empty one for no bytes or blanks
/// alone. Failure `malformed`: "FILE:LINE:COLUMN: what is wrong there", both from 1, the column in
/// bytes.
base::Result<nlohmann::ordered_json> parseJsonObject(const std::string& file,
                                                     std::string_view bytes);

}  // namespace tessaly::platform
