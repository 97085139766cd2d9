// SPDX-License-Identifier: MIT
#include "base/regex.h"

#include <cstdint>
#include <utility>

#include <fmt/format.h>
#include <unicode/parseerr.h>
#include <unicode/regex.h>
#include <unicode/unistr.h>

#include "base/log.h"

namespace tessaly::base {

namespace {

/// ICU counts steps of its matcher, each about a millisecond.
constexpr std::int32_t timeLimit = 500;

/// ICU's view of a text that outlives it; nothing is copied.
icu::UnicodeString aliasOf(std::u16string_view text) {
    return {false, text.data(), static_cast<std::int32_t>(text.size())};
}

/// One search through one text.
class Search {
public:
    Search(const icu::RegexPattern& pattern, std::u16string_view text) : _text(aliasOf(text)) {
        _matcher.reset(pattern.matcher(_text, _status));
        if (_matcher) {
            _matcher->setTimeLimit(timeLimit, _status);
        }
    }

    std::optional<RegexMatch> next() { return matchIf(ready() && _matcher->find(_status)); }

    std::optional<RegexMatch> nextFrom(std::size_t unit) {
        return matchIf(ready() && _matcher->find(static_cast<std::int64_t>(unit), _status));
    }

    std::optional<RegexMatch> atStart() { return matchIf(ready() && _matcher->lookingAt(_status)); }

private:
    bool ready() const { return _matcher && U_SUCCESS(_status); }

    std::optional<RegexMatch> matchIf(bool found) {
        if (U_FAILURE(_status)) {
            log("a pattern took too long", u_errorName(_status));
            return std::nullopt;
        }
        return found ? std::optional{match()} : std::nullopt;
    }

    RegexMatch match() {
        const int groups = _matcher->groupCount();
        RegexMatch result;
        result.groups.resize(static_cast<std::size_t>(groups) + 1);
        for (int i = 0; i <= groups; ++i) {
            const int start = _matcher->start(i, _status);
            const int end = _matcher->end(i, _status);
            if (start >= 0) {
                result.groups[static_cast<std::size_t>(i)] = TextRange{
                    static_cast<std::size_t>(start), static_cast<std::size_t>(end - start)};
            }
        }
        return result;
    }

    const icu::UnicodeString _text;
    UErrorCode _status = U_ZERO_ERROR;
    std::unique_ptr<icu::RegexMatcher> _matcher;
};

void appendReplacement(std::u16string& result, std::u16string_view text, const RegexMatch& match,
                       std::u16string_view replacement) {
    for (std::size_t at = 0; at < replacement.size(); ++at) {
        const char16_t next = at + 1 < replacement.size() ? replacement[at + 1] : u'\0';
        if (replacement[at] != u'$' || next < u'1' || next > u'9') {
            result += replacement[at];
            continue;
        }
        const auto group = static_cast<std::size_t>(next - u'0');
        if (group < match.groups.size() && match.groups[group]) {
            result += textIn(text, *match.groups[group]);
        }
        ++at;
    }
}

}  // namespace

struct Regex::Compiled {
    std::unique_ptr<const icu::RegexPattern> pattern;
    std::string error;
};

Regex::Regex(std::u16string_view pattern) {
    UParseError where{};
    UErrorCode status = U_ZERO_ERROR;
    auto compiled = std::make_unique<Compiled>();
    compiled->pattern.reset(
        icu::RegexPattern::compile(aliasOf(pattern), UREGEX_MULTILINE, where, status));
    if (U_FAILURE(status)) {
        compiled->pattern.reset();
        compiled->error = fmt::format("{} (line {}, character {})", u_errorName(status), where.line,
                                      where.offset);
    }
    _compiled = std::move(compiled);
}

Regex::~Regex() = default;
Regex::Regex(Regex&&) noexcept = default;
Regex& Regex::operator=(Regex&&) noexcept = default;

bool Regex::valid() const {
    return _compiled->pattern != nullptr;
}

const std::string& Regex::error() const {
    return _compiled->error;
}

std::optional<RegexMatch> Regex::find(std::u16string_view text, std::size_t from) const {
    if (!valid() || from > text.size()) {
        return std::nullopt;
    }
    return Search(*_compiled->pattern, text).nextFrom(from);
}

std::optional<RegexMatch> Regex::matchStart(std::u16string_view text) const {
    return valid() ? Search(*_compiled->pattern, text).atStart() : std::nullopt;
}

std::vector<RegexMatch> Regex::findAll(std::u16string_view text) const {
    std::vector<RegexMatch> result;
    if (!valid()) {
        return result;
    }
    Search search(*_compiled->pattern, text);
    while (auto match = search.next()) {
        result.push_back(std::move(*match));
    }
    return result;
}

std::u16string Regex::replaceAll(std::u16string_view text, std::u16string_view replacement) const {
    std::u16string result;
    std::size_t copied = 0;
    for (const auto& match : findAll(text)) {
        const TextRange whole = *match.groups.front();
        result += text.substr(copied, whole.location - copied);
        appendReplacement(result, text, match, replacement);
        copied = whole.end();
    }
    result += text.substr(copied);
    return result;
}

}  // namespace tessaly::base
