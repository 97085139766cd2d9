// SPDX-License-Identifier: MIT
#include "store/safe_files.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

#include "base/localisation.h"
#include "store/change_session.h"
#include "store/foreign_names.h"
#include "store/new_files.h"
#include "store/paths.h"

namespace tessaly::store {

using base::Done;
using base::Failure;
using base::Result;

namespace {

// Each try has lost against another program that wrote between our reading and our writing.
constexpr int maxChangeTries = 20;
constexpr std::chrono::milliseconds longestPause{64};

/// One try of a change; nothing: the file was changed meanwhile, and a new one is due.
template <class T>
using Try = std::optional<Result<T>>;

template <class T, class TryOnce>
Result<T> tryUntilStill(const std::string& file, const TryOnce& tryOnce) {
    std::chrono::milliseconds pause{1};
    for (int i = 0; i < maxChangeTries; ++i) {
        if (Try<T> outcome = tryOnce()) {
            return *std::move(outcome);
        }
        // Each try costs the history two texts; a writer that is busy now may soon be done.
        std::this_thread::sleep_for(pause);
        pause = std::min(2 * pause, longestPause);
    }
    return Failure{Failure::Kind::unavailable,
                   file + ": " + base::tr("other programs change it all the time")};
}

bool isChanged(const Result<Done>& result) {
    return !result && result.failure().kind == Failure::Kind::changed;
}

// What we could not read again we must not write.
Result<Done> checkSize(const std::string& file, std::string_view bytes) {
    if (bytes.size() <= ports::maxFileBytes) {
        return Done{};
    }
    return Failure{Failure::Kind::tooLarge, file + ": " + base::tr("would become too large")};
}

template <class T, class Change>
Result<T> during(const SafeFiles::Tools& tools, const std::string& root, const Change& change) {
    auto lock = tools.locks.take(root);
    if (!lock) {
        return lock.failure();
    }
    ChangeSession session({tools.files, tools.changes, tools.history}, root, *std::move(lock));
    Result<T> outcome = change(session);
    // Left over is what died before, or another's; the outcome of this change stands.
    [[maybe_unused]] const auto ended = session.end();
    return outcome;
}

/// What leaves the folder that a sync client watches is gone for the client, which then removes it
/// everywhere. Of a placeholder nobody would have the text.
Result<Done> checkIsHere(ports::FileSystem& files, const std::string& file) {
    const std::string name(lastComponent(file));
    const auto found = files.surveyNames(parentOf(file), {&name, 1});
    if (!found) {
        return found.failure();
    }
    const auto& entry = found->front();
    const bool isPlaceholder = nameOfPlaceholder(name) || (entry && entry->isPlaceholder);
    return isPlaceholder ? Result<Done>(notDownloaded(file)) : Done{};
}

/// A change of the bytes of a file from what was read.
struct Rewrite {
    const std::string& file;
    const ports::FileContents& read;
    const std::string& next;
    ChangeCause cause;
};

Result<Done> rewrite(const SafeFiles::Tools& tools, ChangeSession& session, const Rewrite& change) {
    if (auto fits = checkSize(change.file, change.next); !fits) {
        return fits;
    }
    if (auto kept = tools.history.keepOld(change.file, change.read.bytes); !kept) {
        return kept;
    }
    if (auto kept = tools.history.keepNew(change.file, change.next, change.cause); !kept) {
        return kept;
    }
    if (auto begun = session.beginWrite(change.file); !begun) {
        return begun;
    }
    return session.noted(tools.changes.replace(change.file, change.read, change.next));
}

}  // namespace

Result<bool> SafeFiles::edit(const std::string& root, const std::string& file, const Edit& edit,
                             ChangeCause cause) {
    const auto editOnce = [&](ChangeSession& session) -> Try<bool> {
        const auto read = _tools.files.read(file);
        if (!read) {
            return read.failure();
        }
        const auto next = edit(read->bytes);
        if (!next) {
            return next.failure();
        }
        if (!*next || **next == read->bytes) {
            return Result<bool>(false);
        }
        const auto done = rewrite(_tools, session, {file, *read, **next, cause});
        if (isChanged(done)) {
            return std::nullopt;
        }
        return done ? Result<bool>(true) : done.failure();
    };
    return during<bool>(_tools, root, [&](ChangeSession& session) {
        return tryUntilStill<bool>(file, [&] { return editOnce(session); });
    });
}

Result<Done> SafeFiles::create(const std::string& root, const std::string& file,
                               std::string_view bytes, ChangeCause cause) {
    return during<Done>(_tools, root, [&](ChangeSession& session) -> Result<Done> {
        // Asked here too, so that the history tells of no note that there never was.
        if (_tools.files.kindOf(file)) {
            return Failure{Failure::Kind::exists, file + ": " + base::tr("is there already")};
        }
        if (auto fits = checkSize(file, bytes); !fits) {
            return fits;
        }
        if (auto kept = _tools.history.keepNew(file, bytes, cause); !kept) {
            return kept;
        }
        auto begun = session.begin(parentOf(file));
        return begun ? session.noted(_tools.changes.create(file, bytes)) : begun;
    });
}

Result<Done> SafeFiles::trash(const std::string& root, const std::string& file,
                              const ports::Trash& trash) {
    return during<Done>(_tools, root, [&](ChangeSession&) {
        if (auto here = checkIsHere(_tools.files, file); !here) {
            return here;
        }
        if (const auto read = _tools.files.read(file)) {
            [[maybe_unused]] const auto kept =
                _tools.history.keepOld(file, read->bytes, ChangeCause::trashed);
        }
        return trash(file);
    });
}

Result<Done> SafeFiles::remove(const std::string& root, const std::string& file,
                               const std::string* expected) {
    const auto removeOnce = [&](ChangeSession& session) -> Try<Done> {
        const auto read = _tools.files.read(file);
        if (!read) {
            return read.failure();
        }
        if (expected != nullptr && read->bytes != *expected) {
            return Failure{Failure::Kind::changed,
                           file + ": " + base::tr("is no longer what it was")};
        }
        if (auto kept = _tools.history.keepOld(file, read->bytes, ChangeCause::trashed); !kept) {
            return kept;
        }
        if (auto begun = session.begin(parentOf(file)); !begun) {
            return begun;
        }
        auto removed = session.noted(_tools.changes.remove(file, &*read));
        return isChanged(removed) ? std::nullopt : Try<Done>(std::move(removed));
    };
    return during<Done>(_tools, root, [&](ChangeSession& session) {
        return tryUntilStill<Done>(file, [&] { return removeOnce(session); });
    });
}

Result<Done> SafeFiles::move(const Place& from, const Place& to) {
    const auto moveBetween = [&](ChangeSession& source, ChangeSession& target) {
        if (auto begun = source.begin(parentOf(from.file)); !begun) {
            return begun;
        }
        if (auto begun = target.begin(parentOf(to.file)); !begun) {
            return begun;
        }
        return source.noted(target.noted(_tools.changes.move(from.file, to.file)));
    };
    if (from.root == to.root) {
        return during<Done>(_tools, to.root,
                            [&](ChangeSession& only) { return moveBetween(only, only); });
    }
    if (auto here = checkIsHere(_tools.files, from.file); !here) {
        return here;
    }
    // In one order always, so that no two processes wait for each other.
    const bool isSourceFirst = from.root < to.root;
    const Place& first = isSourceFirst ? from : to;
    const Place& second = isSourceFirst ? to : from;
    return during<Done>(_tools, first.root, [&](ChangeSession& outer) {
        return during<Done>(_tools, second.root, [&](ChangeSession& inner) {
            return isSourceFirst ? moveBetween(outer, inner) : moveBetween(inner, outer);
        });
    });
}

Result<Done> SafeFiles::settle(const std::string& root, Settle when) {
    if (when == Settle::whenSomebodyDied && !_tools.locks.isUnfinished(root)) {
        return Done{};
    }
    auto lock = _tools.locks.take(root);
    if (!lock) {
        return lock.failure();
    }
    ChangeSession session({_tools.files, _tools.changes, _tools.history}, root, *std::move(lock));
    return session.end();
}

}  // namespace tessaly::store
