// SPDX-License-Identifier: MIT
#include "tasks/note_step.h"

#include <algorithm>
#include <utility>

#include "base/localisation.h"
#include "base/sha256.h"
#include "store/note_document.h"
#include "store/paths.h"
#include "tasks/byte_change.h"

namespace tessaly::tasks {
namespace {

using base::Failure;
using base::Result;

bool onlyAppends(const NoteStep& step) {
    return std::all_of(step.edits.begin(), step.edits.end(),
                       [](const LineEdit& edit) { return edit.kind == LineEdit::Kind::append; });
}

bool mayMakeNote(const NoteStep& step) {
    return step.hashBefore.empty() && !step.edits.empty() && onlyAppends(step);
}

Failure ofNote(const NoteStep& step, const Failure& failure) {
    return {failure.kind, nameOf(step) + ": " + failure.description};
}

NoteStep withBytes(NoteStep step, const NoteBytes& before, const NoteBytes& after) {
    step.hashBefore = hashOf(before);
    step.hashAfter = hashOf(after);
    step.change = changeBetween(before.value_or(""), after.value_or(""));
    return step;
}

}  // namespace

std::string hashOf(const NoteBytes& bytes) {
    return bytes ? base::sha256(*bytes) : std::string();
}

Result<NoteStep> located(const NoteStep& step, const NoteBytes& now, Strictness strictness) {
    if (!now && !mayMakeNote(step)) {
        return ofNote(step, {Failure::Kind::notFound, base::tr("the note is not there")});
    }
    NoteStep found = step;
    const store::TextEdit edit = [&](std::string_view text) -> Result<std::optional<std::string>> {
        auto edited = withEdits(text, step.edits, strictness);
        if (!edited) {
            return edited.failure();
        }
        EditedLines lines = *std::move(edited);
        found.edits = std::move(lines.edits);
        return std::optional(std::move(lines.text));
    };
    const auto bytes = store::editedBytes(now.value_or(""), edit);
    if (!bytes) {
        return ofNote(step, bytes.failure());
    }
    return withBytes(std::move(found), now, *bytes);
}

Result<NoteStep> adapted(const NoteStep& step, const NoteBytes& now, Strictness strictness) {
    const bool isSame = hashOf(now) == step.hashBefore;
    return isSame && hashOf(bytesAfter(step, now)) == step.hashAfter
               ? Result<NoteStep>(step)
               : located(step, now, strictness);
}

NoteBytes bytesAfter(const NoteStep& step, const NoteBytes& before) {
    return step.hashAfter.empty() ? NoteBytes() : changed(before.value_or(""), step.change);
}

NoteStep inverse(const NoteStep& step) {
    NoteStep back = step;
    back.edits = inverse(std::span<const LineEdit>(step.edits));
    std::swap(back.hashBefore, back.hashAfter);
    back.change = inverse(step.change);
    return back;
}

bool seemsMade(const NoteStep& step, std::string_view bytes) {
    const auto text = store::decodedText(bytes);
    return text && seemMade(*text, step.edits);
}

std::string nameOf(const NoteStep& step) {
    return store::joined(base::folderName(step.type), step.filename);
}

}  // namespace tessaly::tasks
