// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

#include "base/failure.h"
#include "ports/file_system.h"

namespace tessaly::store {

/// "BASE.EXTENSION"; the base alone without an extension.
std::string withExtension(std::string_view base, std::string_view extension);

/// The base name to try in place `counter`: `base` itself, then "base 2", "base 3" …; one too long
/// for that loses characters at its end.
std::string numberedBase(std::string_view base, int counter, std::string_view extension);

/// The names that a new file in a folder cannot have. Names collide when they are the same in
/// composed form after case folding. A sync client's placeholder takes the name of its file.
class TakenNames {
public:
    /// A folder that is not there takes none.
    static base::Result<TakenNames> in(ports::FileSystem& files, const std::string& folder);

    void add(const std::string& name);

    /// The entry that `name` collides with, empty where that has not been downloaded; null: none.
    const std::string* holder(std::string_view name) const;

    /// The first base name of `numberedBase` that is free.
    std::string unique(std::string_view base, std::string_view extension) const;

private:
    std::unordered_map<std::string, std::string> _holders;  ///< by the folded name
};

}  // namespace tessaly::store
