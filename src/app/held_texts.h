// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <vector>

#include "app/services.h"
#include "base/day.h"
#include "store/earlier_texts.h"

namespace tessaly::app {

/// Puts texts that notes held before others changed them into the history, as of the time when
/// they were replaced; of unknown time are those of the start-up index. Logs a failure, once for
/// all: "could not keep earlier texts of notes in conflict: " and why. Any thread.
void keepHeldTexts(Services& services, const std::vector<store::HeldTexts>& held);

/// When the start-up index that lies there was written; nothing: there is none.
std::optional<base::Instant> indexTime(Services& services);

}  // namespace tessaly::app
