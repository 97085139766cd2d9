// SPDX-License-Identifier: MIT
#include "tasks/step_writer.h"

#include <optional>
#include <string_view>

#include "base/localisation.h"
#include "base/log.h"
#include "store/inside_path.h"
#include "store/new_files.h"
#include "store/paths.h"

namespace tessaly::tasks {
namespace {

using base::Done;
using base::Failure;
using base::Result;

// How often a note may come or go between our look and our write.
constexpr int maxTries = 8;

/// A step that is being made, as it was told last.
class Told {
public:
    Told(const NoteStep& planned, const StepWriter::How& how)
        : _planned(planned), _how(how), _step(planned) {}

    const NoteStep& step() const { return _step; }

    Result<Done> tell(const NoteStep& step) {
        if (step == _step) {
            return Done{};
        }
        auto recorded = _how.record ? _how.record(step) : Result<Done>(Done{});
        if (recorded) {
            _step = step;
        }
        return recorded;
    }

    Result<std::optional<std::string>> edited(std::string_view read) {
        const NoteBytes bytes{std::string(read)};
        if (wasMade(bytes)) {
            return std::optional<std::string>();
        }
        const auto step = adapted(_planned, bytes, _how.strictness);
        if (!step) {
            return step.failure();
        }
        const auto told = tell(*step);
        return told ? Result<std::optional<std::string>>(bytesAfter(*step, bytes)) : told.failure();
    }

private:
    bool wasMade(const NoteBytes& bytes) const {
        if (_how.earlier == StepWriter::How::Earlier::no) {
            return false;
        }
        const std::string hash = hashOf(bytes);
        return hash != _planned.hashBefore &&
               (hash == _planned.hashAfter || seemsMade(_planned, *bytes));
    }

    const NoteStep& _planned;
    const StepWriter::How& _how;
    NoteStep _step;
};

template <class T>
bool failedWith(const Result<T>& result, Failure::Kind kind) {
    return !result && result.failure().kind == kind;
}

}  // namespace

Result<std::string> StepWriter::pathOf(const NoteStep& step) const {
    return store::pathInside(_tools.files, _root, nameOf(step));
}

Result<NoteBytes> StepWriter::read(const NoteStep& step) const {
    const auto path = pathOf(step);
    if (!path) {
        return path.failure();
    }
    auto contents = _tools.files.read(*path);
    if (contents) {
        return NoteBytes(contents->bytes);
    }
    if (contents.failure().kind != Failure::Kind::notFound) {
        return contents.failure();
    }
    return store::hasPlaceholder(_tools.files, *path)
               ? Result<NoteBytes>(store::notDownloaded(*path))
               : NoteBytes();
}

Result<NoteStep> StepWriter::write(const NoteStep& step, const How& how) const {
    const auto path = pathOf(step);
    if (!path) {
        return path.failure();
    }
    Told told(step, how);
    const bool isWhole = step.hashBefore.empty() || step.hashAfter.empty();
    for (int tries = 0; tries < maxTries; ++tries) {
        if (isWhole) {
            const auto recorded = told.tell(step);
            const auto done = recorded ? replaceWhole(*path, step, how.cause) : recorded;
            if (done) {
                return step;
            }
            if (!failedWith(done, Failure::Kind::exists) &&
                !failedWith(done, Failure::Kind::changed)) {
                return done.failure();
            }
        }
        const auto edited = _tools.safeFiles.edit(
            _root, *path, [&](std::string_view bytes) { return told.edited(bytes); }, how.cause);
        if (edited) {
            return told.step();
        }
        if (!step.hashBefore.empty() || !failedWith(edited, Failure::Kind::notFound)) {
            return edited.failure();
        }
    }
    return Failure{Failure::Kind::unavailable,
                   *path + ": " + base::tr("another program keeps changing it")};
}

Result<Done> StepWriter::replaceWhole(const std::string& path, const NoteStep& step,
                                      store::ChangeCause cause) const {
    return step.hashBefore.empty() ? create(path, step, cause) : remove(path, step);
}

Result<Done> StepWriter::create(const std::string& path, const NoteStep& step,
                                store::ChangeCause cause) const {
    if (store::hasPlaceholder(_tools.files, path)) {
        return store::notDownloaded(path);
    }
    const std::string folder = store::parentOf(path);
    const auto made = store::makeIfMissing(_tools.files, _tools.changes, folder);
    if (!made) {
        return made.failure();
    }
    if (*made) {
        base::log("Created directories: ", folder);
    }
    return _tools.safeFiles.create(_root, path, step.change.inserted, cause);
}

Result<Done> StepWriter::remove(const std::string& path, const NoteStep& step) const {
    const auto read = _tools.files.read(path);
    if (failedWith(read, Failure::Kind::notFound)) {
        return Done{};
    }
    if (!read) {
        return read.failure();
    }
    if (hashOf(read->bytes) != step.hashBefore) {
        return Failure{Failure::Kind::changed, path};
    }
    return _tools.safeFiles.remove(_root, path, &read->bytes);
}

}  // namespace tessaly::tasks
