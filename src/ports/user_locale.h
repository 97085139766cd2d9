// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace tessaly::ports {

/// What the desktop says of the user's language and region, read once at start.
struct UserLocale {
    std::string formats = "en_US_POSIX";  ///< ICU locale of dates, times and numbers
    std::string languages;                ///< wanted languages, "de_DE:de"; empty for English
};

}  // namespace tessaly::ports
