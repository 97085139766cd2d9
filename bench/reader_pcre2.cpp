// SPDX-License-Identifier: MIT
#define PCRE2_CODE_UNIT_WIDTH 8
#include <cstdio>
#include <cstdlib>
#include <pcre2.h>
#include <string>
#include <string_view>
#include <vector>

#include "base/utf8.h"
#include "pattern_reader.h"

namespace tessaly::bench {

namespace {

constexpr std::size_t jitStackStart = 64 << 10;
constexpr std::size_t jitStackMost = 256 << 20;  // a pattern's groups take stack by line length
constexpr std::uint32_t options = PCRE2_UTF | PCRE2_UCP | PCRE2_MULTILINE | PCRE2_NO_UTF_CHECK;

[[noreturn]] void giveUp(const char* what, int error) {
    std::fprintf(stderr, "PCRE2: %s: error %d\n", what, error);
    std::exit(1);
}

std::string translated(const char16_t* pattern) {
    constexpr std::string_view icuClass = "[:punct:]";
    std::string text = base::toUtf8(pattern);
    for (std::size_t at; (at = text.find(icuClass)) != std::string::npos;) {
        text.replace(at, icuClass.size(), "\\p{P}");
    }
    return text;
}

class Pcre2Pattern {
public:
    explicit Pcre2Pattern(const char16_t* icuPattern) {
        const std::string pattern = translated(icuPattern);
        pcre2_compile_context* compiling = pcre2_compile_context_create(nullptr);
        pcre2_set_newline(compiling, PCRE2_NEWLINE_ANY);  // as ICU's ^, $ and . have it
        int error = 0;
        PCRE2_SIZE place = 0;
        _code = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(pattern.data()), pattern.size(), options,
                              &error, &place, compiling);
        pcre2_compile_context_free(compiling);
        if (_code == nullptr) {
            giveUp(pattern.c_str(), error);
        }
        if (const int failed = pcre2_jit_compile(_code, PCRE2_JIT_COMPLETE); failed != 0) {
            giveUp("no machine code", failed);
        }
        _match = pcre2_match_data_create_from_pattern(_code, nullptr);
        _context = pcre2_match_context_create(nullptr);
        _stack = pcre2_jit_stack_create(jitStackStart, jitStackMost, nullptr);
        pcre2_jit_stack_assign(_context, nullptr, _stack);
        pcre2_set_match_limit(_context, UINT32_MAX);
    }
    ~Pcre2Pattern() {
        pcre2_match_context_free(_context);
        pcre2_jit_stack_free(_stack);
        pcre2_match_data_free(_match);
        pcre2_code_free(_code);
    }
    Pcre2Pattern(const Pcre2Pattern&) = delete;
    Pcre2Pattern& operator=(const Pcre2Pattern&) = delete;

    /// A match of a line pattern counts at the start of the line only.
    bool opens(std::string_view line) { return find(line, 0) && range()[0] == 0; }

    std::size_t count(std::string_view line) {
        std::size_t found = 0;
        for (std::size_t from = 0; find(line, from); from = range()[1]) {
            ++found;
        }
        return found;
    }

private:
    bool find(std::string_view line, std::size_t from) {
        const int result = pcre2_jit_match(_code, reinterpret_cast<PCRE2_SPTR>(line.data()),
                                           line.size(), from, 0, _match, _context);
        if (result < 0 && result != PCRE2_ERROR_NOMATCH) {
            giveUp("matching", result);
        }
        return result >= 0;
    }
    const PCRE2_SIZE* range() const { return pcre2_get_ovector_pointer(_match); }

    pcre2_code* _code = nullptr;
    pcre2_match_data* _match = nullptr;
    pcre2_match_context* _context = nullptr;
    pcre2_jit_stack* _stack = nullptr;
};

}  // namespace

std::unique_ptr<Reader> makePcre2Reader(const Corpus& corpus) {
    return std::make_unique<PatternReader<Pcre2Pattern, std::string_view>>(linesOf(corpus.text));
}

}  // namespace tessaly::bench
