// SPDX-License-Identifier: MIT
#include <string>

#include <doctest/doctest.h>

#include "base/sha256.h"

namespace tessaly::base {
namespace {

// The examples that FIPS 180-4 is published with, and a NUL, which ends no text.
TEST_CASE("digests are those of the standard") {
    struct Row {
        std::string bytes;
        const char* digest;
    };
    for (const Row& row : {
             Row{"", "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
             Row{"abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
             Row{"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
                 "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1"},
             Row{std::string(1000000, 'a'),
                 "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"},
             Row{std::string(1, '\0'),
                 "6e340b9cffb37a989ca544e6bb780a2c78901d3fb33738768511a30617afa01d"},
         }) {
        CAPTURE(row.bytes.size());
        CHECK(sha256(row.bytes) == row.digest);
    }
    CHECK(sha256({}) == sha256(""));
}

}  // namespace
}  // namespace tessaly::base
