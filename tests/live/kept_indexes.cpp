// SPDX-License-Identifier: MIT
#include "live/kept_indexes.h"

#include <doctest/doctest.h>

#include "store/note_index_writer.h"
#include "store/note_reader.h"

namespace tessaly::tests {

void KeptIndexes::write(base::Executor& executor) {
    const std::string name = "indexes/" + std::to_string(_names.size());
    const auto begun =
        std::chrono::time_point_cast<base::Instant::duration>(std::chrono::system_clock::now());
    const auto writer =
        store::NoteIndexWriter::begin(_files, _folder / name, key(), begun, _settled);
    REQUIRE(writer);
    store::NoteReader(_store, executor, open(0)).readAll({}, [&](std::size_t, const auto& file) {
        (*writer)->add({file.type, file.filename, file.bytes, file.stamp, {}});
    });
    REQUIRE((*writer)->finish());
    _names.push_back(name);
}

std::shared_ptr<const store::NoteIndex> KeptIndexes::open(std::size_t ago) {
    if (ago >= _names.size()) {
        return nullptr;
    }
    const std::string file = _folder / _names[_names.size() - 1 - ago];
    const auto index = store::NoteIndex::open(_files, file, key());
    return index ? *index : nullptr;
}

void KeptIndexes::damage(std::size_t place) {
    if (!_names.empty()) {
        std::string bytes = _folder.read(_names.back());
        bytes[(bytes.size() - 1) * place / 1000] ^= 0x20;
        _names.push_back("indexes/damaged " + std::to_string(_names.size()));
        _folder.write(_names.back(), bytes);
    }
}

}  // namespace tessaly::tests
