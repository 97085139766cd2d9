// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>

#include "ports/questions.h"

namespace tessaly::cli {

/// Puts a question on the terminal: title and text, then the buttons by number, the answer being a
/// line with a number. Nothing when standard input or standard error is no terminal, at the end of
/// input and after an answer that is none, three times. A question without buttons is printed.
std::optional<std::size_t> askAtTerminal(const ports::Question& question);

}  // namespace tessaly::cli
