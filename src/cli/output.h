// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace tessaly::cli {

/// A buffered stream of bytes to a file descriptor. What was not flushed is lost.
class Output {
public:
    explicit Output(int descriptor) : _descriptor(descriptor) {}

    void write(std::string_view bytes);
    void line(std::string_view text);  ///< `text` and a line break

    /// Writes what is left. False: some of it could not be written, now or earlier.
    [[nodiscard]] bool flush();

    /// Nobody reads any longer: what is written has nowhere to go, and that is no failure.
    bool isReaderGone() const { return _isReaderGone; }
    /// Whether anybody could read what is written next, as far as that can be known without
    /// writing.
    bool hasReader() const;
    /// Why writing failed; empty when it did not.
    const std::string& error() const { return _error; }

private:
    void drain();

    int _descriptor;
    std::string _buffer;
    bool _isReaderGone = false;
    std::string _error;
};

}  // namespace tessaly::cli
