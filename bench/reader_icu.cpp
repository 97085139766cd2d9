// SPDX-License-Identifier: MIT
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <unicode/uregex.h>

#include "base/utf8.h"
#include "pattern_reader.h"

namespace tessaly::bench {

namespace {

void insist(UErrorCode status, const char* what) {
    if (U_FAILURE(status)) {
        std::fprintf(stderr, "ICU: %s: %s\n", what, u_errorName(status));
        std::exit(1);
    }
}

class IcuPattern {
public:
    explicit IcuPattern(const char16_t* pattern) {
        UErrorCode status = U_ZERO_ERROR;
        _regex = uregex_open(pattern, -1, UREGEX_MULTILINE, nullptr, &status);
        uregex_setStackLimit(_regex, 0, &status);
        insist(status, "compiling");
    }
    ~IcuPattern() { uregex_close(_regex); }
    IcuPattern(const IcuPattern&) = delete;
    IcuPattern& operator=(const IcuPattern&) = delete;

    /// A match of a line pattern counts at the start of the line only.
    bool opens(std::u16string_view line) {
        UErrorCode status = U_ZERO_ERROR;
        setText(line, status);
        const bool found =
            uregex_find(_regex, -1, &status) && uregex_start(_regex, 0, &status) == 0;
        insist(status, "matching");
        return found;
    }

    std::size_t count(std::u16string_view line) {
        UErrorCode status = U_ZERO_ERROR;
        setText(line, status);
        std::size_t found = 0;
        while (uregex_findNext(_regex, &status)) {
            ++found;
        }
        insist(status, "matching");
        return found;
    }

private:
    void setText(std::u16string_view line, UErrorCode& status) {
        uregex_setText(_regex, line.data(), static_cast<int32_t>(line.size()), &status);
    }

    URegularExpression* _regex = nullptr;
};

}  // namespace

std::unique_ptr<Reader> makeIcuReader(const Corpus& corpus) {
    std::vector<std::u16string> lines;
    for (const std::string_view line : linesOf(corpus.text)) {
        lines.push_back(base::toUtf16(line));
    }
    return std::make_unique<PatternReader<IcuPattern, std::u16string>>(std::move(lines));
}

}  // namespace tessaly::bench
