// SPDX-License-Identifier: MIT
#include "app/link_target.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include <fmt/format.h>

#include "app/percent_decoding.h"
#include "app/planner_address.h"
#include "base/localisation.h"
#include "base/note_type.h"
#include "base/utf8.h"
#include "store/inside_path.h"

namespace tessaly::app {

namespace {

using LinkKind = LinkTarget::Kind;

constexpr std::string_view webSchemes[] = {"http", "https", "mailto"};
constexpr std::string_view ownScheme = "tessaly";

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// "https" of "HTTPS://…"; nothing: it has none.
std::optional<std::string> schemeOf(std::string_view address) {
    const std::size_t end = address.find(':');
    if (end == std::string_view::npos || end == 0 || !isLetter(address.front())) {
        return std::nullopt;
    }
    const std::string_view scheme = address.substr(0, end);
    const bool isScheme = std::all_of(scheme.begin(), scheme.end(), [](char c) {
        return isLetter(c) || (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.';
    });
    return isScheme ? std::optional(base::lowerCased(scheme)) : std::nullopt;
}

/// The words of a link's parentheses without "<…>" around them, or a "\"title\"" behind them.
std::string_view destinationIn(std::string_view target) {
    target = base::trimmed(target);
    if (target.size() > 2 && target.front() == '<' && target.find('>') != target.npos) {
        return target.substr(1, target.find('>') - 1);
    }
    for (const char quote : {'"', '\''}) {
        const char opener[] = {' ', quote, '\0'};
        const std::size_t title = target.find(opener);
        if (target.ends_with(quote) && title != target.npos && title + 2 < target.size()) {
            return base::trimmedEnd(target.substr(0, title));
        }
    }
    return target;
}

bool holdsControls(std::string_view text) {
    return std::any_of(text.begin(), text.end(),
                       [](unsigned char c) { return c < 0x20 || c == 0x7F; });
}

/// Some mail programs take files along that an address names.
bool asksForFiles(const std::string& scheme, std::string_view rest) {
    const std::size_t query = rest.find('?');
    return scheme == "mailto" && query != rest.npos &&
           base::lowerCased(percentDecoded(rest.substr(query)).value_or("attach")).find("attach") !=
               std::string::npos;
}

LinkTarget webTarget(const std::string& scheme, std::string_view address) {
    const std::string_view rest = address.substr(scheme.size() + 1);
    const bool hasHost = scheme == "mailto"
                             ? !rest.empty()
                             : rest.starts_with("//") && rest.size() > 2 && rest[2] != '/' &&
                                   rest[2] != '?' && rest[2] != '#';
    if (!hasHost || holdsControls(address)) {
        return refusedLink(fmt::format(fmt::runtime(base::tr("“{}” is no address.")), address));
    }
    if (asksForFiles(scheme, rest)) {
        return refusedLink(base::tr("The link asks for a file to be sent along."));
    }
    return {LinkKind::web, scheme + std::string(address.substr(scheme.size())), {}};
}

LinkTarget noText() {
    return refusedLink(base::tr("The link holds bytes that are no text."));
}

std::optional<LinkTarget> targetByScheme(std::string_view address) {
    const auto scheme = schemeOf(address);
    if (!scheme) {
        return std::nullopt;
    }
    if (std::find(std::begin(webSchemes), std::end(webSchemes), *scheme) != std::end(webSchemes)) {
        return webTarget(*scheme, address);
    }
    if (*scheme == ownScheme) {
        return targetOfPlannerAddress(address);
    }
    return refusedLink(
        fmt::format(fmt::runtime(base::tr("“{}:” addresses are not opened from notes.")), *scheme));
}

std::string_view withoutHere(std::string_view path) {
    while (path.starts_with("./")) {
        path.remove_prefix(2);
    }
    return path;
}

LinkTarget targetOfPath(std::string_view path) {
    // Also "//host/path", which would be an address of the web.
    if (path.starts_with('/')) {
        return refusedLink(
            fmt::format(fmt::runtime(base::tr("“{}” leads out of the folder of notes.")), path));
    }
    const auto decoded = percentDecoded(withoutHere(path.substr(0, path.find('#'))));
    if (!decoded) {
        return noText();
    }
    if (decoded->empty()) {
        return refusedLink(base::tr("Links to headings are not opened."));
    }
    const std::string images = std::string(base::folderName(base::NoteType::images)) + '/';
    if (decoded->starts_with(images) || decoded->find("../" + images) != std::string::npos) {
        if (auto picture = pictureFile(path)) {
            return {LinkKind::picture, *std::move(picture), {}};
        }
    }
    return targetOfNoteFile(*decoded);
}

LinkTarget targetOfAddress(std::string_view target) {
    const std::string_view address = destinationIn(target);
    if (!base::isUtf8(address)) {
        return noText();
    }
    if (auto known = targetByScheme(address)) {
        return *std::move(known);
    }
    if (base::lowerCased(address.substr(0, 4)) == "www.") {
        return webTarget("https", "https://" + std::string(address));
    }
    return targetOfPath(address);
}

LinkTarget targetOfTitle(const std::string& title) {
    const auto day = base::dayFromTagText(title);
    const auto calendarDay = day ? day : base::dayFromFileText(title);
    return calendarDay ? LinkTarget{LinkKind::day, {}, *calendarDay}
                       : LinkTarget{LinkKind::noteTitle, title, {}};
}

LinkTarget targetOfImage(const std::string& target) {
    if (auto picture = pictureFile(target)) {
        return {LinkKind::picture, *std::move(picture), {}};
    }
    return targetOfAddress(target);
}

}  // namespace

LinkTarget linkTarget(const LookSpan& span) {
    switch (span.kind) {
        case SpanKind::link: return targetOfAddress(span.target);
        case SpanKind::noteLink: return targetOfTitle(span.target);
        case SpanKind::image: return targetOfImage(span.target);
        default: return refusedLink(base::tr("The link does not say what it leads to."));
    }
}

std::optional<std::string> pictureFile(std::string_view target) {
    const std::string_view address = destinationIn(target);
    if (schemeOf(address) || address.starts_with('/')) {
        return std::nullopt;
    }
    const auto decoded = percentDecoded(withoutHere(address));
    if (!decoded) {
        return std::nullopt;
    }
    const std::string images = std::string(base::folderName(base::NoteType::images)) + '/';
    std::string_view name = *decoded;
    bool isAbove = false;
    while (name.starts_with("../")) {
        name.remove_prefix(3);
        isAbove = true;
    }
    if (name.starts_with(images)) {
        name.remove_prefix(images.size());
    } else if (isAbove) {
        return std::nullopt;
    }
    return store::namesOnly(name) ? std::optional(std::string(name)) : std::nullopt;
}

}  // namespace tessaly::app
