// SPDX-License-Identifier: MIT
#include "store/earlier_texts.h"

namespace tessaly::store {

std::size_t EarlierTexts::costOf(const Name& name, const HeldText& text) {
    constexpr std::size_t nodes = 256;  // of the maps, about
    return text.text.view().size() + name.second.size() + nodes;
}

// A clock that was set back starts a burst anew, rather than none for hours.
bool EarlierTexts::goesOn(const Note& note, base::Instant now) const {
    return note.changed && now - *note.changed <= _limits.burst &&
           *note.changed - now <= _limits.burst;
}

void EarlierTexts::remember(base::NoteType type, std::string_view filename, std::string_view text,
                            base::Instant now) {
    const auto note = _notes.try_emplace(Name(type, filename)).first;
    const bool isBurst = goesOn(note->second, now);
    note->second.changed = now;
    HeldText held{base::SharedText(), now};
    const std::size_t cost = costOf(note->first, held) + text.size();
    if (isBurst) {
        return;
    }
    if (cost > _limits.bytes) {
        forgetIfEmpty(note);
        return;
    }
    held.text = base::SharedText(std::string(text));
    note->second.texts.push_back({++_lastAge, std::move(held)});
    _byAge.emplace(_lastAge, note);
    _bytes += cost;
    if (note->second.texts.size() > _limits.textsOfNote) {
        dropOldestOf(note);
    }
    while (_bytes > _limits.bytes) {
        dropOldestOf(_byAge.begin()->second);
    }
}

void EarlierTexts::dropOldestOf(Notes::iterator note) {
    const Kept& oldest = note->second.texts.front();
    _bytes -= costOf(note->first, oldest.text);
    _byAge.erase(oldest.age);
    note->second.texts.pop_front();
    forgetIfEmpty(note);
}

void EarlierTexts::forgetIfEmpty(Notes::iterator note) {
    if (note->second.texts.empty()) {
        _notes.erase(note);
    }
}

std::vector<HeldText> EarlierTexts::take(base::NoteType type, std::string_view filename) {
    std::vector<HeldText> texts;
    const auto note = _notes.find(Name(type, filename));
    if (note == _notes.end()) {
        return texts;
    }
    for (Kept& kept : note->second.texts) {
        _bytes -= costOf(note->first, kept.text);
        _byAge.erase(kept.age);
        texts.push_back(std::move(kept.text));
    }
    note->second.texts.clear();
    return texts;
}

}  // namespace tessaly::store
