// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <mutex>
#include <string>

#include "platform/posix_file_changes.h"
#include "platform/posix_file_system.h"
#include "ports/user_defaults.h"

namespace tessaly::platform {

/// A store in one JSON file that holds an object, for people to read and edit too: the order of the
/// keys, and values that are none of ours, stay. Without a file, or with an empty one, the store is
/// empty; the first value makes the file and the folders above it. The file is read anew whenever
/// it has changed. One that is damaged (unreadable, no JSON, no object) reads as empty, and nothing
/// is stored until it has been mended or taken away. Changes by several processes at the same time
/// follow one another.
class JsonUserDefaults : public ports::UserDefaults {
public:
    /// `file`: an absolute path, which need not exist.
    explicit JsonUserDefaults(std::string file);
    ~JsonUserDefaults() override;

    std::optional<ports::DefaultsValue> valueForKey(std::string_view key) override;
    base::Result<base::Done> setValue(std::string_view key,
                                      const ports::DefaultsValue& value) override;
    base::Result<base::Done> removeValue(std::string_view key) override;
    std::vector<std::string> keys() override;
    std::optional<base::Failure> problem() override;

private:
    struct State;
    const State& current();
    State load();
    template <class Change>
    base::Result<base::Done> change(Change apply);

    const std::string _file;
    PosixFileSystem _files;
    PosixFileChanges _changes;
    std::mutex _mutex;
    std::unique_ptr<State> _state;  ///< what was read last; guarded by `_mutex`
};

}  // namespace tessaly::platform
