// SPDX-License-Identifier: MIT
#include "desktop/note_images.h"

#include <QWidget>
#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "app/services.h"
#include "desktop/image_file.h"
#include "desktop/qt_text.h"

namespace tessaly::desktop {

namespace {

constexpr int millisecondsBetweenLooks = 2000;

bool isSameState(const ports::FileStamp& a, const ports::FileStamp& b) {
    return a.inode == b.inode && a.size == b.size && a.modified == b.modified;
}

QString problemOf(const std::string& name, const base::Failure& failure) {
    using Kind = base::Failure::Kind;
    const QString words = failure.kind == Kind::notFound ? trText("“%1” is missing.")
                          : failure.kind == Kind::tooLarge
                              ? trText("“%1” is too large to be shown.")
                          : failure.kind == Kind::unavailable ? trText("“%1” is not downloaded.")
                                                              : trText("“%1” cannot be shown.");
    return words.arg(qt(name));
}

/// The state of a file, which is not opened; all zero: there is none.
ports::FileStamp stampOf(ports::FileSystem& files, const base::Result<std::string>& path) {
    const auto resolved = path ? files.resolve(*path) : path;
    if (!resolved) {
        return {};
    }
    const std::size_t slash = resolved->rfind('/');
    const std::string names[] = {resolved->substr(slash + 1)};
    const auto entries = files.surveyNames(resolved->substr(0, slash), names);
    return entries && entries->front() ? entries->front()->stamp : ports::FileStamp{};
}

}  // namespace

/// What the background has found.
struct NoteImages::Read {
    Look look;
    ports::FileStamp stamp;
    QImage picture;  ///< null: it was not asked for, or it is refused
    bool isDecoded = false;
};

/// What the background works with; it holds on to it.
struct NoteImages::Shared {
    const Tools tools;
    std::atomic<std::uint64_t> notes = 0;  ///< that were left; what was found for them is dropped
    std::atomic<bool> isEnding = false;

    base::Result<ports::FileContents> contentsOf(const std::string& name) const {
        const auto path = tools.pathOf(name);
        auto contents =
            path ? tools.files.read(*path) : base::Result<ports::FileContents>(path.failure());
        if (contents && contents->bytes.size() > mostBytes) {
            return base::Failure{base::Failure::Kind::tooLarge, name};
        }
        return contents;
    }

    static Look refused(const std::string& name, const base::Failure& failure) {
        return {Look::State::refused, {}, problemOf(name, failure)};
    }

    /// Without `pixels` the size alone.
    Read read(const std::string& name, QSize pixels) const {
        const auto contents = contentsOf(name);
        if (!contents) {
            return {
                refused(name, contents.failure()), stampOf(tools.files, tools.pathOf(name)), {}};
        }
        const ImageFile file(contents->bytes);
        const QSize size = file.size();
        const auto refusal = [&](base::Failure::Kind kind) {
            return Read{refused(name, {kind, {}}), contents->stamp, {}};
        };
        if (size.isEmpty()) {
            return refusal(base::Failure::Kind::malformed);
        }
        if (std::int64_t{size.width()} * size.height() > mostPixels) {
            return refusal(base::Failure::Kind::tooLarge);
        }
        Read result{{Look::State::shown, size, {}}, contents->stamp, {}, pixels.isValid()};
        if (pixels.isValid()) {
            result.picture = file.decode(pixels);
            if (result.picture.isNull()) {
                return refusal(base::Failure::Kind::malformed);
            }
        }
        return result;
    }
};

NoteImages::NoteImages(Tools tools, QWidget* parent)
    : QObject(parent),
      _shared(new Shared{std::move(tools)}),
      _work(std::string(app::bundleIdentifier) + ".NoteImages", _shared->tools.executor) {
    _again.setInterval(millisecondsBetweenLooks);
    connect(&_again, &QTimer::timeout, this, [this, parent] {
        if (parent->isVisible()) {
            lookAgain();
        }
    });
}

NoteImages::~NoteImages() {
    _shared->isEnding = true;
    _work.sync([] {});
}

const NoteImages::Look& NoteImages::look(const std::string& name) {
    const auto [found, isNew] = _entries.try_emplace(name);
    if (isNew) {
        read(name, {});
        _again.start();
    }
    return found->second.look;
}

QImage NoteImages::picture(const std::string& name, QSize pixels) {
    const auto found = _entries.find(name);
    if (found == _entries.end() || found->second.look.state != Look::State::shown) {
        return {};
    }
    Entry& entry = found->second;
    entry.lastUse = ++_uses;
    const QSize wanted = pixels.boundedTo(entry.look.size);
    if (entry.picture.width() < wanted.width() && entry.asked.width() < wanted.width()) {
        entry.asked = wanted;
        read(name, wanted);
    }
    return entry.picture;
}

void NoteImages::startOver() {
    ++_shared->notes;
    _entries.clear();
    _again.stop();
}

void NoteImages::read(const std::string& name, QSize pixels) {
    const std::uint64_t note = _shared->notes;
    _work.async([this, shared = _shared, note, name, pixels] {
        if (shared->isEnding || shared->notes != note) {
            return;
        }
        shared->tools.post([this, shared, note, name, result = shared->read(name, pixels)] {
            if (!shared->isEnding && shared->notes == note) {
                receive(name, result);
            }
        });
    });
}

void NoteImages::receive(const std::string& name, const Read& result) {
    Entry& entry = _entries[name];
    const bool isOther = entry.look != result.look || !isSameState(entry.stamp, result.stamp);
    if (isOther) {
        entry.picture = {};
        entry.asked = {};
    }
    entry.stamp = result.stamp;
    entry.look = result.look;
    if (result.isDecoded) {
        entry.picture = result.picture;
        entry.asked = {};
        dropUnused();
        Q_EMIT pictureDecoded();
    }
    if (isOther) {
        Q_EMIT lookChanged(qt(name));
    }
}

void NoteImages::dropUnused() {
    std::vector<Entry*> kept;
    qsizetype bytes = 0;
    for (auto& [name, entry] : _entries) {
        kept.push_back(&entry);
        bytes += entry.picture.sizeInBytes();
    }
    std::sort(kept.begin(), kept.end(),
              [](const Entry* a, const Entry* b) { return a->lastUse < b->lastUse; });
    for (std::size_t i = 0; bytes > mostBytesKept && i + 1 < kept.size(); ++i) {
        bytes -= kept[i]->picture.sizeInBytes();
        kept[i]->picture = {};
    }
}

void NoteImages::lookAgain() {
    std::vector<std::pair<std::string, ports::FileStamp>> known;
    for (const auto& [name, entry] : _entries) {
        if (entry.look.state != Look::State::awaited) {
            known.emplace_back(name, entry.stamp);
        }
    }
    const std::uint64_t note = _shared->notes;
    _work.async([this, shared = _shared, note, known = std::move(known)] {
        std::vector<std::string> changed;
        for (const auto& [name, stamp] : known) {
            const bool isDone = shared->isEnding || shared->notes != note;
            if (!isDone &&
                !isSameState(stamp, stampOf(shared->tools.files, shared->tools.pathOf(name)))) {
                changed.push_back(name);
            }
        }
        if (changed.empty()) {
            return;
        }
        shared->tools.post([this, shared, note, changed] {
            const bool isDone = shared->isEnding || shared->notes != note;
            for (std::size_t i = 0; !isDone && i < changed.size(); ++i) {
                read(changed[i], {});
            }
        });
    });
}

}  // namespace tessaly::desktop
