// SPDX-License-Identifier: MIT
#include "app/linked_note.h"

#include <utility>

#include "base/normalise.h"
#include "base/utf8.h"

namespace tessaly::app {

namespace {

/// How well a note answers to a name; the first are the best.
enum class NameFit { title, file, titleInOtherCase, fileInOtherCase, none };

class SoughtName {
public:
    explicit SoughtName(std::string_view name)
        : _name(base::nfc(name)), _folded(base::foldedForNames(name)) {}

    NameFit fitOf(const store::LoadedNote& note) const {
        const std::string_view filename = note.filename;
        const std::string_view path = filename.substr(0, filename.rfind('.'));
        const std::string_view file = path.substr(path.rfind('/') + 1);
        if (isName(note.title)) {
            return NameFit::title;
        }
        if (isName(path) || isName(file)) {
            return NameFit::file;
        }
        if (isFolded(note.title)) {
            return NameFit::titleInOtherCase;
        }
        return isFolded(path) || isFolded(file) ? NameFit::fileInOtherCase : NameFit::none;
    }

private:
    bool isName(std::string_view text) const {
        return text == _name || (!base::isAscii(text) && base::nfc(text) == _name);
    }
    /// Folding leaves ASCII its length, which tells most names apart at once.
    bool isFolded(std::string_view text) const {
        const bool mayBe =
            text.size() == _folded.size() || !base::isAscii(text) || !base::isAscii(_folded);
        return mayBe && base::foldedForNames(text) == _folded;
    }

    const std::string _name;
    const std::string _folded;
};

}  // namespace

std::optional<std::string> noteOfTitle(const store::GeneralNotes& notes, std::string_view title) {
    const SoughtName name(base::trimmed(title));
    const store::LoadedNote* best = nullptr;
    NameFit bestFit = NameFit::none;
    notes.forEach([&](const store::GeneralNotes::Pointer& each) {
        const store::LoadedNote& note = each->note;
        const NameFit fit = note.isFolder ? NameFit::none : name.fitOf(note);
        const bool isLater =
            best != nullptr && fit == bestFit && note.contentChangedDate > best->contentChangedDate;
        if (fit != NameFit::none && (fit < bestFit || isLater)) {
            best = &note;
            bestFit = fit;
        }
    });
    return best == nullptr ? std::nullopt : std::optional(best->filename);
}

std::optional<std::string> noteOfFile(const store::GeneralNotes& notes, std::string_view filename) {
    for (const std::string_view extension : {"", ".txt", ".md"}) {
        const std::string name = std::string(filename) + std::string(extension);
        for (const std::string& spelling : {name, base::nfc(name)}) {
            const auto found = notes.find(spelling);
            if (found && !found->note.isFolder) {
                return found->note.filename;
            }
        }
    }
    return std::nullopt;
}

}  // namespace tessaly::app
