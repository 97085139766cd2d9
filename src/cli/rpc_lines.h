// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "cli/output.h"

namespace tessaly::cli {

/// The lines of a stream of bytes, one after the other. What was answered is flushed before it is
/// waited for more, so that nobody waits for an answer that lies here.
class RpcLines {
public:
    static constexpr std::size_t maxLineBytes = std::size_t{32} << 20U;

    struct Line {
        std::string_view text;  ///< without its "\n"; valid until the next line is asked for
        /// The line was longer than the limit; it was passed over up to its end.
        bool isTooLong = false;
    };

    RpcLines(int descriptor, Output& out, const std::atomic<bool>& cancelled,
             std::size_t maxBytes = maxLineBytes)
        : _descriptor(descriptor), _out(out), _cancelled(cancelled), _maxBytes(maxBytes) {}

    /// Nothing: the end of the stream, also when it cannot be read further (see `error`), or nobody
    /// reads the answers, or the user has cancelled. A last line may have no "\n".
    std::optional<Line> next();

    /// Why reading ended early; empty when it did not.
    const std::string& error() const { return _error; }

private:
    bool readMore();
    void dropReadLines();
    Line lineUpTo(std::size_t end);

    int _descriptor;
    Output& _out;
    const std::atomic<bool>& _cancelled;
    const std::size_t _maxBytes;  ///< of a line
    std::string _buffer;
    std::size_t _start = 0;     ///< of the next line in the buffer
    std::size_t _searched = 0;  ///< no line break stands before
    bool _isTooLong = false;    ///< the line in the buffer has lost bytes
    std::string _error;
};

}  // namespace tessaly::cli
