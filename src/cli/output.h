// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <string>
#include <string_view>

namespace tessaly::cli {

/// A buffered stream of bytes to a file descriptor. What was not flushed is lost.
class Output {
public:
    /// Once `cancelled` is set, by a signal that interrupts the writing, nobody waits any longer
    /// for a reader who does not read. May be null.
    explicit Output(int descriptor, const std::atomic<bool>* cancelled = nullptr)
        : _descriptor(descriptor), _cancelled(cancelled) {}

    void write(std::string_view bytes);
    void line(std::string_view text);  ///< `text` and a line break

    /// Writes what is left. False: some of it could not be written, now or earlier.
    [[nodiscard]] bool flush();

    /// Nobody reads any longer, or is waited for: what is written has nowhere to go, and that is no
    /// failure.
    bool isReaderGone() const { return _isReaderGone; }
    /// Whether anybody could read what is written next, as far as that can be known without
    /// writing.
    bool hasReader() const;
    /// Why writing failed; empty when it did not.
    const std::string& error() const { return _error; }

private:
    void drain();
    bool isCancelled() const { return _cancelled != nullptr && *_cancelled; }

    int _descriptor;
    const std::atomic<bool>* _cancelled;
    std::string _buffer;
    bool _isReaderGone = false;
    std::string _error;
};

}  // namespace tessaly::cli
