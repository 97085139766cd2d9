// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <string_view>

#include "store/note_index.h"

namespace tessaly::store {

/// Lets the pages of an index go whose texts one thread has looked at, a megabyte at a time, so
/// that going through all of them does not take their size of memory.
class SeenTexts {
public:
    /// Null: nothing will be added.
    explicit SeenTexts(const NoteIndex* index) : _index(index) {}
    ~SeenTexts() { forget(); }
    SeenTexts(const SeenTexts&) = delete;
    SeenTexts& operator=(const SeenTexts&) = delete;

    /// A text of the index that is no longer needed.
    void add(std::string_view text) {
        if (text.empty()) {
            return;
        }
        const char* const end = text.data() + text.size();
        if (_start != nullptr && isNear(text.data()) && isNear(end)) {
            _start = std::min(_start, text.data(), std::less<>());
            _end = std::max(_end, end, std::less<>());
        } else {
            forget();
            _start = text.data();
            _end = end;
        }
    }

private:
    static constexpr std::ptrdiff_t reach = 1 << 20;

    // All lies in one mapped file.
    bool isNear(const char* place) const { return _end - place < reach && place - _start < reach; }

    void forget() {
        if (_start != nullptr) {
            _index->forget({_start, static_cast<std::size_t>(_end - _start)});
        }
    }

    const NoteIndex* _index;
    const char* _start = nullptr;
    const char* _end = nullptr;
};

}  // namespace tessaly::store
