// SPDX-License-Identifier: MIT
#include "app/note_history.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <utility>

#include <fmt/format.h>

#include "base/localisation.h"
#include "base/normalise.h"
#include "base/sha256.h"
#include "base/utf8.h"
#include "store/paths.h"

namespace tessaly::app {
namespace {

using base::Failure;
using base::tr;

/// `path` relative to the data folder; nothing when it lies elsewhere.
std::optional<std::string_view> inDataFolder(std::string_view path, const std::string& root) {
    if (path.size() <= root.size() + 1 || !store::isInside(path, root)) {
        return std::nullopt;
    }
    return path.substr(root.size() + 1);
}

/// Which entries hold what their files hold now, and how files are named to the user.
class RowMaker {
public:
    explicit RowMaker(Services& services)
        : _files(services.ports().files), _root(services.dataStore().root()) {}

    /// Entries are given newest first.
    HistoryRow rowOf(store::HistoryEntry entry) {
        const auto relative = inDataFolder(entry.path, _root);
        HistoryRow row{.entry = {},
                       .id = entry.hash.substr(0, historyIdDigits),
                       .name = std::string{relative.value_or(entry.path)},
                       .isCurrent = takeIfPresent(entry)};
        row.entry = std::move(entry);
        return row;
    }

private:
    bool takeIfPresent(const store::HistoryEntry& entry) {
        const auto [place, isNew] = _present.try_emplace(entry.path);
        if (isNew) {
            const auto contents = _files.read(entry.path);
            place->second = contents ? base::sha256(contents->bytes) : std::string{};
        }
        if (place->second != entry.hash) {
            return false;
        }
        place->second.clear();  // older entries with these bytes are of the past
        return true;
    }

    ports::FileSystem& _files;
    const std::string _root;
    std::map<std::string, std::string> _present;  // hashes by path; empty: nothing more to find
};

/// Whether the path ends in the components of `name`.
bool endsIn(std::string_view path, std::string_view name) {
    return path == name || (path.size() > name.size() && path.ends_with(name) &&
                            path[path.size() - name.size() - 1] == '/');
}

bool isNamed(std::string_view path, std::string_view name) {
    constexpr std::array<std::string_view, 3> extensions{"", ".txt", ".md"};
    return std::any_of(extensions.begin(), extensions.end(), [&](std::string_view extension) {
        return endsIn(path, std::string{name}.append(extension));
    });
}

/// The files of the history whose paths end in `name`; those in the data folder go before others.
std::set<std::string> filesNamed(Services& services,
                                 const std::vector<store::HistoryEntry>& entries,
                                 std::string_view name) {
    const std::string root = services.dataStore().root();
    const std::string wanted = base::nfc(name);
    const std::string folded = base::foldedForNames(name);
    std::array<std::set<std::string>, 4> byFit;
    std::set<std::string_view> seen;
    for (const store::HistoryEntry& entry : entries) {
        if (!seen.insert(entry.path).second) {
            continue;
        }
        const std::size_t elsewhere = inDataFolder(entry.path, root) ? 0 : 2;
        if (isNamed(base::nfc(entry.path), wanted)) {
            byFit[elsewhere].insert(entry.path);
        } else if (isNamed(base::foldedForNames(entry.path), folded)) {
            byFit[elsewhere + 1].insert(entry.path);
        }
    }
    const auto best =
        std::find_if(byFit.begin(), byFit.end(), [](const auto& files) { return !files.empty(); });
    return best == byFit.end() ? std::set<std::string>{} : *best;
}

/// A file of the history that need not be there; nothing when it has none of that name.
base::Result<std::optional<std::string>> formerFile(Services& services, std::string_view name) {
    const auto entries = services.history().entries();
    if (!entries) {
        return entries.failure();
    }
    const auto files = filesNamed(services, *entries, name);
    if (files.size() > 1) {
        return Failure{Failure::Kind::malformed,
                       fmt::format(fmt::runtime(tr("the history knows several files “{0}”: {1}")),
                                   name, fmt::join(files, ", "))};
    }
    return files.empty() ? std::optional<std::string>{} : std::optional{*files.begin()};
}

base::Result<NoteAddress> addressOfEntry(Services& services, const store::HistoryEntry& entry) {
    const auto relative = inDataFolder(entry.path, services.dataStore().root());
    const auto slash = relative ? relative->find('/') : std::string_view::npos;
    const base::NoteType type = slash == std::string_view::npos
                                    ? base::NoteType::none
                                    : base::noteTypeOfFolder(relative->substr(0, slash));
    if (type == base::NoteType::none) {
        return Failure{
            Failure::Kind::outside,
            fmt::format(
                fmt::runtime(tr("this text belongs to {}, which is not in the data folder in "
                                "use; name that folder with --root, or a note with --to")),
                entry.path)};
    }
    const std::string filename{relative->substr(slash + 1)};
    const auto day =
        type == base::NoteType::calendar ? store::dayOfCalendarFilename(filename) : std::nullopt;
    return NoteAddress{type, filename, day};
}

/// Puts `bytes` into the file whatever it holds, or makes it.
base::Result<NoteChange> put(Services& services, const std::string& path,
                             const std::string& bytes) {
    store::DataStore& dataStore = services.dataStore();
    const auto wanted =
        [&bytes](std::string_view present) -> base::Result<std::optional<std::string>> {
        return present == bytes ? std::optional<std::string>{} : std::optional{bytes};
    };
    const auto edited =
        services.safeFiles().edit(dataStore.root(), path, wanted, store::ChangeCause::restored);
    if (edited) {
        return *edited ? NoteChange::restored : NoteChange::unchanged;
    }
    if (edited.failure().kind != Failure::Kind::notFound) {
        return edited.failure();
    }
    const std::string folder = store::parentOf(path);
    if (!dataStore.createFolderIfNonExisting(folder)) {
        return Failure{Failure::Kind::other,
                       fmt::format(fmt::runtime(tr("the folder {} cannot be made")), folder)};
    }
    const auto created =
        services.safeFiles().create(dataStore.root(), path, bytes, store::ChangeCause::restored);
    return created ? base::Result<NoteChange>{NoteChange::restored} : created.failure();
}

}  // namespace

base::Result<std::string> fileInHistory(Services& services, std::string_view note,
                                        store::NoteReader::Options options) {
    auto found = findNote(services, note, std::move(options));
    if (found) {
        return services.dataStore().pathOf(found->type, found->filename);
    }
    if (found.failure().kind != Failure::Kind::notFound) {
        return found.failure();
    }
    const auto former = formerFile(services, base::trimmed(note));
    if (!former) {
        return former.failure();
    }
    return *former ? base::Result<std::string>{**former} : found.failure();
}

base::Result<std::vector<HistoryRow>> listHistory(Services& services,
                                                  const std::optional<std::string>& file) {
    auto entries = services.history().entries(file);
    if (!entries) {
        return entries.failure();
    }
    RowMaker maker{services};
    std::vector<HistoryRow> rows;
    for (store::HistoryEntry& entry : std::move(entries).value()) {
        rows.push_back(maker.rowOf(std::move(entry)));
    }
    return rows;
}

base::Result<HistoryText> historyText(Services& services, std::string_view id) {
    auto entry = services.history().find(id);
    if (!entry) {
        return entry.failure();
    }
    auto bytes = services.history().text(*entry);
    if (!bytes) {
        return bytes.failure();
    }
    return HistoryText{RowMaker{services}.rowOf(std::move(entry).value()),
                       std::move(bytes).value()};
}

base::Result<ChangedNote> restoreText(Services& services, std::string_view id,
                                      std::optional<std::string_view> to,
                                      store::NoteReader::Options options) {
    const auto text = historyText(services, id);
    if (!text) {
        return text.failure();
    }
    const auto note = to ? findNote(services, *to, std::move(options))
                         : addressOfEntry(services, text->row.entry);
    if (!note) {
        return note.failure();
    }
    const auto path = services.dataStore().pathOf(note->type, note->filename);
    if (!path) {
        return path.failure();
    }
    const auto change = put(services, *path, text->bytes);
    if (!change) {
        return change.failure();
    }
    return ChangedNote{*change, *note, *path, {}};
}

}  // namespace tessaly::app
