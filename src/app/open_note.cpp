// SPDX-License-Identifier: MIT
#include "app/open_note.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

#include "app/open_note_file.h"
#include "app/save_times.h"
#include "base/localisation.h"
#include "base/log.h"
#include "base/serial_queue.h"
#include "ports/main_queue.h"
#include "store/new_files.h"
#include "store/three_way_merge.h"

namespace tessaly::app {
namespace {

using base::Done;
using base::Failure;
using base::Result;

// Texts of together so many bytes are joined on the main thread, in a few milliseconds.
constexpr std::size_t smallTexts = 256 << 10;
// Who types into a long text all the time is waited for so often; then the main thread joins.
constexpr int mostJoins = 4;

/// What the file has come to hold, and what that means for the editor.
struct Joining {
    FileText file;
    std::string before;  ///< what the editor held
    std::string after;   ///< what it is to hold if it still holds that
    int joins = 0;
};

/// What is done off the main thread, one at a time.
struct Work {
    enum class Kind { save, read, join } kind = Kind::read;
    Result<FileText> result = Failure{Failure::Kind::other, base::tr("internal error")};
    std::string sent;  ///< of a save
    Joining joining;   ///< of a join
};

}  // namespace

class OpenNote::State : public std::enable_shared_from_this<State> {
public:
    State(Services& services, NoteAddress address, Handlers handlers)
        : _mainQueue(services.ports().mainQueue),
          _queue(std::string(bundleIdentifier) + ".OpenNote", services.ports().executor),
          _file(std::make_shared<OpenNoteFile>(services, std::move(address))),
          _handlers(std::move(handlers)) {
        auto read = _file->read();
        if (read) {
            _known = *std::move(read);
        } else {
            _obstacle = read.failure();
        }
    }

    const OpenNoteFile& file() const { return *_file; }
    const FileText& known() const { return _known; }
    const std::optional<Failure>& obstacle() const { return _obstacle; }
    const std::optional<Failure>& failure() const { return _failure; }

    SaveState saveState() const {
        if (_failure) {
            return SaveState::failed;
        }
        const bool isReading = _work && _work->kind == Work::Kind::read;
        return _isDirty || (_work && !isReading) ? SaveState::unsaved : SaveState::saved;
    }

    void edited() {
        if (_isShowing || _obstacle) {
            return;
        }
        _isDirty = true;
        _times.edited(_mainQueue.now());
        proceed();
    }

    void reread() {
        _isRereadWanted = true;
        proceed();
    }

    Result<Done> saveNow() {
        finishWork();
        if (!_isAlive || _obstacle) {
            return Done{};
        }
        if (_isDirty) {
            save();
            finishWork();
        }
        return _failure ? Result<Done>(*_failure) : Done{};
    }

    Result<std::string> keepCopy() const { return _file->keepCopy(_handlers.currentText()); }

    /// Nobody is called any more.
    void end() {
        _isAlive = false;
        _mainQueue.cancel(std::exchange(_timer, 0));
        _queue.sync([] {});
        if (_work && _work->kind == Work::Kind::save && _work->result) {
            _file->tellCache();
        }
    }

private:
    // What comes next, and what is told of it.

    void proceed() {
        if (!_isAlive) {
            return;
        }
        if (!_work && std::exchange(_isRereadWanted, false)) {
            begin(Work{}, [file = _file](Work& work) { work.result = file->read(); });
        }
        schedule();
        tellState();
    }

    void schedule() {
        _mainQueue.cancel(std::exchange(_timer, 0));
        if (_work || !_isDirty) {
            return;
        }
        const auto delay =
            std::max(_times.due() - _mainQueue.now(), ports::MainQueue::Time::zero());
        _timer = _mainQueue.after(delay, [weak = weak_from_this()] {
            if (const auto self = weak.lock(); self && self->_isAlive) {
                self->_timer = 0;
                self->save();
            }
        });
    }

    void tellState() {
        const SaveState state = saveState();
        const std::string why = _failure ? _failure->description : std::string();
        if (state == _told && why == _toldWhy) {
            return;
        }
        _told = state;
        _toldWhy = why;
        if (_handlers.onSaveState) {
            _handlers.onSaveState(state);
        }
    }

    // Work off the main thread.

    void save() {
        if (_work) {
            return;
        }
        std::string text = _handlers.currentText();
        if (text == _known.text) {
            unchanged();
            return;
        }
        _isDirty = false;
        _times.started(_mainQueue.now());
        Work work;
        work.kind = Work::Kind::save;
        work.sent = std::move(text);
        begin(std::move(work), [file = _file, known = _known](Work& save) {
            save.result = file->write(known, save.sent);
        });
        proceed();
    }

    /// What was typed has been taken back.
    void unchanged() {
        settled();
        if (!_known.exists && !_known.text.empty()) {
            tellGone();
        }
        proceed();
    }

    /// The job that posts runs whatever becomes of the first.
    template <class Job>
    void begin(Work what, const Job& job) {
        _work = std::make_shared<Work>(std::move(what));
        _queue.async([work = _work, job] { job(*work); });
        _queue.async([work = _work, weak = weak_from_this(), &mainQueue = _mainQueue] {
            mainQueue.post([work, weak] {
                if (const auto self = weak.lock()) {
                    self->finish(work);
                }
            });
        });
    }

    void finishWork() {
        while (_isAlive && _work) {
            _queue.sync([] {});
            finish(_work);
        }
    }

    void finish(const std::shared_ptr<Work> work) {
        if (!_isAlive || work != _work) {
            return;
        }
        _work.reset();
        switch (work->kind) {
            case Work::Kind::save: finishSave(*work); break;
            case Work::Kind::read: finishRead(*work); break;
            case Work::Kind::join: settle(std::move(work->joining)); break;
        }
        proceed();
    }

    void finishSave(Work& work) {
        if (!work.result) {
            failed(work.result.failure());
            return;
        }
        _failure.reset();
        _times.succeeded();
        _file->tellCache();
        FileText file = std::move(work.result).value();
        std::string after = file.text;
        settle({std::move(file), std::move(work.sent), std::move(after)});
    }

    void failed(const Failure& failure) {
        if (!_failure || _failure->description != failure.description) {
            base::log(store::noteNotWritten, failure.description);
        }
        _failure = failure;
        _isDirty = true;
        _times.failed(_mainQueue.now());
    }

    /// What cannot be read now is as it was: whoever saves hears of it.
    void finishRead(Work& work) {
        if (!work.result) {
            return;
        }
        FileText file = std::move(work.result).value();
        if (!file.exists) {
            gone(file.root);
        } else if (std::exchange(_obstacle, std::nullopt) || file.text != _known.text) {
            std::string before = baseFor(file);
            std::string after = file.text;
            settle({std::move(file), std::move(before), std::move(after)});
        } else {
            _known = std::move(file);
        }
    }

    /// What the editor's text was made from, for who joins it with that of a file: nothing known,
    /// where that is in another data folder, so that no line is taken for deleted.
    std::string baseFor(const FileText& file) const {
        return _isDirty && file.root != _known.root ? std::string() : _known.text;
    }

    void gone(const std::string& root) {
        const bool wasThere = std::exchange(_known.exists, false);
        _known.root = root;
        _obstacle.reset();
        if (wasThere && !_isDirty) {
            tellGone();
        }
    }

    void tellGone() {
        if (_handlers.onGone) {
            _handlers.onGone();
        }
    }

    // Joining what others wrote into the editor's text.

    void settle(Joining joining) {
        std::string now = _handlers.currentText();
        if (now == joining.before || joining.before == joining.after) {
            std::string text = now == joining.before ? std::move(joining.after) : now;
            show(std::move(joining.file), now, text);
        } else if (isDoneHere(joining, now)) {
            const std::string text = store::threeWayMerge(joining.before, now, joining.after);
            show(std::move(joining.file), now, text);
        } else {
            joinElsewhere(std::move(joining), std::move(now));
        }
    }

    static bool isDoneHere(const Joining& joining, const std::string& now) {
        return joining.joins == mostJoins ||
               joining.before.size() + now.size() + joining.after.size() <= smallTexts;
    }

    void joinElsewhere(Joining joining, std::string now) {
        Work work;
        work.kind = Work::Kind::join;
        work.joining = std::move(joining);
        begin(std::move(work), [now = std::move(now)](Work& join) {
            Joining& texts = join.joining;
            texts.after = store::threeWayMerge(texts.before, now, texts.after);
            texts.before = now;
            ++texts.joins;
        });
    }

    void show(FileText file, const std::string& now, const std::string& text) {
        _known = std::move(file);
        const bool isSaved = text == _known.text;
        if (isSaved) {
            settled();
        } else {
            touch();
        }
        if (text != now && _handlers.onMerged) {
            _isShowing = true;
            _handlers.onMerged(text);
            _isShowing = false;
            // Words that an input method has given up on the way are in no file.
            if (_isAlive && _handlers.currentText() != text) {
                touch();
            }
        }
    }

    /// The editor's text is to be saved though nobody has just typed.
    void touch() {
        if (!std::exchange(_isDirty, true)) {
            _times.edited(_mainQueue.now());
        }
    }

    void settled() {
        _isDirty = false;
        _failure.reset();
        _times.succeeded();
    }

    ports::MainQueue& _mainQueue;
    base::SerialQueue _queue;
    const std::shared_ptr<const OpenNoteFile> _file;
    const Handlers _handlers;

    FileText _known;  ///< what the editor's text was made from
    std::optional<Failure> _obstacle;
    std::optional<Failure> _failure;
    bool _isDirty = false;  ///< something is not in the file, and in no save that runs
    bool _isRereadWanted = false;
    bool _isShowing = false;
    bool _isAlive = true;
    std::shared_ptr<Work> _work;
    SaveTimes _times{{pause, longestUnsaved, retryInterval}};
    ports::MainQueue::Timer _timer = 0;
    SaveState _told = SaveState::saved;
    std::string _toldWhy;
};

OpenNote::OpenNote(Services& services, NoteAddress address, Handlers handlers)
    : _state(std::make_shared<State>(services, std::move(address), std::move(handlers))) {}

OpenNote::~OpenNote() {
    _state->end();
}

const NoteAddress& OpenNote::address() const {
    return _state->file().address();
}

const std::string& OpenNote::text() const {
    return _state->known().text;
}

bool OpenNote::exists() const {
    return _state->known().exists;
}

const std::optional<Failure>& OpenNote::obstacle() const {
    return _state->obstacle();
}

OpenNote::SaveState OpenNote::saveState() const {
    return _state->saveState();
}

const std::optional<Failure>& OpenNote::saveFailure() const {
    return _state->failure();
}

// The handlers may destroy this object, so its state is held meanwhile.

void OpenNote::edited() {
    const auto state = _state;
    state->edited();
}

Result<Done> OpenNote::saveNow() {
    const auto state = _state;
    return state->saveNow();
}

void OpenNote::reread() {
    const auto state = _state;
    state->reread();
}

Result<std::string> OpenNote::keepCopy() {
    return _state->keepCopy();
}

}  // namespace tessaly::app
