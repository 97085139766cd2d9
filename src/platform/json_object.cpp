// SPDX-License-Identifier: MIT
#include "platform/json_object.h"

#include <algorithm>
#include <cstddef>
#include <exception>

#include <fmt/format.h>

#include "base/localisation.h"
#include "base/utf8.h"

namespace tessaly::platform {

using base::Failure;
using nlohmann::ordered_json;

namespace {

/// Writing goes down by recursion, so what could exhaust the stack is not let in.
constexpr int maxDepth = 200;

struct TooDeep : std::exception {};

Failure malformed(const std::string& file, std::string_view what) {
    return {Failure::Kind::malformed, fmt::format("{}: {}", file, what)};
}

Failure malformedAt(const std::string& file, std::string_view before, std::string_view what) {
    const auto line = std::count(before.begin(), before.end(), '\n') + 1;
    const auto lineStart = before.find_last_of('\n') + 1;
    return malformed(fmt::format("{}:{}:{}", file, line, before.size() - lineStart + 1), what);
}

/// The reason behind the library's own preamble, whose place is one of its tokens' ends. What was
/// read last is left out: it need not be UTF-8.
std::string_view reasonOf(std::string_view what) {
    for (const std::string_view opening : {"] ", "column "}) {
        const auto at = what.find(opening);
        what.remove_prefix(at == std::string_view::npos ? 0 : at + opening.size());
    }
    what = what.substr(0, what.find("; last read: "));
    const auto colon = what.find(": ");
    return colon == std::string_view::npos ? what : what.substr(colon + 2);
}

ordered_json parseBounded(std::string_view bytes) {
    return ordered_json::parse(bytes, [](int depth, auto, const auto&) {
        if (depth > maxDepth) {
            throw TooDeep();
        }
        return true;
    });
}

}  // namespace

base::Result<ordered_json> parseJsonObject(const std::string& file, std::string_view bytes) {
    if (base::trimmed(bytes).empty()) {
        return ordered_json::object();
    }
    try {
        ordered_json parsed = parseBounded(bytes);
        return parsed.is_object()
                   ? base::Result<ordered_json>(std::move(parsed))
                   : malformed(file, base::tr("the file does not hold a JSON object"));
    } catch (const ordered_json::parse_error& error) {
        const auto end = std::min(bytes.size(), error.byte > 0 ? error.byte - 1 : 0);
        return malformedAt(file, bytes.substr(0, end), reasonOf(error.what()));
    } catch (const ordered_json::exception& error) {
        return malformed(file, reasonOf(error.what()));
    } catch (const TooDeep&) {
        return malformed(file, base::tr("the values are nested too deeply"));
    }
}

}  // namespace tessaly::platform
