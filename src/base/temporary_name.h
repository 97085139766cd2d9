// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tessaly::base {

/// The name of a temporary file beside the file `name`: ".~NAME.RANDOM~", at most 255 bytes,
/// another one each time. Sync clients pass such names over. A name too long for that is cut; for
/// the name of a temporary file, it is another one beside the same file.
std::string temporaryName(std::string_view name);

/// The name of the file that a temporary file of ours stands beside (cut, where it was too long);
/// nothing for any other name.
std::optional<std::string_view> nameOfTemporary(std::string_view temporaryName);

}  // namespace tessaly::base
