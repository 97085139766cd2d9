// SPDX-License-Identifier: MIT
#include "cli/output.h"

#include <cerrno>
#include <poll.h>
#include <system_error>
#include <unistd.h>

namespace tessaly::cli {

namespace {
constexpr std::size_t bufferBytes = 1U << 16;
}

void Output::write(std::string_view bytes) {
    if (_isReaderGone || !_error.empty()) {
        return;
    }
    _buffer += bytes;
    if (_buffer.size() >= bufferBytes) {
        drain();
    }
}

void Output::line(std::string_view text) {
    write(text);
    write("\n");
}

bool Output::flush() {
    drain();
    return _error.empty();
}

bool Output::hasReader() const {
    pollfd state{_descriptor, 0, 0};
    return ::poll(&state, 1, 0) <= 0 || (state.revents & POLLERR) == 0;
}

void Output::drain() {
    std::string_view left = _buffer;
    while (!left.empty() && !_isReaderGone && _error.empty()) {
        const ssize_t written = ::write(_descriptor, left.data(), left.size());
        if (written >= 0) {
            left.remove_prefix(static_cast<std::size_t>(written));
            // Less than all was taken: the writing was interrupted while it waited.
            _isReaderGone = !left.empty() && isCancelled();
        } else if (errno == EPIPE || (errno == EINTR && isCancelled())) {
            _isReaderGone = true;
        } else if (errno != EINTR) {
            _error = std::generic_category().message(errno);
        }
    }
    _buffer.clear();
}

}  // namespace tessaly::cli
