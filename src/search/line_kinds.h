// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "grammar/todo.h"

namespace tessaly::search {

/// A set of kinds of lines: the four states of a task, and lines that are no task.
class LineKinds {
public:
    constexpr LineKinds() = default;

    static constexpr LineKinds all() { return LineKinds(tasksBits | otherBit); }
    static constexpr LineKinds tasks() { return LineKinds(tasksBits); }

    /// All kinds but the states of a task count as one.
    constexpr void add(grammar::TodoType type) { _bits |= bitOf(type); }
    constexpr void add(LineKinds others) { _bits |= others._bits; }
    constexpr bool has(grammar::TodoType type) const { return (_bits & bitOf(type)) != 0; }
    constexpr bool hasOther() const { return (_bits & otherBit) != 0; }
    constexpr bool hasTasks() const { return (_bits & tasksBits) != 0; }
    constexpr LineKinds with(LineKinds both) const {
        return LineKinds(static_cast<std::uint8_t>(_bits & both._bits));
    }

    bool operator==(const LineKinds&) const = default;

private:
    static constexpr std::uint8_t tasksBits = 0x0F;
    static constexpr std::uint8_t otherBit = 0x10;
    explicit constexpr LineKinds(std::uint8_t bits) : _bits(bits) {}
    static constexpr std::uint8_t bitOf(grammar::TodoType type) {
        return grammar::isTask(type) ? static_cast<std::uint8_t>(1U << static_cast<unsigned>(type))
                                     : otherBit;
    }

    std::uint8_t _bits = 0;
};

}  // namespace tessaly::search
