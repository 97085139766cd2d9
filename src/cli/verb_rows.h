// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

#include "base/localisation.h"
#include "cli/verbs.h"

namespace tessaly::cli {

/// The table of verbs by topic: those that read notes, those that search them,
/// saved filters, the sidebar, those that change tasks, those that
/// change notes, those for editors, and the rest.
std::span<const VerbRow> readingVerbs();
std::span<const VerbRow> searchVerbs();
std::span<const VerbRow> filterVerbs();
std::span<const VerbRow> sideBarVerbs();
std::span<const VerbRow> taskVerbs();
std::span<const VerbRow> writingVerbs();
std::span<const VerbRow> editingVerbs();
std::span<const VerbRow> otherVerbs();

/// The most that a verb takes where any number will do; shells count so far, too.
inline constexpr std::size_t manyArguments = 1000;

/// Days that are completed by their words.
inline constexpr std::string_view dayWords = "today tomorrow yesterday";

inline constexpr OptionRow dryRunOption{
    "--dry-run", nullptr, base::N_("change nothing, and print what would change in the files")};

}  // namespace tessaly::cli
