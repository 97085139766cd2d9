// SPDX-License-Identifier: MIT
#include "platform/mapped_file.h"

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>

#include <fmt/format.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include "base/localisation.h"
#include "platform/errno_failure.h"
#include "platform/file_descriptor.h"
#include "platform/file_failures.h"
#include "platform/open_flags.h"

namespace tessaly::platform {

using base::Failure;

namespace {

class Mapping final : public ports::MappedFile {
public:
    Mapping(void* start, std::size_t size) : _start(start), _size(size) {}
    ~Mapping() override { ::munmap(_start, _size); }
    Mapping(const Mapping&) = delete;
    Mapping& operator=(const Mapping&) = delete;

    std::string_view bytes() const override { return {static_cast<const char*>(_start), _size}; }

    void forget(std::string_view part) const override {
        static const auto page = static_cast<std::uintptr_t>(::sysconf(_SC_PAGESIZE));
        const auto begin = reinterpret_cast<std::uintptr_t>(part.data());
        const std::uintptr_t first = (begin + page - 1) / page * page;
        const std::uintptr_t end = (begin + part.size()) / page * page;
        if (first < end) {
            const std::size_t skipped = first - reinterpret_cast<std::uintptr_t>(_start);
            ::madvise(static_cast<char*>(_start) + skipped, end - first, MADV_DONTNEED);
        }
    }

private:
    void* const _start;
    const std::size_t _size;
};

bool isTrusted(const struct stat& status) {
    return status.st_uid == ::geteuid() || status.st_uid == 0;
}

}  // namespace

base::Result<std::shared_ptr<const ports::MappedFile>> mapFile(const std::string& file) {
    const FileDescriptor fd(
        uninterrupted([&] { return ::open(file.c_str(), readFlags | O_NOFOLLOW); }));
    struct stat status;
    if (!fd || ::fstat(fd.get(), &status) != 0) {
        return errnoFailure(errno, file);
    }
    if (!S_ISREG(status.st_mode)) {
        return notAFileFailure(file);
    }
    if (!isTrusted(status)) {
        return errnoFailure(EACCES, file);
    }
    if (status.st_size == 0) {
        return Failure{Failure::Kind::malformed,
                       fmt::format("{}: {}", file, base::tr("the file is empty"))};
    }
    const auto size = static_cast<std::size_t>(status.st_size);
    void* const start = ::mmap(nullptr, size, PROT_READ, MAP_SHARED, fd.get(), 0);
    if (start == MAP_FAILED) {
        return errnoFailure(errno, file);
    }
    return std::shared_ptr<const ports::MappedFile>(std::make_shared<Mapping>(start, size));
}

}  // namespace tessaly::platform
