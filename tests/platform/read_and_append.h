// SPDX-License-Identifier: MIT
#pragma once

#include <fcntl.h>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unistd.h>
#include <utility>

#include <doctest/doctest.h>

#include "platform/file_descriptor.h"
#include "platform/posix_file_system.h"

namespace tessaly::tests {

inline ports::FileContents readOf(const std::string& file) {
    auto contents = platform::PosixFileSystem().read(file);
    REQUIRE(contents);
    return std::move(contents).value();
}

/// What another program does to a file in its place.
inline void appendTo(const std::string& file, std::string_view bytes) {
    const platform::FileDescriptor fd(
        ::open(file.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600));
    if (!fd || ::write(fd.get(), bytes.data(), bytes.size()) != std::ssize(bytes)) {
        throw std::runtime_error("cannot append to " + file);
    }
}

}  // namespace tessaly::tests
