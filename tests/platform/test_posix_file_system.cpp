// SPDX-License-Identifier: MIT
#include <atomic>
#include <thread>

#include "platform/file_system_contract.h"
#include "platform/posix_file_system.h"

namespace tessaly::platform {
namespace {

using tests::TempFolder;

TEST_CASE("the kernel's files keep the contract") {
    tests::checkFileSystem([] { return std::make_unique<PosixFileSystem>(); });
}

TEST_CASE("a file that changes while it is read comes as some state of it") {
    const TempFolder folder;
    const std::string file = folder.write("note", "");
    std::atomic<bool> stop{false};
    std::thread writer([&] {
        for (std::uintmax_t size = 0; !stop; size = (size + 30011) % 400000) {
            std::filesystem::resize_file(file, size);
        }
    });
    PosixFileSystem files;
    for (int i = 0; i < 300; ++i) {
        const auto contents = files.read(file);
        REQUIRE(contents);
        CHECK(contents->bytes.size() <= 400000);
        CHECK(contents->bytes.find_first_not_of('\0') == std::string::npos);
    }
    stop = true;
    writer.join();
}

TEST_CASE("a file that holds more than it says is read to its end") {
    PosixFileSystem files;
    const auto contents = files.read("/proc/self/status");
    REQUIRE(contents);
    CHECK(contents->stamp.size == 0);
    CHECK(contents->bytes.starts_with("Name:"));
}

}  // namespace
}  // namespace tessaly::platform
