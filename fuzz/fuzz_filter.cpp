// SPDX-License-Identifier: MIT
// Any bytes are a filter's file. One that is read must be one that we can write, and read again.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "base/failure.h"
#include "search/filter_plist.h"

namespace {

using namespace tessaly;

void insist(bool holds, const char* what) {
    if (!holds) {
        std::fprintf(stderr, "%s\n", what);
        std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto read = search::filterFromPlist({reinterpret_cast<const char*>(data), size});
    if (!read) {
        insist(read.failure().kind == base::Failure::Kind::malformed &&
                   !read.failure().description.empty(),
               "a refusal without words");
        return 0;
    }
    const auto written = search::filterToPlist(*read);
    insist(written.ok(), "a filter that was read cannot be written");
    const auto again = search::filterFromPlist(*written);
    insist(again.ok() && *again == *read, "what is written reads as something else");
    return 0;
}
