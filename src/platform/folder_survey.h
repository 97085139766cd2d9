// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "ports/file_system.h"

namespace tessaly::platform {

/// What a folder's entry is, by its mode.
ports::FolderEntry::Kind kindOfMode(unsigned mode);

/// `FileSystem::survey` and `surveyNames`: one look at each entry, and no file opened.
base::Result<std::vector<ports::SurveyedEntry>> surveyFolder(const std::string& folder);
base::Result<std::vector<std::optional<ports::SurveyedEntry>>> surveyFolder(
    const std::string& folder, std::span<const std::string> names);

}  // namespace tessaly::platform
