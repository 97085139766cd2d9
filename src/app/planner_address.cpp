// SPDX-License-Identifier: MIT
#include "app/planner_address.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "app/percent_decoding.h"
#include "base/localisation.h"
#include "base/note_type.h"
#include "base/utf8.h"
#include "store/inside_path.h"
#include "store/note_names.h"

namespace tessaly::app {

namespace {

using LinkKind = LinkTarget::Kind;

constexpr std::string_view afterHost = "//x-callback-url/";
constexpr std::string_view ownActions[] = {"addText", "addNote", "deleteNote", "allowAccess",
                                           "getFilename"};

struct QueryItem {
    std::string name;
    std::string value;
};

/// Nothing: one of the items cannot be decoded.
std::optional<std::vector<QueryItem>> queryItems(std::string_view query) {
    std::vector<QueryItem> items;
    while (!query.empty()) {
        const std::size_t end = std::min(query.find('&'), query.size());
        const std::string_view item = query.substr(0, end);
        const std::size_t sign = std::min(item.find('='), item.size());
        auto name = percentDecoded(item.substr(0, sign));
        auto value = percentDecoded(item.substr(std::min(sign + 1, item.size())));
        if (!name || !value) {
            return std::nullopt;
        }
        items.push_back({*std::move(name), *std::move(value)});
        query.remove_prefix(std::min(end + 1, query.size()));
    }
    return items;
}

/// The first item of one of two names that is not empty; null: there is none.
const std::string* valueOf(const std::vector<QueryItem>& items, std::string_view name,
                           std::string_view otherName) {
    const auto found = std::find_if(items.begin(), items.end(), [&](const QueryItem& item) {
        return (item.name == name || item.name == otherName) && !item.value.empty();
    });
    return found == items.end() ? nullptr : &found->value;
}

LinkTarget incomplete() {
    return refusedLink(base::tr("The link does not say what it leads to."));
}

LinkTarget targetOfDate(const std::string& text) {
    const auto day = base::dayFromFileText(text);
    const auto taggedDay = day ? day : base::dayFromTagText(text);
    return taggedDay ? LinkTarget{LinkKind::day, {}, *taggedDay}
                     : refusedLink(fmt::format(fmt::runtime(base::tr("“{}” is no day.")), text));
}

LinkTarget noteTarget(const std::vector<QueryItem>& items) {
    if (const std::string* date = valueOf(items, "noteDate", "notedate")) {
        return targetOfDate(*date);
    }
    if (const std::string* file = valueOf(items, "fileName", "filename")) {
        return targetOfNoteFile(*file);
    }
    const std::string* title = valueOf(items, "noteTitle", "notetitle");
    return title != nullptr ? LinkTarget{LinkKind::noteTitle, *title, {}} : incomplete();
}

LinkTarget tagTarget(const std::vector<QueryItem>& items) {
    const std::string* name = valueOf(items, "name", "name");
    if (name == nullptr) {
        return incomplete();
    }
    const bool isWhole = name->front() == '#' || name->front() == '@';
    std::string tag = isWhole ? *name : "#" + *name;
    // Words behind it would be another search.
    for (std::size_t at = 0; at < tag.size(); at += base::codePointAt(tag, at).size) {
        if (base::isWhiteSpace(base::codePointAt(tag, at).value)) {
            return refusedLink(fmt::format(fmt::runtime(base::tr("“{}” is no tag.")), tag));
        }
    }
    return {LinkKind::tag, std::move(tag), {}};
}

LinkTarget searchTarget(const std::vector<QueryItem>& items) {
    const std::string* text = valueOf(items, "text", "text");
    if (text == nullptr) {
        return incomplete();
    }
    std::string line = *text;
    std::replace_if(
        line.begin(), line.end(), [](unsigned char c) { return c < 0x20 || c == 0x7F; }, ' ');
    return {LinkKind::search, std::move(line), {}};
}

struct ActionRow {
    std::string_view name;
    LinkTarget (*target)(const std::vector<QueryItem>& items);
};
constexpr ActionRow actionRows[] = {
    {"openNote", noteTarget}, {"selectTag", tagTarget}, {"search", searchTarget}};

LinkTarget refusedAction(std::string_view action) {
    const bool isOwn =
        std::find(std::begin(ownActions), std::end(ownActions), action) != std::end(ownActions);
    const auto words = isOwn ? base::tr("Links in notes do not carry out “{}”.")
                             : base::tr("“{}” is nothing that a link can ask for.");
    return refusedLink(fmt::format(fmt::runtime(words), action));
}

std::string_view withoutFolder(std::string_view filename, base::NoteType type) {
    const std::string_view folder = base::folderName(type);
    const bool isInIt = filename.size() > folder.size() && filename.starts_with(folder) &&
                        filename[folder.size()] == '/';
    return isInIt ? filename.substr(folder.size() + 1) : filename;
}

}  // namespace

LinkTarget refusedLink(std::string reason) {
    return {LinkKind::refused, std::move(reason), {}};
}

LinkTarget targetOfNoteFile(std::string_view filename) {
    if (!store::namesOnly(filename)) {
        return refusedLink(fmt::format(
            fmt::runtime(base::tr("“{}” leads out of the folder of notes.")), filename));
    }
    const std::string_view inCalendar = withoutFolder(filename, base::NoteType::calendar);
    if (const auto day = store::dayOfCalendarFilename(inCalendar)) {
        return {LinkKind::day, {}, *day};
    }
    if (inCalendar != filename) {
        return refusedLink(fmt::format(fmt::runtime(base::tr("“{}” is no day.")), inCalendar));
    }
    return {LinkKind::noteFile, std::string(withoutFolder(filename, base::NoteType::note)), {}};
}

LinkTarget targetOfPlannerAddress(std::string_view address) {
    const std::string_view rest = address.substr(std::min(address.find(':') + 1, address.size()));
    const bool isKnown = rest.size() >= afterHost.size() &&
                         base::lowerCased(rest.substr(0, afterHost.size())) == afterHost;
    if (!isKnown) {
        return incomplete();
    }
    const std::string_view path = rest.substr(afterHost.size());
    const std::string_view action = path.substr(0, path.find_first_of("/?#"));
    const std::size_t question = std::min(path.find('?'), path.size());
    const std::string_view query = path.substr(std::min(question + 1, path.size()));
    const auto row = std::find_if(std::begin(actionRows), std::end(actionRows),
                                  [&](const ActionRow& each) { return each.name == action; });
    if (row == std::end(actionRows)) {
        return action.empty() ? incomplete() : refusedAction(action);
    }
    const auto items = queryItems(query.substr(0, query.find('#')));
    return items ? row->target(*items)
                 : refusedLink(base::tr("The link holds bytes that are no text."));
}

}  // namespace tessaly::app
