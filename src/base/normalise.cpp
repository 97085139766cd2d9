// SPDX-License-Identifier: MIT
#include "base/normalise.h"

#include <cstdint>

#include <unicode/bytestream.h>
#include <unicode/casemap.h>
#include <unicode/normalizer2.h>
#include <unicode/stringpiece.h>

#include "base/utf8.h"

namespace tessaly::base {

namespace {

icu::StringPiece pieceOf(std::string_view text) {
    return {text.data(), static_cast<std::int32_t>(text.size())};
}

std::string caseFolded(std::string_view text) {
    std::string result;
    icu::StringByteSink<std::string> sink(&result);
    UErrorCode status = U_ZERO_ERROR;
    icu::CaseMap::utf8Fold(0, pieceOf(text), sink, nullptr, status);
    return U_SUCCESS(status) ? result : std::string(text);
}

}  // namespace

std::string nfc(std::string_view text) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* const normaliser = icu::Normalizer2::getNFCInstance(status);
    if (U_FAILURE(status) || isAscii(text)) {
        return std::string(text);
    }
    std::string result;
    icu::StringByteSink<std::string> sink(&result);
    normaliser->normalizeUTF8(0, pieceOf(text), sink, nullptr, status);
    return U_SUCCESS(status) ? result : std::string(text);
}

std::string foldedForNames(std::string_view text) {
    // Folding is defined for normalised text, and can leave it denormalised.
    return isAscii(text) ? lowerCased(text) : nfc(caseFolded(nfc(text)));
}

}  // namespace tessaly::base
