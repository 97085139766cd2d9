// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <utility>

namespace tessaly::store {

/// A value that nobody changes any more, for many to hold.
template <class T>
std::shared_ptr<const T> sharedConst(T value) {
    return std::make_shared<const T>(std::move(value));
}

}  // namespace tessaly::store
