// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "base/day.h"
#include "base/locale_formats.h"

namespace tessaly::app {

/// "4 – 10 March 2019", "28 February – 6 March 2019", "March 4 – 10, 2019": the days from `first`
/// to `last` in the locale's order, with what they have in common told once.
std::string dayRangeWords(base::Day first, base::Day last, const base::LocaleFormats& formats);

}  // namespace tessaly::app
