// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "base/normalise.h"
#include "store/foreign_names.h"

namespace tessaly::store {

/// The notes of one folder by their file names, found whether these are composed or not.
class NotesByName {
public:
    void add(const std::string& name) { _names.emplace(base::nfc(name), name); }

    /// Of which of the notes `name` is a conflict copy; `original` is spelt as it was added.
    std::optional<ConflictName> conflictCopy(std::string_view name) const {
        auto copy = conflictCopyOf(name, [this](std::string_view original) {
            return _names.contains(std::string(original));
        });
        if (copy) {
            copy->original = _names.at(copy->original);
        }
        return copy;
    }

private:
    std::unordered_map<std::string, std::string> _names;  // by the composed name
};

}  // namespace tessaly::store
