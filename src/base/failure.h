// SPDX-License-Identifier: MIT
#pragma once

#include <cassert>
#include <string>
#include <utility>
#include <variant>

namespace tessaly::base {

/// Why the outside world did not do what it was asked. `description` is the platform's own words,
/// with the path or key they are about; the caller that owns a fixed message logs it before them.
struct Failure {
    enum class Kind {
        notFound,
        exists,
        changed,  ///< what was to be replaced is no longer what was read
        denied,
        notAFile,  ///< a folder, pipe, socket or device where a regular file was expected
        tooLarge,
        noSpace,
        outside,    ///< the name leads out of the folder that it must stay in
        malformed,  ///< read, but not in the form that was expected
        cancelled,
        unavailable,  ///< the service is not there, or not now
        other,
    };

    Kind kind = Kind::other;
    std::string description;
};

/// The value of an operation that has none.
struct Done {};

/// A value, or why there is none. An empty value means: looked, and it is empty.
template <class T>
class [[nodiscard]] Result {
public:
    Result(T value) : _state(std::in_place_index<0>, std::move(value)) {}
    Result(Failure failure) : _state(std::in_place_index<1>, std::move(failure)) {}

    bool ok() const { return _state.index() == 0; }
    explicit operator bool() const { return ok(); }

    const T& value() const& {
        assert(ok());
        return *std::get_if<0>(&_state);
    }
    T&& value() && {
        assert(ok());
        return std::move(*std::get_if<0>(&_state));
    }
    const T& operator*() const& { return value(); }
    T&& operator*() && { return std::move(*this).value(); }
    const T* operator->() const { return &value(); }

    const Failure& failure() const {
        assert(!ok());
        return *std::get_if<1>(&_state);
    }

private:
    std::variant<T, Failure> _state;
};

}  // namespace tessaly::base
