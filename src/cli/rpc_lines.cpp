// SPDX-License-Identifier: MIT
#include "cli/rpc_lines.h"

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <unistd.h>

namespace tessaly::cli {

namespace {
constexpr std::size_t readBytes = std::size_t{1} << 16U;
}

std::optional<RpcLines::Line> RpcLines::next() {
    while (true) {
        const std::size_t end = _buffer.find('\n', _searched);
        if (end != std::string::npos) {
            return lineUpTo(end);
        }
        if (_buffer.size() - _start > _maxBytes) {
            _isTooLong = true;
            _start = _buffer.size();
        }
        _searched = _buffer.size();
        if (!readMore()) {
            break;
        }
    }
    const bool hasLine = _isTooLong || _start < _buffer.size();
    const bool isWanted = _error.empty() && !_cancelled && !_out.isReaderGone();
    return hasLine && isWanted ? std::optional{lineUpTo(_buffer.size())} : std::nullopt;
}

RpcLines::Line RpcLines::lineUpTo(std::size_t end) {
    const std::string_view text = std::string_view{_buffer}.substr(_start, end - _start);
    const bool isTooLong = _isTooLong || text.size() > _maxBytes;
    _isTooLong = false;
    _start = std::min(end + 1, _buffer.size());
    _searched = _start;
    return {isTooLong ? std::string_view{} : text, isTooLong};
}

void RpcLines::dropReadLines() {
    _buffer.erase(0, _start);
    _searched -= _start;
    _start = 0;
    if (_buffer.size() < readBytes && _buffer.capacity() > 16 * readBytes) {
        _buffer.shrink_to_fit();  // a large line should not stay for good
    }
}

bool RpcLines::readMore() {
    if (!_out.flush() || _out.isReaderGone()) {
        return false;
    }
    dropReadLines();
    const std::size_t before = _buffer.size();
    _buffer.resize(before + readBytes);
    ssize_t count = -1;
    do {
        count = ::read(_descriptor, _buffer.data() + before, readBytes);
    } while (count < 0 && errno == EINTR && !_cancelled);
    if (count < 0 && !_cancelled) {
        _error = std::generic_category().message(errno);
    }
    _buffer.resize(before + static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    return count > 0 && !_cancelled;
}

}  // namespace tessaly::cli
