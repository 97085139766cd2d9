// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "app/services.h"
#include "base/failure.h"

namespace tessaly::host {

/// What differs from program to program, and from start to start.
struct HostOptions {
    std::optional<std::string> dataFolder;  ///< absolute; named by the user
    std::optional<std::string> now;         ///< a time that stands still, for scripts and tests
    enum class Stay { no, yes } stay = Stay::no;  ///< whether it runs until it is ended
    int stopDescriptor = -1;  ///< when something can be read from it, the main queue stops
    ports::Questions questions;
};

/// This machine as Tessaly's programs see it: the adapters of all ports, and the services over
/// them. Made and destroyed on the main thread; one a process.
class ProgramHost {
public:
    /// Failure, in words for the user: `now` is no time.
    static base::Result<std::unique_ptr<ProgramHost>> make(const HostOptions& options,
                                                           const ports::UserLocale& locale);
    ~ProgramHost();

    app::Services& services();

private:
    struct Adapters;
    explicit ProgramHost(std::unique_ptr<Adapters> adapters);

    std::unique_ptr<Adapters> _adapters;
};

/// The folder of the translations that came with the program; empty when it cannot be told.
std::string catalogueFolder();

/// The path of a file that the user named, absolute: a relative one lies in the working folder.
std::string absolutePath(const std::string& path);

/// The data folder that the user named, `root` on the command line or else in the environment
/// ("TESSALY_ROOT"), absolute; nothing: none.
std::optional<std::string> dataFolderNamed(const std::optional<std::string>& root);

}  // namespace tessaly::host
