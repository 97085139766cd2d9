// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace tessaly::bench {

/// A kind of line on which a careless reader takes time that grows faster than the line.
struct HostileFamily {
    const char* name;
    const char* unit;  ///< repeated
    const char* end;   ///< stands behind the last unit
};

std::span<const HostileFamily> hostileFamilies();

/// One line of a family, of at least `bytes` and at most a few more.
std::string hostileLine(const HostileFamily& family, std::size_t bytes);

}  // namespace tessaly::bench
