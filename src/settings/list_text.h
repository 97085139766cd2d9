// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessaly::settings {

/// The items of "one, two": separated by commas, blanks around them passed over, empty ones left
/// out. A backslash makes the character behind it a part of the item. Nothing: the text ends in a
/// lone backslash, or holds a line break or bytes that are no UTF-8.
std::optional<std::vector<std::string>> itemsFromText(std::string_view text);

/// The text that `itemsFromText` reads as `items`. Empty items do not show in it.
std::string textOfItems(const std::vector<std::string>& items);

}  // namespace tessaly::settings
