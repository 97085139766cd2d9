// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tessaly::editor {

/// What pasting an address over words makes of them: "[words](address)", with blanks around the
/// words kept outside. Nothing, and the paste is a usual one: the pasted text is no single address
/// ("http:", "https:", "mailto:", "tessaly:"), or the words could not be a link's title, as they
/// are none, go over several lines, hold brackets, or are an address themselves. Parentheses that
/// would end the link too early are percent-encoded.
std::optional<std::string> linkOver(std::string_view words, std::string_view pasted);

}  // namespace tessaly::editor
