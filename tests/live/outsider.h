// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "support/temp_folder.h"

namespace tessaly::tests {

/// Somebody else who works in the folder "data", in every way in which programs and sync clients
/// change files, and keeps things beside it, in "outside". There are few names, so that the same is
/// now a note, now a folder, now gone.
class Outsider {
public:
    Outsider(const TempFolder& folder, std::uint32_t seed) : _folder(folder), _random(seed) {}

    /// One change; some come to nothing.
    void edit();

    /// One change that may also be such as makes no event: for when nobody watches.
    void editUnwatched();

    /// The changes since this was last asked, for telling how a failure came about.
    std::string story();

private:
    struct Way;
    static const std::vector<Way>& ways();
    static const std::vector<Way>& unwatchedWays();
    void editOneOf(const std::vector<Way>& ways);

    std::string text();
    std::string name();
    std::string subfolder();
    std::string notePath();
    std::string dayPath();
    std::string path();
    std::string outside();
    template <class Item>
    const Item& any(const std::vector<Item>& items);
    std::size_t below(std::size_t bound);

    bool hasRoom(const std::string& file);
    void put(const std::string& file, const std::string& bytes);
    void append();
    void writeOver();
    void renameOver();
    void rewriteUnseen();
    void makeAnewUnseen();
    void swap();
    void linkTwin();
    void writeTwin();
    void move(const std::string& from, const std::string& to);
    void makeFolders();
    void remove();
    void replaceByOther();
    void shell();
    void touch();
    void changeMode();

    const TempFolder& _folder;
    std::mt19937 _random;
    std::string _story;
};

}  // namespace tessaly::tests
