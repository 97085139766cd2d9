// SPDX-License-Identifier: MIT
#include "app/held_texts.h"

#include <string>

#include "base/log.h"
#include "store/paths.h"

namespace tessaly::app {

namespace {

base::Result<base::Done> keep(Services& services, const store::HeldTexts& note,
                              base::Instant ofIndex) {
    const auto path = services.dataStore().pathOf(note.type, note.filename);
    if (!path) {
        return path.failure();
    }
    for (const store::HeldText& held : note.texts) {
        auto kept =
            services.history().keepHeld(*path, held.text.view(), held.until.value_or(ofIndex));
        if (!kept) {
            return kept;
        }
    }
    return base::Done{};
}

}  // namespace

void keepHeldTexts(Services& services, const std::vector<store::HeldTexts>& held) {
    const base::Instant ofIndex = indexTime(services).value_or(services.ports().clock.now());
    std::optional<base::Failure> failure;
    for (const store::HeldTexts& note : held) {
        if (const auto kept = keep(services, note, ofIndex); !kept && !failure) {
            failure = kept.failure();
        }
    }
    if (failure) {
        base::log("could not keep earlier texts of notes in conflict: ", failure->description);
    }
}

std::optional<base::Instant> indexTime(Services& services) {
    const auto place = indexPlace(services);
    if (!place) {
        return std::nullopt;
    }
    const std::string name(store::lastComponent(place->file));
    const auto found = services.ports().files.surveyNames(store::parentOf(place->file), {&name, 1});
    return found && found->front() ? std::optional(found->front()->stamp.modified) : std::nullopt;
}

}  // namespace tessaly::app
