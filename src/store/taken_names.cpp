// SPDX-License-Identifier: MIT
#include "store/taken_names.h"

#include "base/graphemes.h"
#include "base/normalise.h"
#include "store/foreign_names.h"
#include "store/note_names.h"

namespace tessaly::store {

std::string withExtension(std::string_view base, std::string_view extension) {
    std::string name(base);
    return extension.empty() ? name : name.append(".").append(extension);
}

std::string numberedBase(std::string_view base, int counter, std::string_view extension) {
    if (counter < 2) {
        return std::string(base);
    }
    const std::string ending = " " + std::to_string(counter);
    const std::size_t taken = withExtension(ending, extension).size();
    const std::size_t room = maxFilenameBytes > taken ? maxFilenameBytes - taken : 0;
    return std::string(base.size() <= room ? base : base::cutToBytes(base, room)) + ending;
}

base::Result<TakenNames> TakenNames::in(ports::FileSystem& files, const std::string& folder) {
    TakenNames names;
    const auto entries = files.list(folder);
    if (!entries) {
        return entries.failure().kind == base::Failure::Kind::notFound
                   ? base::Result<TakenNames>(std::move(names))
                   : entries.failure();
    }
    for (const ports::FolderEntry& entry : *entries) {
        names.add(entry.name);
        if (const auto expected = nameOfPlaceholder(entry.name)) {
            names._holders.try_emplace(base::foldedForNames(*expected));
        }
    }
    return names;
}

void TakenNames::add(const std::string& name) {
    _holders.insert_or_assign(base::foldedForNames(name), name);
}

const std::string* TakenNames::holder(std::string_view name) const {
    const auto found = _holders.find(base::foldedForNames(name));
    return found == _holders.end() ? nullptr : &found->second;
}

std::string TakenNames::unique(std::string_view base, std::string_view extension) const {
    int counter = 1;
    while (holder(withExtension(numberedBase(base, counter, extension), extension)) != nullptr) {
        ++counter;
    }
    return numberedBase(base, counter, extension);
}

}  // namespace tessaly::store
