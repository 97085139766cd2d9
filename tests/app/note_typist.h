// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

#include "app/open_note.h"
#include "app/stepped_planner.h"

namespace tessaly::tests {

inline constexpr const char* plansFile = "Notes/Plans.txt";
inline const app::NoteAddress plans{base::NoteType::note, "Plans.txt", std::nullopt};

/// An editor of one note, in which a test types.
class NoteTypist {
public:
    explicit NoteTypist(SteppedPlanner& planner, const app::NoteAddress& address = plans)
        : _note(std::make_unique<app::OpenNote>(planner.services(), address, handlers())) {
        text = _note->text();
    }

    app::OpenNote& note() { return *_note; }
    void close() { _note.reset(); }

    void type(const std::string& all) {
        text = all;
        _note->edited();
    }

    std::string text;
    int merges = 0;
    int gone = 0;
    std::string states;  // as told: "s", "u", "f"

private:
    app::OpenNote::Handlers handlers() {
        return {.currentText = [this] { return text; },
                .onMerged =
                    [this](const std::string& merged) {
                        type(merged);  // as an editor's own signal would have it
                        ++merges;
                    },
                .onSaveState =
                    [this](app::OpenNote::SaveState state) {
                        states += "suf"[static_cast<std::size_t>(state)];
                    },
                .onGone = [this] { ++gone; }};
    }

    std::unique_ptr<app::OpenNote> _note;
};

}  // namespace tessaly::tests
