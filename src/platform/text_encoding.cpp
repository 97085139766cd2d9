// SPDX-License-Identifier: MIT
#include "platform/text_encoding.h"

#include <cstdint>

#include <unicode/ucnv.h>

#include "base/utf8.h"

namespace tessaly::platform {

namespace {

/// Where ICU knows none of a dictionary's names for it.
std::string icuNameOf(std::string_view encoding) {
    constexpr std::string_view maker = "microsoft-";
    return std::string(encoding.starts_with(maker) ? encoding.substr(maker.size()) : encoding);
}

UConverter* openConverter(std::string_view name) {
    UErrorCode status = U_ZERO_ERROR;
    UConverter* converter = ucnv_open(icuNameOf(name).c_str(), &status);
    if (U_FAILURE(status)) {
        return nullptr;
    }
    ucnv_setFromUCallBack(converter, UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
    return converter;
}

}  // namespace

TextEncoding::TextEncoding(std::string_view name)
    : _isUtf8(name == "UTF-8"),
      _converter(_isUtf8 || name.empty() ? nullptr : openConverter(name), ucnv_close) {}

std::optional<std::string> TextEncoding::fromUtf8(std::string_view text) const {
    if (_isUtf8) {
        return std::string(text);
    }
    const std::u16string units = base::toUtf16(text);
    constexpr std::size_t mostBytesOfUnit = 4;
    std::string bytes(units.size() * mostBytesOfUnit + 1, '\0');
    UErrorCode status = U_ZERO_ERROR;
    const std::int32_t size =
        ucnv_fromUChars(_converter.get(), bytes.data(), static_cast<std::int32_t>(bytes.size()),
                        units.data(), static_cast<std::int32_t>(units.size()), &status);
    if (U_FAILURE(status)) {
        return std::nullopt;
    }
    bytes.resize(static_cast<std::size_t>(size));
    return bytes;
}

std::string TextEncoding::toUtf8(std::string_view bytes) const {
    if (_isUtf8) {
        return std::string(bytes);
    }
    std::u16string units(2 * bytes.size() + 1, u'\0');
    UErrorCode status = U_ZERO_ERROR;
    const std::int32_t size =
        ucnv_toUChars(_converter.get(), units.data(), static_cast<std::int32_t>(units.size()),
                      bytes.data(), static_cast<std::int32_t>(bytes.size()), &status);
    units.resize(U_SUCCESS(status) ? static_cast<std::size_t>(size) : 0);
    return base::toUtf8(units);
}

}  // namespace tessaly::platform
