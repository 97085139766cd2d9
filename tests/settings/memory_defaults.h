// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <set>
#include <string>

#include "ports/user_defaults.h"

namespace tessaly::tests {

/// A store that forgets with its end, and refuses to store when it is told to.
class MemoryDefaults : public ports::UserDefaults {
public:
    std::map<std::string, ports::DefaultsValue, std::less<>> values;
    std::set<std::string> foreign;  ///< keys whose values are of no form that is ours
    std::optional<base::Failure> refusal;

    std::optional<ports::DefaultsValue> valueForKey(std::string_view key) override {
        const auto found = values.find(key);
        return found == values.end() ? std::nullopt : std::optional(found->second);
    }

    base::Result<base::Done> setValue(std::string_view key,
                                      const ports::DefaultsValue& value) override {
        if (refusal) {
            return *refusal;
        }
        foreign.erase(std::string(key));
        values.insert_or_assign(std::string(key), value);
        return base::Done{};
    }

    base::Result<base::Done> removeValue(std::string_view key) override {
        if (refusal) {
            return *refusal;
        }
        foreign.erase(std::string(key));
        values.erase(std::string(key));
        return base::Done{};
    }

    std::vector<std::string> keys() override {
        std::set<std::string> all = foreign;
        for (const auto& [key, value] : values) {
            all.insert(key);
        }
        return {all.begin(), all.end()};
    }

    std::optional<base::Failure> problem() override { return refusal; }
};

}  // namespace tessaly::tests
