// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>

#include "app/completion.h"
#include "app/completion_words.h"
#include "app/services.h"

namespace tessaly::app {

/// The words of the notes that can be completed to, made in the background when they are asked for
/// and have changed since. Main thread.
class CompletionFeed {
public:
    /// `services` outlives it.
    explicit CompletionFeed(Services& services);
    /// Waits for the work in hand.
    ~CompletionFeed();
    CompletionFeed(const CompletionFeed&) = delete;
    CompletionFeed& operator=(const CompletionFeed&) = delete;

    /// What is ready, never null. Where the notes have changed since, newer words are made, and
    /// told when they are there. Of days there are none.
    std::shared_ptr<const CompletionWords> words(CompletionKind kind);
    /// Told that `words` of this kind are newer now. One at a time; may be empty.
    void setOnReady(std::function<void(CompletionKind kind)> onReady);

private:
    struct State;
    std::shared_ptr<State> _state;
};

}  // namespace tessaly::app
