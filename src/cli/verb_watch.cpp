// SPDX-License-Identifier: MIT
#include <cstdio>
#include <string>

#include <fmt/format.h>

#include "app/live_notes.h"
#include "base/localisation.h"
#include "cli/context.h"
#include "cli/migration_lines.h"
#include "cli/safe_text.h"
#include "cli/verb_functions.h"
#include "cli/watch_lines.h"
#include "cli/watch_notices.h"

namespace tessaly::cli {

namespace {

using base::tr;
using Cause = ports::WatchState::Cause;

std::size_t notesIn(const store::NoteCache& cache) {
    std::size_t notes = 0;
    cache.generalNotes()->forEach(
        [&](const auto& note) { notes += static_cast<std::size_t>(!note->note.isFolder); });
    cache.calendarNotes()->forEach(
        [&](const auto& note) { notes += static_cast<std::size_t>(note->stamp.has_value()); });
    return notes;
}

/// Prints what is told, on the main queue, until nobody reads it.
class Watch {
public:
    explicit Watch(Context& context)
        : _context(context),
          _mainQueue(context.services.ports().mainQueue),
          _notes(context.services, {[this] { tellOfStart(); },
                                    [this](const store::CloudBatch& batch) { print(batch); },
                                    [this] { tellOfState(); },
                                    [this](const app::OfferResult& result) { tell(result); }}),
          _readerTimer(_mainQueue.every(readerInterval, [this] { endWithoutReader(); })) {}

    ~Watch() { _mainQueue.cancel(_readerTimer); }
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

    Exit run() {
        const store::NoteReader::Options reading = _context.readOptions();
        _notes.start({reading.progress, reading.cancelled});
        _mainQueue.run();
        _context.progress.erase();
        return _context.cancelled ? Exit::couldNot : Exit::done;
    }

private:
    static constexpr std::chrono::seconds readerInterval{1};

    void tellOfStart() {
        _context.progress.erase();
        const std::size_t notes = notesIn(_context.services.noteCache());
        const std::string text =
            base::trPlural("Watching {0} note in {1}.", "Watching {0} notes in {1}.", notes);
        const std::string root = safeText(_context.services.dataStore().root());
        std::fputs((fmt::format(fmt::runtime(text), notes, root) + "\n").c_str(), stderr);
        tellOfSkippedNotes();
        if (_context.services.ports().isTestMode) {
            complain(tr("TEST_MODE is set, so nothing is watched"));
        }
        _isReady = true;
        tellOfState();
    }

    /// Once, and now: the command may run for days.
    void tellOfSkippedNotes() {
        const store::ReadReport report =
            _context.services.noteCache().visit({}, [](std::size_t, const store::NoteFile&) {});
        _context.skipped = report.skipped.size();
        tellOfSkipped(_context);
        _context.skipped = 0;
    }

    void tellOfState() {
        const auto watching = _context.services.cloudSync().watching();
        if (_isReady && watching.state.cause != _told) {
            _told = watching.state.cause;
            complain(watchNotice(watching));
        }
    }

    void print(const store::CloudBatch& batch) {
        ++_batches;
        if (_context.invocation.json) {
            for (const store::CloudNote& note : batch.notes) {
                _context.out.line(recordOf(note, batch.root, _batches).text());
            }
        } else {
            printText(batch);
        }
        if (!_context.out.flush() || _context.out.isReaderGone()) {
            _mainQueue.stop();
        }
    }

    void printText(const store::CloudBatch& batch) {
        if (_batches > 1) {
            _context.out.line("");
        }
        if (_context.terminal.isTerminal) {
            ports::Clock& clock = _context.services.ports().clock;
            const base::LocalTime now = clock.local(clock.now());
            const base::LocaleFormats& formats = _context.services.dateStrings().formats();
            printLine({{Style::section, formats.time(now.hour, now.minute)}});
        }
        for (const store::CloudNote& note : batch.notes) {
            printLine(watchLine(note, batch.root));
        }
    }

    void printLine(const Spans& line) { _context.out.line(drawn(line, _context.terminal)); }

    void tell(const app::OfferResult& result) {
        if (!result.answer) {
            complain(safeText(result.answer.failure().description));
        } else if (*result.answer == sync::MigrationAnswer::seePreferences) {
            // What is printed on standard output is for who reads the changes.
            const auto& settings = _context.services.globals();
            for (const std::string& line : syncPreferences(settings.cloudDriveContainer())) {
                complain(line);
            }
        } else if (result.moved) {
            complainOf(*result.moved);
        }
    }

    /// Who has gone away is noticed although nothing changes.
    void endWithoutReader() {
        if (!_context.out.hasReader()) {
            _mainQueue.stop();
        }
    }

    Context& _context;
    ports::MainQueue& _mainQueue;
    app::LiveNotes _notes;
    const ports::MainQueue::Timer _readerTimer;
    std::size_t _batches = 0;
    bool _isReady = false;
    Cause _told = Cause::none;
};

}  // namespace

Exit runWatch(Context& context) {
    return Watch{context}.run();
}

}  // namespace tessaly::cli
