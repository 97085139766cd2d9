// SPDX-License-Identifier: MIT
#include "cli/read_input.h"

#include <array>
#include <cerrno>
#include <system_error>
#include <unistd.h>

#include "base/localisation.h"
#include "host/program_host.h"

namespace tessaly::cli {

namespace {

using base::Failure;

base::Result<std::string> readStandardInput(const std::atomic<bool>& cancelled) {
    std::string bytes;
    std::array<char, 1U << 16> part{};
    while (true) {
        const ssize_t count = ::read(STDIN_FILENO, part.data(), part.size());
        if (cancelled) {
            return Failure{Failure::Kind::cancelled, {}};
        }
        if (count == 0) {
            return bytes;
        }
        if (count < 0 && errno != EINTR) {
            return Failure{Failure::Kind::other, std::generic_category().message(errno)};
        }
        bytes.append(part.data(), count < 0 ? 0 : static_cast<std::size_t>(count));
        if (bytes.size() > ports::maxFileBytes) {
            return Failure{Failure::Kind::tooLarge, base::tr("standard input is too large")};
        }
    }
}

}  // namespace

base::Result<std::string> readInput(ports::FileSystem& files, const std::string& path,
                                    const std::atomic<bool>& cancelled) {
    if (path == "-") {
        return readStandardInput(cancelled);
    }
    auto contents = files.read(host::absolutePath(path));
    if (!contents) {
        return contents.failure();
    }
    return std::move(contents).value().bytes;
}

}  // namespace tessaly::cli
