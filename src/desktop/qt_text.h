// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <string>
#include <string_view>

#include "base/localisation.h"
#include "base/utf8.h"

namespace tessaly::desktop {

inline QString qt(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}
inline std::string utf8(const QString& text) {
    return text.toStdString();
}
/// The UTF-16 units of a text, as the toolkit counts.
inline int unitsOf(std::string_view text) {
    return static_cast<int>(base::utf16Length(text));
}
/// The user's words for an English text.
inline QString trText(const char* text) {
    return qt(base::tr(text));
}

}  // namespace tessaly::desktop
