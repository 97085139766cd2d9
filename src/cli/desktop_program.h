// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include "cli/command_line.h"
#include "cli/verbs.h"

namespace tessaly::cli {

/// Whether the user asks for the window: they typed nothing but the program's name, and there
/// is a display.
bool wantsWindow(const Invocation& invocation);

/// Runs the desktop program that lies beside this one, until its end. Nothing: there is none, or it
/// could not live on this display.
std::optional<Exit> runDesktopProgram();

}  // namespace tessaly::cli
