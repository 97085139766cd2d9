// SPDX-License-Identifier: MIT
#pragma once

#include "ports/user_locale.h"

namespace tessaly::platform {

/// The locale that the environment names: formats by LC_ALL, LC_TIME or LANG, languages by LC_ALL,
/// LC_MESSAGES or LANG and, before those, LANGUAGE; but "C" speaks English whatever LANGUAGE says.
/// Languages are listed with and without their country, up to the first English: the program's own
/// texts are in it.
ports::UserLocale systemLocale();

}  // namespace tessaly::platform
