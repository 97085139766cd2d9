// SPDX-License-Identifier: MIT
#include "app/background.h"

#include <utility>

namespace tessaly::app {

Background::Background(std::string label, base::Executor& executor, ports::MainQueue& mainQueue)
    : _mainQueue(mainQueue), _queue(std::move(label), executor) {}

Background::~Background() {
    _alive.reset();
    // The job that runs tells the main queue, which may go next.
    _queue.sync([] {});
}

void Background::run(std::function<Then()> job, AtEnd atEnd) {
    _queue.async(
        [alive = std::weak_ptr(_alive), &mainQueue = _mainQueue, job = std::move(job), atEnd] {
            const bool isOver = alive.expired();
            if (isOver && atEnd == AtEnd::leftOut) {
                return;
            }
            auto then = job();
            if (!isOver && then) {
                mainQueue.post([alive, then = std::move(then)] {
                    if (!alive.expired()) {
                        then();
                    }
                });
            }
        });
}

}  // namespace tessaly::app
