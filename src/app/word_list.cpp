// SPDX-License-Identifier: MIT
#include "app/word_list.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "base/utf8.h"

namespace tessaly::app {

namespace {

using base::Done;
using base::Failure;

std::vector<std::string> wordsIn(std::string_view text) {
    std::vector<std::string> words;
    text = base::withoutByteOrderMark(text);
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view word = base::trimmed(text.substr(0, end));
        if (!word.empty() && base::isUtf8(word)) {
            words.emplace_back(word);
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return words;
}

}  // namespace

WordList::WordList(ports::FileSystem& files, ports::FileChanges& changes, std::string file)
    : _files(files), _changes(changes), _file(std::move(file)) {}

std::vector<std::string> WordList::words() const {
    const auto read = _files.read(_file);
    return read ? wordsIn(read->bytes) : std::vector<std::string>();
}

base::Result<Done> WordList::add(const std::string& word) const {
    constexpr int mostTries = 5;
    auto added = tryToAdd(word);
    for (int i = 1; i < mostTries && !added; ++i) {
        const Failure::Kind kind = added.failure().kind;
        // Somebody else has written it since it was read.
        if (kind != Failure::Kind::changed && kind != Failure::Kind::exists &&
            kind != Failure::Kind::notFound) {
            break;
        }
        added = tryToAdd(word);
    }
    return added;
}

base::Result<Done> WordList::tryToAdd(const std::string& word) const {
    const auto read = _files.read(_file);
    if (!read) {
        if (read.failure().kind != Failure::Kind::notFound) {
            return read.failure();
        }
        if (auto made = _changes.makeFolders(_file.substr(0, _file.find_last_of('/'))); !made) {
            return made;
        }
        return _changes.create(_file, word + "\n");
    }
    const auto words = wordsIn(read->bytes);
    if (std::find(words.begin(), words.end(), word) != words.end()) {
        return Done{};
    }
    const bool isEnded = read->bytes.empty() || read->bytes.ends_with('\n');
    return _changes.replace(_file, *read, read->bytes + (isEnded ? "" : "\n") + word + "\n");
}

}  // namespace tessaly::app
