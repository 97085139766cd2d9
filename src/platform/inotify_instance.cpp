// SPDX-License-Identifier: MIT
#include "platform/inotify_instance.h"

#include <array>
#include <cstddef>
#include <cstring>
#include <unistd.h>

#include <sys/inotify.h>

namespace tessaly::platform {

namespace {

constexpr std::size_t eventBufferBytes = 65536;

std::vector<FolderEvent> eventsIn(const char* bytes, std::size_t size) {
    std::vector<FolderEvent> events;
    for (std::size_t at = 0; at + sizeof(inotify_event) <= size;) {
        inotify_event head;
        std::memcpy(&head, bytes + at, sizeof head);
        at += sizeof head;
        // The name is filled up with NULs.
        const std::size_t length = ::strnlen(bytes + at, head.len);
        events.push_back({head.wd, head.mask, std::string(bytes + at, length)});
        at += head.len;
    }
    return events;
}

}  // namespace

InotifyInstance::InotifyInstance() : _fd(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {}

int InotifyInstance::watch(const std::string& folder, std::uint32_t mask) const {
    return ::inotify_add_watch(_fd.get(), folder.c_str(), mask | IN_ONLYDIR | IN_DONT_FOLLOW);
}

void InotifyInstance::unwatch(int watch) const {
    ::inotify_rm_watch(_fd.get(), watch);
}

std::vector<FolderEvent> InotifyInstance::read() const {
    std::array<char, eventBufferBytes> buffer;
    const auto bytes =
        uninterrupted([&] { return ::read(_fd.get(), buffer.data(), buffer.size()); });
    return bytes > 0 ? eventsIn(buffer.data(), static_cast<std::size_t>(bytes))
                     : std::vector<FolderEvent>();
}

}  // namespace tessaly::platform
