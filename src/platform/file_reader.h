// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string_view>

#include "ports/file_system.h"

namespace tessaly::platform {

/// The bytes of one file after another. It takes over the thread's buffer for as long as it lives,
/// so that a reader made inside another's sink has one of its own.
class FileReader {
public:
    FileReader();
    ~FileReader();
    FileReader(const FileReader&) = delete;
    FileReader& operator=(const FileReader&) = delete;

    /// Bytes that are valid until the next reading.
    struct Contents {
        std::string_view bytes;
        /// Taken before the bytes: a change in between is seen as a later one, never missed.
        ports::FileStamp stamp;
    };

    /// No error of the system's: the file is a sync client's placeholder.
    static constexpr int placeholderError = -1;

    /// Reads a file that is open, from its start. 0, or the error's number: `EINVAL` for what is no
    /// regular file, `EFBIG` for one above `maxFileBytes`, or `placeholderError`.
    int read(int fd, Contents& contents);

    /// The same; `beforeWaiting` is called once if bytes must be fetched from the disk, before they
    /// are waited for.
    int read(int fd, Contents& contents, const std::function<void()>& beforeWaiting);

private:
    struct Buffer {
        std::unique_ptr<char[]> bytes;
        std::size_t capacity = 0;
    };
    static Buffer& threadBuffer();
    void grow(std::size_t capacity, std::size_t used);
    int prepare(int fd, ports::FileStamp& stamp);
    template <class ReadSome>
    int readToEnd(std::size_t expected, std::size_t& size, const ReadSome& readSome);

    Buffer _buffer;
    bool _canAskMemory = true;  ///< the file system tells what is in memory
};

}  // namespace tessaly::platform
