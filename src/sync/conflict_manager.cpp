// SPDX-License-Identifier: MIT
#include "sync/conflict_manager.h"

#include <utility>

#include <fmt/format.h>

#include "base/localisation.h"
#include "base/log.h"

namespace tessaly::sync {

using base::Failure;
using base::Result;

namespace {

void logFailure(const Failure& failure) {
    base::log("error while resolving conflicts ", failure.description);
}

template <class T>
bool logged(const Result<T>& result) {
    if (!result) {
        logFailure(result.failure());
    }
    return result.ok();
}

std::string modifiedOn(const std::string& date) {
    constexpr std::string_view place = "%@";
    std::string form = base::tr(" %@ on:");
    if (const std::size_t at = form.find(place); at != std::string::npos) {
        form.replace(at, place.size(), date);
    }
    return base::tr("Modified") + form;
}

}  // namespace

void ConflictManager::setSelectedNoteUrl(std::optional<std::string> url) {
    _selectedNoteUrl = std::move(url);
    _conflictedVersionSelectionIndex = 0;
    _conflictedNotes.clear();
    _texts.clear();
}

void ConflictManager::checkForConflicts() {
    look();
}

/// False: it could not be found out whether there is a conflict.
bool ConflictManager::look() {
    base::logRoutine("checking for conflicts again");
    _conflictedVersionSelectionIndex = 0;
    _conflictedNotes.clear();
    _texts.clear();
    auto versions = versionsOfSelected();
    const bool isKnown = logged(versions);
    if (isKnown && !versions->unresolved.empty()) {
        _conflictedNotes = (*std::move(versions)).unresolved;
        if (versions->current) {
            _conflictedNotes.insert(_conflictedNotes.begin(), *versions->current);
        }
    }
    for (const ports::FileVersion& version : _conflictedNotes) {
        _texts.push_back(_tools.versions.contents(version));
    }
    if (!_conflictedNotes.empty()) {
        updateVersionSelection(true);
    } else if (_delegate != nullptr) {
        _delegate->hideConflictBar();
    }
    return isKnown;
}

/// Failure also: there are copies, but the current version is neither there nor gone.
Result<ItemVersions> ConflictManager::versionsOfSelected() const {
    if (!_selectedNoteUrl) {
        return ItemVersions{Failure{Failure::Kind::notFound, {}}, {}};
    }
    auto versions = _tools.versions.versionsOfItem(*_selectedNoteUrl);
    const bool isUsable = !versions || versions->unresolved.empty() || versions->current ||
                          versions->current.failure().kind == Failure::Kind::notFound;
    return isUsable ? std::move(versions) : versions->current.failure();
}

void ConflictManager::updateVersionSelection(bool isConflict) {
    base::logRoutine("update version selection isconflict: ", isConflict ? "true" : "false");
    const auto index = static_cast<std::size_t>(_conflictedVersionSelectionIndex);
    if (isConflict && index < _conflictedNotes.size() && _delegate != nullptr) {
        _delegate->showVersion(bar(), _texts[index]);
    }
}

ConflictBar ConflictManager::bar() const {
    const int index = _conflictedVersionSelectionIndex;
    const ports::FileVersion& version = _conflictedNotes[static_cast<std::size_t>(index)];
    const base::LocalTime date = _tools.clock.local(version.modificationDate);
    return {fmt::format("{}/{}", index + 1, _conflictedNotes.size()),
            modifiedOn(_tools.formats.dateAndTime(date)), version.localizedNameOfSavingComputer};
}

void ConflictManager::showOtherVersion() {
    const auto next = static_cast<std::size_t>(_conflictedVersionSelectionIndex) + 1;
    _conflictedVersionSelectionIndex = next < _conflictedNotes.size() ? static_cast<int>(next) : 0;
    updateVersionSelection(!_conflictedNotes.empty());
}

bool ConflictManager::chooseThisVersion() {
    const auto index = static_cast<std::size_t>(_conflictedVersionSelectionIndex);
    if (index >= _conflictedNotes.size()) {
        return look() && _conflictedNotes.empty();
    }
    base::logRoutine(_conflictedNotes[index].isConflict ? "Resolving other version"
                                                        : "Resolving current version");
    if (!logged(_texts[index])) {
        look();
        return false;
    }
    return resolve(*_texts[index]);
}

bool ConflictManager::chooseText(std::string_view text) {
    if (_conflictedNotes.empty()) {
        return look() && _conflictedNotes.empty();
    }
    base::logRoutine("Resolving other version");
    return resolve(text);
}

bool ConflictManager::resolve(std::string_view text) {
    // The note holds the text before the first copy goes, so that at any moment it is in a file.
    const bool isDone = replaceCurrent(text) && removeOthers();
    return look() && isDone && _conflictedNotes.empty();
}

bool ConflictManager::replaceCurrent(std::string_view text) {
    const ports::FileVersion& first = _conflictedNotes.front();
    if (first.isConflict) {
        return logged(_tools.versions.replaceItem(*_selectedNoteUrl, text, nullptr));
    }
    return logged(_texts.front()) &&
           logged(_tools.versions.replaceItem(first.url, text, &*_texts.front()));
}

bool ConflictManager::removeOthers() {
    bool areAllGone = true;
    for (std::size_t i = 0; i < _conflictedNotes.size(); ++i) {
        const ports::FileVersion& version = _conflictedNotes[i];
        if (version.isConflict) {
            const bool isGone =
                logged(_texts[i]) && logged(_tools.versions.removeVersion(version, *_texts[i]));
            areAllGone = areAllGone && isGone;
        }
    }
    return areAllGone;
}

}  // namespace tessaly::sync
