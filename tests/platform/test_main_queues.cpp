// SPDX-License-Identifier: MIT
#include <sys/eventfd.h>

#include "platform/file_descriptor.h"
#include "platform/glib_main_queue.h"
#include "platform/main_queue_contract.h"
#include "support/manual_main_queue.h"

namespace tessaly::platform {
namespace {

using tests::QueueUnderTest;

TEST_CASE("GLib's main loop keeps the contract") {
    tests::checkMainQueue([] {
        auto queue = std::make_unique<GlibMainQueue>();
        const auto letPass = [&queue = *queue](ports::MainQueue::Time time) {
            queue.after(time, [&] { queue.stop(); });
            queue.run();
        };
        return QueueUnderTest{std::move(queue), letPass};
    });
}

TEST_CASE("the tests' queue keeps the contract") {
    tests::checkMainQueue([] {
        auto queue = std::make_unique<tests::ManualMainQueue>();
        const auto letPass = [&queue = *queue](ports::MainQueue::Time time) {
            queue.advance(time);
        };
        return QueueUnderTest{std::move(queue), letPass};
    });
}

TEST_CASE("a descriptor that can be read ends GLib's loop, now and later") {
    const FileDescriptor event(::eventfd(0, EFD_CLOEXEC));
    REQUIRE(event);
    GlibMainQueue queue(event.get());
    std::atomic<bool> isIn = false;
    std::thread stopping([&] {
        while (!isIn) {
            std::this_thread::yield();
        }
        ::eventfd_write(event.get(), 1);
    });
    queue.post([&] { isIn = true; });
    queue.run();
    stopping.join();

    queue.every(std::chrono::hours(1), [] {});
    queue.run();
    eventfd_t value = 0;
    CHECK(::eventfd_read(event.get(), &value) == 0);
    CHECK(value == 1);
}

}  // namespace
}  // namespace tessaly::platform
