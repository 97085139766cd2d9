// SPDX-License-Identifier: MIT
#include "app/note_organiser.h"

#include <utility>

#include <fmt/format.h>

#include "app/organise_notes.h"
#include "app/trashed_items.h"
#include "base/localisation.h"
#include "base/note_type.h"
#include "base/serial_queue.h"
#include "ports/main_queue.h"
#include "search/filter_helper.h"
#include "store/note_names.h"
#include "store/paths.h"

namespace tessaly::app {
namespace {

using base::tr;

template <class... Parts>
std::string words(const std::string& pattern, const Parts&... parts) {
    return fmt::format(fmt::runtime(pattern), parts...);
}

OrganisedNotes refused(const base::Failure& failure) {
    OrganisedNotes what;
    what.text = failure.description;
    what.isFailure = true;
    return what;
}

OrganisedNotes done(std::string text, std::string from, std::string to) {
    OrganisedNotes what;
    what.text = std::move(text);
    what.from = std::move(from);
    what.to = std::move(to);
    return what;
}

std::string folderOfName(const std::string& name) {
    const std::size_t slash = name.rfind('/');
    return slash == std::string::npos ? std::string() : name.substr(0, slash);
}

std::string folderInWords(const std::string& folder) {
    return folder.empty() ? tr("Notes") : folder;
}

std::string nameInWords(const std::string& name) {
    return std::string(store::baseName(name));
}

std::string heldTitle(Services& services, const std::string& filename) {
    const auto note = services.noteCache().generalNotes()->find(filename);
    return note ? note->note.title : nameInWords(filename);
}

/// Whether giving the note its title back makes its text what it is now.
bool isReversible(Services& services, const std::string& filename, const std::string& title) {
    const auto note = services.noteCache().generalNotes()->find(filename);
    return note && withTitle(withTitle(note->note.content.view(), title), note->note.title) ==
                       note->note.content.view();
}

std::string textOfTrashed(const std::string& folder, std::size_t notes) {
    const std::string pattern = base::trPlural("“{0}” with {1} note is in the trash",
                                               "“{0}” with {1} notes is in the trash", notes);
    return notes == 0 ? words(tr("“{}” is in the trash"), store::lastComponent(folder))
                      : words(pattern, store::lastComponent(folder), notes);
}

}  // namespace

struct NoteOrganiser::State : std::enable_shared_from_this<NoteOrganiser::State> {
    explicit State(Services& all)
        : services(all),
          queue(std::string(bundleIdentifier) + ".NoteOrganiser", all.ports().executor) {
        // What other threads ask for must be there before.
        all.dataStore();
        all.noteCache();
    }

    /// The same with what has another name then, or none.
    void move(const std::string& from, std::function<OrganisedNotes(Services&)> work, Told told) {
        const auto moving = [from, work = std::move(work)](Services& all) {
            NoteMoves::Move move(all.noteMoves(), from);
            OrganisedNotes what = work(all);
            if (!what.isFailure && !what.to.empty()) {
                move.done(what.to);
            }
            return what;
        };
        run(moving, std::move(told));
    }

    /// The same with what is to go: until that is told, nobody types into it.
    void remove(const std::string& name, std::function<OrganisedNotes(Services&)> work, Told told) {
        services.noteMoves().beginRemoval(name);
        const auto tellEnd = [this, name, told = std::move(told)](const OrganisedNotes& what) {
            if (told) {
                told(what);
            }
            services.noteMoves().endRemoval(name);
        };
        move(name, std::move(work), tellEnd);
    }

    /// Does `work` in the background and tells of it.
    void run(std::function<OrganisedNotes(Services&)> work, Told told) {
        queue.async([this, work = std::move(work), told = std::move(told)]() mutable {
            auto answer = [weak = weak_from_this(), told = std::move(told), what = work(services)] {
                if (!weak.expired() && told) {
                    told(what);
                }
            };
            services.ports().mainQueue.post(std::move(answer));
        });
    }

    Services& services;
    base::SerialQueue queue;
};

NoteOrganiser::NoteOrganiser(Services& services) : _state(std::make_shared<State>(services)) {}

NoteOrganiser::~NoteOrganiser() {
    _state->queue.sync([] {});
}

void NoteOrganiser::renameNote(const std::string& filename, const std::string& title, Told told) {
    const std::string before = heldTitle(_state->services, filename);
    const bool canUndo = isReversible(_state->services, filename, title);
    const auto work = [=, this](Services& services) {
        const auto to = app::renameNote(services, filename, title);
        if (!to) {
            return refused(to.failure());
        }
        OrganisedNotes what =
            done(words(tr("Renamed “{0}” to “{1}”"), before, title), filename, *to);
        if (canUndo) {
            what.undo = [this, to = *to, before, told] { renameNote(to, before, told); };
        }
        return what;
    };
    _state->move(filename, work, told);
}

void NoteOrganiser::moveNote(const std::string& filename, const std::string& folder, Told told) {
    const std::string title = heldTitle(_state->services, filename);
    const auto work = [=, this](Services& services) {
        const auto to = app::moveNote(services, filename, folder);
        if (!to) {
            return refused(to.failure());
        }
        OrganisedNotes what =
            done(words(tr("Moved “{0}” to “{1}”"), title, folderInWords(folder)), filename, *to);
        what.undo = [this, to = *to, back = folderOfName(filename), told] {
            moveNote(to, back, told);
        };
        return what;
    };
    _state->move(filename, work, told);
}

void NoteOrganiser::trashNote(const std::string& filename, Told told) {
    const std::string title = heldTitle(_state->services, filename);
    const auto work = [=, this](Services& services) {
        const auto trashed = services.dataStore().trashNote(base::NoteType::note, filename);
        if (!trashed) {
            return refused(trashed.failure());
        }
        services.noteCache().reread(base::NoteType::note, filename);
        return withReturn(done(words(*trashed == store::Trashed::toSystemTrash
                                         ? tr("“{}” is in the trash")
                                         : tr("“{}” is removed; its text is in the history"),
                                     title),
                               filename, {}),
                          trashedItem(services, filename), told);
    };
    _state->remove(filename, work, told);
}

OrganisedNotes NoteOrganiser::withReturn(OrganisedNotes what, const TrashedItem& item,
                                         const Told& told) {
    if (item.canComeBack()) {
        what.undo = [this, item, told] {
            const auto work = [item](Services& services) {
                const auto back = bringBack(services, item);
                return back ? done(words(tr("“{}” is back"), nameInWords(item.name)), {}, item.name)
                            : refused(back.failure());
            };
            _state->run(work, told);
        };
    }
    return what;
}

void NoteOrganiser::newNote(const NoteRequest& request, Told told) {
    const auto work = [request](Services& services) {
        const auto made = app::newNote(services, request);
        if (!made) {
            return refused(made.failure());
        }
        services.noteCache().reread(base::NoteType::note, made->note.filename);
        return done(words(tr("Made the note “{}”"), nameInWords(made->note.filename)), {},
                    made->note.filename);
    };
    _state->run(work, std::move(told));
}

void NoteOrganiser::newFolder(const std::string& parent, const std::string& name, Told told) {
    const auto work = [=](Services& services) {
        const auto made = app::newFolder(services, parent, name);
        return made
                   ? done(words(tr("Made the folder “{}”"), store::lastComponent(*made)), {}, *made)
                   : refused(made.failure());
    };
    _state->run(work, std::move(told));
}

void NoteOrganiser::renameFolder(const std::string& folder, const std::string& name, Told told) {
    const auto work = [=, this](Services& services) {
        const auto to = app::renameFolder(services, folder, name);
        if (!to) {
            return refused(to.failure());
        }
        const std::string before(store::lastComponent(folder));
        OrganisedNotes what = done(
            words(tr("Renamed “{0}” to “{1}”"), before, store::lastComponent(*to)), folder, *to);
        what.undo = [this, to = *to, before, told] { renameFolder(to, before, told); };
        return what;
    };
    _state->move(folder, work, told);
}

void NoteOrganiser::moveFolder(const std::string& folder, const std::string& parent, Told told) {
    const auto work = [=, this](Services& services) {
        const auto to = app::moveFolder(services, folder, parent);
        if (!to) {
            return refused(to.failure());
        }
        OrganisedNotes what = done(
            words(tr("Moved “{0}” to “{1}”"), store::lastComponent(folder), folderInWords(parent)),
            folder, *to);
        what.undo = [this, to = *to, back = folderOfName(folder), told] {
            moveFolder(to, back, told);
        };
        return what;
    };
    _state->move(folder, work, told);
}

void NoteOrganiser::trashFolder(const std::string& folder, Told told) {
    const auto work = [=, this](Services& services) {
        const auto notes = app::trashFolder(services, folder);
        return notes ? withReturn(done(textOfTrashed(folder, *notes), folder, {}),
                                  trashedItem(services, folder), told)
                     : refused(notes.failure());
    };
    _state->remove(folder, work, told);
}

void NoteOrganiser::renameFilter(const std::string& from, const std::string& to, Told told) {
    const auto work = [=, this](Services& services) {
        const auto renamed = services.filterHelper().rename(from, to);
        if (!renamed) {
            return refused(renamed.failure());
        }
        OrganisedNotes what =
            done(words(tr("Renamed “{0}” to “{1}”"), from, *renamed), from, *renamed);
        what.undo = [this, name = *renamed, from, told] { renameFilter(name, from, told); };
        return what;
    };
    _state->run(work, told);
}

void NoteOrganiser::trashFilter(const std::string& name, Told told) {
    const auto work = [=](Services& services) {
        const auto removed = services.filterHelper().remove(name);
        return removed ? done(words(tr("“{}” is in the trash"), *removed), name, {})
                       : refused(removed.failure());
    };
    _state->run(work, std::move(told));
}

}  // namespace tessaly::app
