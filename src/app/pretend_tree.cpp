// SPDX-License-Identifier: MIT
#include "app/pretend_tree.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "base/localisation.h"
#include "store/paths.h"

namespace tessaly::app {

using base::Failure;
using base::Result;
using ports::FolderEntry;
using ports::SurveyedEntry;
using store::joined;
using store::lastComponent;
using store::parentOf;

namespace {

constexpr int maxLinks = 40;

Failure notAFolder(const std::string& path) {
    return pretendFailure(std::errc::not_a_directory, path, Failure::Kind::notAFile);
}

bool isFolder(const std::optional<PretendThing>& change) {
    return change && change->kind == FolderEntry::Kind::folder;
}

SurveyedEntry entryOf(std::string name, const PretendThing& thing) {
    const bool isFile = thing.kind == FolderEntry::Kind::file;
    return {{std::move(name), thing.kind}, isFile ? thing.stamp : ports::FileStamp{}, false};
}

std::string prefixOf(const std::string& folder) {
    return folder.ends_with('/') ? folder : folder + '/';
}

}  // namespace

Failure pretendFailure(std::errc error, const std::string& path, Failure::Kind kind) {
    return {kind, path + ": " + std::make_error_condition(error).message()};
}

Failure pretendNotFound(const std::string& path) {
    return pretendFailure(std::errc::no_such_file_or_directory, path, Failure::Kind::notFound);
}

Failure pretendNotAFile(const std::string& path) {
    return {Failure::Kind::notAFile, path + ": " + base::tr("not a regular file")};
}

Result<std::string> PretendTree::follow(const std::string& path) const {
    // The real ones have their own words for what is no path.
    if (!path.starts_with('/') || path.find('\0') != path.npos) {
        return _real.resolve(path);
    }
    if (path == "/") {
        return path;
    }
    auto folder = follow(parentOf(path));
    const std::string_view name = lastComponent(path);
    if (!folder || name.empty() || name == ".") {
        return folder;
    }
    return name == ".." ? Result<std::string>(parentOf(*folder)) : leadsTo(joined(*folder, name));
}

Result<std::string> PretendTree::leadsTo(const std::string& place) const {
    if (changeAt(place) != nullptr) {
        return endOfLink(place);
    }
    if (const auto kind = _real.kindOf(place); !kind) {
        return kind.failure();
    }
    auto target = _real.resolve(place);
    return !target || *target == place ? target : endOfLink(*target);
}

Result<std::string> PretendTree::endOfLink(std::string target) const {
    for (int links = 0; links < maxLinks; ++links) {
        const auto* change = changeAt(target);
        if (change == nullptr) {
            const auto kind = _real.kindOf(target);
            return kind ? Result<std::string>(target) : kind.failure();
        }
        if (!*change) {
            return pretendNotFound(target);
        }
        if ((*change)->kind != Kind::link) {
            return target;
        }
        target = (*change)->bytes;
    }
    return pretendFailure(std::errc::too_many_symbolic_link_levels, target,
                          Failure::Kind::notAFile);
}

Result<std::string> PretendTree::place(const std::string& path) const {
    if (path.find('\0') != path.npos) {
        return pretendFailure(std::errc::invalid_argument, path.c_str(), Failure::Kind::malformed);
    }
    const auto folder = follow(parentOf(path));
    if (!folder) {
        return folder;
    }
    const auto kind = kindOf(*folder);
    if (!kind || *kind != Kind::folder) {
        return kind ? notAFolder(path) : kind.failure();
    }
    const std::string_view name = lastComponent(path);
    return name == "." || name == ".." ? follow(path) : joined(*folder, name);
}

Result<PretendTree::Kind> PretendTree::entryAt(const std::string& place) {
    if (const auto* change = changeAt(place)) {
        return *change ? Result<Kind>((*change)->kind) : pretendNotFound(place);
    }
    return realEntryAt(place);
}

Result<PretendTree::Kind> PretendTree::realEntryAt(const std::string& place) {
    // Asked of the folder, since the others follow links.
    const bool isLink = realLinksIn(parentOf(place)).contains(std::string(lastComponent(place)));
    return isLink ? Result<Kind>(Kind::link) : _real.kindOf(place);
}

const std::set<std::string>& PretendTree::realLinksIn(const std::string& folder) {
    const auto [found, isNew] = _realLinks.try_emplace(folder);
    if (const auto entries = isNew ? _real.list(folder) : std::vector<FolderEntry>{}; entries) {
        for (const FolderEntry& entry : *entries) {
            if (entry.kind == Kind::link) {
                found->second.insert(entry.name);
            }
        }
    }
    return found->second;
}

Result<PretendTree::Kind> PretendTree::kindOf(const std::string& place) const {
    const auto* change = changeAt(place);
    if (change == nullptr) {
        return _real.kindOf(place);
    }
    return *change ? Result<Kind>((*change)->kind) : pretendNotFound(place);
}

Result<ports::FileContents> PretendTree::read(const std::string& place) const {
    const auto* change = changeAt(place);
    if (change == nullptr) {
        return _real.read(place);
    }
    if (!*change) {
        return pretendNotFound(place);
    }
    if ((*change)->kind != Kind::file) {
        return pretendFailure(std::errc::is_a_directory, place, Failure::Kind::notAFile);
    }
    return ports::FileContents{(*change)->bytes, (*change)->stamp};
}

Result<std::vector<FolderEntry>> PretendTree::list(const std::string& place) const {
    return entriesOf<FolderEntry>(place, [&] { return _real.list(place); });
}

Result<std::vector<SurveyedEntry>> PretendTree::survey(const std::string& place) const {
    return entriesOf<SurveyedEntry>(place, [&] { return _real.survey(place); });
}

template <class Entry, class FromReal>
Result<std::vector<Entry>> PretendTree::entriesOf(const std::string& place,
                                                  const FromReal& fromReal) const {
    const auto* change = changeAt(place);
    if (change != nullptr && !isFolder(*change)) {
        return *change ? notAFolder(place) : pretendNotFound(place);
    }
    auto real = change == nullptr ? fromReal() : std::vector<Entry>{};
    if (!real) {
        return real;
    }
    std::vector<Entry> entries = std::move(real).value();
    const std::string prefix = prefixOf(place);
    std::erase_if(entries,
                  [&](const Entry& entry) { return _things.contains(prefix + entry.name); });
    for (auto at = _things.lower_bound(prefix);
         at != _things.end() && at->first.starts_with(prefix); ++at) {
        std::string name = at->first.substr(prefix.size());
        if (at->second && name.find('/') == name.npos) {
            entries.push_back(entryOf(std::move(name), *at->second));
        }
    }
    return entries;
}

Result<std::vector<std::optional<SurveyedEntry>>> PretendTree::surveyNames(
    const std::string& place, std::span<const std::string> names) const {
    using Entries = std::vector<std::optional<SurveyedEntry>>;
    const auto* folder = changeAt(place);
    if (folder != nullptr && !isFolder(*folder)) {
        return *folder ? notAFolder(place) : pretendNotFound(place);
    }
    auto real = folder == nullptr ? _real.surveyNames(place, names) : Entries(names.size());
    if (!real) {
        return real;
    }
    Entries entries = std::move(real).value();
    for (std::size_t index = 0; index < names.size(); ++index) {
        const auto found = _things.find(prefixOf(place) + names[index]);
        if (found != _things.end() && found->second) {
            entries[index] = entryOf(names[index], *found->second);
        } else if (found != _things.end()) {
            entries[index] = std::nullopt;
        }
    }
    return entries;
}

const std::optional<PretendThing>* PretendTree::changeAt(const std::string& place) const {
    static const std::optional<PretendThing> gone;
    if (const auto found = _things.find(place); found != _things.end()) {
        return &found->second;
    }
    // A folder that was put there has nothing of what is really there.
    return _things.contains(parentOf(place)) ? &gone : nullptr;
}

bool PretendTree::isChangedIn(const std::string& folder) const {
    const std::string prefix = prefixOf(folder);
    const auto first = _things.lower_bound(prefix);
    return changeAt(folder) != nullptr ||
           (first != _things.end() && first->first.starts_with(prefix));
}

Result<PretendThing*> PretendTree::fileToChange(const std::string& place) {
    auto contents = read(place);
    if (!contents) {
        return contents.failure();
    }
    auto& thing = _things[place];
    if (!thing) {
        auto [bytes, stamp] = std::move(contents).value();
        thing = PretendThing{Kind::file, std::move(bytes), stamp, {}};
    }
    return &*thing;
}

std::optional<std::string> PretendTree::realFile(const std::string& place) const {
    // What a link leads to lies elsewhere, as does what is below one.
    const auto resolved = _real.resolve(place);
    if (!resolved || *resolved != place) {
        return std::nullopt;
    }
    auto contents = _real.read(place);
    return contents ? std::optional(std::move(contents).value().bytes) : std::nullopt;
}

}  // namespace tessaly::app
