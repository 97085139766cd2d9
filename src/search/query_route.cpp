// SPDX-License-Identifier: MIT
#include <string>
#include <string_view>

#include "base/utf8.h"
#include "search/folded_text.h"
#include "search/query_words.h"
#include "search/search_query.h"

namespace tessaly::search {
namespace {

constexpr std::string_view command = "//";
constexpr std::string_view recentList = "recent";

/// `^\s*[#,@][^\s]+\s*$`, of a trimmed text.
bool isTagToken(std::string_view query) {
    if (query.size() < 2 || std::string_view("#,@").find(query.front()) == std::string_view::npos) {
        return false;
    }
    std::string_view rest = query;
    return takePlainWord(rest)->whole.size() == query.size();
}

}  // namespace

RoutedQuery routeQuery(std::string_view query, bool hasFilter) {
    const std::string foldedQuery = foldedAsTyped(query);
    const std::string_view wanted = base::trimmed(foldedQuery);
    if (isTagToken(wanted)) {
        return {SearchRoute::tags, std::string(wanted)};
    }
    if (hasFilter || (!wanted.empty() && !wanted.starts_with(command))) {
        return {SearchRoute::text, std::string(wanted)};
    }
    const std::string_view list =
        wanted.empty() ? recentList : base::trimmed(wanted.substr(command.size()));
    return {SearchRoute::defaultList, std::string(list)};
}

}  // namespace tessaly::search
