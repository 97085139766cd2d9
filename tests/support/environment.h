// SPDX-License-Identifier: MIT
#pragma once

#include <cstdlib>
#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <utility>

namespace tessaly::tests {

/// Sets variables of the environment, or takes them away, until its end. One thread only.
class Environment {
public:
    using Value = std::optional<std::string>;  ///< nothing: not set

    Environment(std::initializer_list<std::pair<const char*, Value>> values) {
        for (const auto& [name, value] : values) {
            const char* before = std::getenv(name);
            _before[name] = before != nullptr ? Value(before) : std::nullopt;
            set(name, value);
        }
    }
    ~Environment() {
        for (const auto& [name, value] : _before) {
            set(name, value);
        }
    }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

private:
    static void set(const std::string& name, const Value& value) {
        if (value) {
            ::setenv(name.c_str(), value->c_str(), 1);
        } else {
            ::unsetenv(name.c_str());
        }
    }

    std::map<std::string, Value> _before;
};

}  // namespace tessaly::tests
