// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "ports/file_changes.h"

namespace tessaly::tests {

/// Changes of files that a test can look into: before each, `before` is told what is about to be
/// done to which path. It may do something else first, or refuse the change.
class HookedChanges : public ports::FileChanges {
public:
    using Hook = std::function<std::optional<base::Failure>(std::string_view operation,
                                                            const std::string& path)>;

    explicit HookedChanges(ports::FileChanges& changes) : _changes(changes) {}

    Hook before;

    /// A hook for which the disk is full at call `number`, counted from 0, and fine otherwise.
    /// `reached` tells whether it got so far.
    static Hook fullAt(int number, bool& reached) {
        reached = false;
        return [number, &reached, calls = 0](std::string_view, const std::string& path) mutable {
            if (calls++ != number) {
                return std::optional<base::Failure>();
            }
            reached = true;
            return std::optional(
                base::Failure{base::Failure::Kind::noSpace, path + ": no space left"});
        };
    }

    base::Result<base::Done> makeFolders(const std::string& folder) override {
        return hooked("makeFolders", folder, [&] { return _changes.makeFolders(folder); });
    }
    base::Result<base::Done> create(
        const std::string& file, std::string_view bytes,
        ports::Readers readers = ports::Readers::byMask,
        ports::Durability durability = ports::Durability::now) override {
        return hooked("create", file,
                      [&] { return _changes.create(file, bytes, readers, durability); });
    }
    base::Result<base::Done> replace(const std::string& file, const ports::FileContents& read,
                                     std::string_view bytes) override {
        return hooked("replace", file, [&] { return _changes.replace(file, read, bytes); });
    }
    base::Result<base::Done> append(const std::string& file, std::string_view bytes,
                                    ports::Durability durability) override {
        return hooked("append", file, [&] { return _changes.append(file, bytes, durability); });
    }
    base::Result<base::Done> sync(const std::string& file) override {
        return hooked("sync", file, [&] { return _changes.sync(file); });
    }
    base::Result<base::Done> remove(const std::string& file,
                                    const ports::FileContents* read = nullptr) override {
        return hooked("remove", file, [&] { return _changes.remove(file, read); });
    }
    base::Result<base::Done> move(const std::string& from, const std::string& to) override {
        return hooked("move", to, [&] { return _changes.move(from, to); });
    }
    base::Result<base::Done> removeFolder(const std::string& folder) override {
        return hooked("removeFolder", folder, [&] { return _changes.removeFolder(folder); });
    }

private:
    template <class Change>
    base::Result<base::Done> hooked(std::string_view operation, const std::string& path,
                                    Change change) {
        auto refused = before ? before(operation, path) : std::nullopt;
        return refused ? base::Result<base::Done>(*std::move(refused)) : change();
    }

    ports::FileChanges& _changes;
};

}  // namespace tessaly::tests
