// SPDX-License-Identifier: MIT
#include "app/completion_feed.h"

#include <array>
#include <utility>

#include "base/serial_queue.h"
#include "ports/main_queue.h"
#include "store/note_cache.h"

namespace tessaly::app {

/// Held by the feed alone; what is posted holds it weakly.
struct CompletionFeed::State final : std::enable_shared_from_this<CompletionFeed::State> {
    using Words = std::shared_ptr<const CompletionWords>;
    struct Ready {
        std::shared_ptr<const void> from;  ///< the snapshot of the notes that they are, or will be
        Words words = std::make_shared<const CompletionWords>();
    };

    explicit State(Services& all)
        : services(all),
          queue(std::string(bundleIdentifier) + ".CompletionFeed", all.ports().executor) {}

    Words words(CompletionKind kind) {
        const store::NoteCache& cache = services.noteCache();
        switch (kind) {
            case CompletionKind::hashtag:
                return wordsOf(kind, cache.lineHashTags(), &CompletionWords::ofTags);
            case CompletionKind::mention:
                return wordsOf(kind, cache.lineAtTags(), &CompletionWords::ofTags);
            case CompletionKind::noteTitle:
                return wordsOf(kind, cache.generalNotes(), &CompletionWords::ofTitles);
            case CompletionKind::day: break;
        }
        return std::make_shared<const CompletionWords>();
    }

    template <class Notes>
    Words wordsOf(CompletionKind kind, std::shared_ptr<const Notes> notes,
                  CompletionWords (*make)(const Notes&)) {
        Ready& current = readyOf(kind);
        if (current.from != notes) {
            current.from = notes;
            queue.async([this, kind, make, notes = std::move(notes)] {
                post(kind, std::make_shared<const CompletionWords>(make(*notes)));
            });
        }
        return current.words;
    }

    void post(CompletionKind kind, Words made) {
        services.ports().mainQueue.post([weak = weak_from_this(), kind, made = std::move(made)] {
            if (const auto state = weak.lock()) {
                state->readyOf(kind).words = made;
                if (state->onReady) {
                    state->onReady(kind);
                }
            }
        });
    }

    Ready& readyOf(CompletionKind kind) { return ready[static_cast<std::size_t>(kind)]; }

    Services& services;
    std::array<Ready, 4> ready;  ///< by kind
    std::function<void(CompletionKind kind)> onReady;
    base::SerialQueue queue;
};

CompletionFeed::CompletionFeed(Services& services) : _state(std::make_shared<State>(services)) {}

CompletionFeed::~CompletionFeed() {
    _state->queue.sync([] {});
}

std::shared_ptr<const CompletionWords> CompletionFeed::words(CompletionKind kind) {
    return _state->words(kind);
}

void CompletionFeed::setOnReady(std::function<void(CompletionKind)> onReady) {
    _state->onReady = std::move(onReady);
}

}  // namespace tessaly::app
