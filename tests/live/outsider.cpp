// SPDX-License-Identifier: MIT
#include "live/outsider.h"

#include <array>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>

#include <sys/stat.h>
#include <sys/xattr.h>

namespace tessaly::tests {
namespace fs = std::filesystem;
namespace {

const std::vector<std::string> noteNames{
    "Alpha.txt",
    "alpha.txt",
    "Beta.md",
    "Delta.txt",
    "Delta (conflicted copy 2019-03-05 101112).txt",
    "Delta.sync-conflict-20190305-101112-ABCDEFG.txt",
    "Ein großer Größenvergleich.txt",
    "_Ideas.txt",
    ".hidden.txt",
    "Beta.md~",
    ".Alpha.txt.swp",
    "photo.png",
    "caf\xe9.txt",
    "sub",
};
const std::vector<std::string> folderNames{"sub", "a", "Büro", "_attachments", ".git", "_drafts"};
const std::vector<std::string> dayNames{
    "20190305.txt",     "20190306.txt",
    "20190310.txt",     "20181231.txt",
    "20200229.txt",     "Meeting.txt",
    "sub/20190307.txt", "20190305 (conflicted copy 2019-03-05 101112).txt",
};
const std::vector<std::string> lines{
    "# Title",
    "",
    "* [ ] call #home",
    "* [x] done #work/deep @done(2019-03-05 10:11)",
    "- [-] cancelled >2019-03-06",
    "* write @anna >2019-03-05",
    "+ check >2019-03-06 #home",
    "\t* [>] moved >2019-03-07",
    "plain text (#paren) 'quoted' #1",
    "* @bob/team >2020-02-29",
};

/// One byte, and the mark that a sync client will fetch the rest.
constexpr char shellMark[] = "user.nextcloud.hydrate_exec";

/// Writes into `target` other bytes than `file` has, but as many, with its date. False: there is no
/// such file.
bool writeAlike(const TempFolder& folder, const std::string& file, const std::string& target) {
    struct stat before {};
    if (::lstat((folder / file).c_str(), &before) != 0 || before.st_size == 0) {
        return false;
    }
    std::string bytes = folder.read(file);
    bytes.back() = bytes.back() == 'A' ? 'B' : 'A';
    folder.write(target, bytes);
    const std::array<timespec, 2> times{before.st_atim, before.st_mtim};
    return ::utimensat(AT_FDCWD, (folder / target).c_str(), times.data(), 0) == 0;
}

}  // namespace

struct Outsider::Way {
    int weight;
    const char* name;
    void (*go)(Outsider&);
};

const std::vector<Outsider::Way>& Outsider::ways() {
    static const std::vector<Way> all{
        {12, "write over", [](Outsider& self) { self.writeOver(); }},
        {12, "rename over", [](Outsider& self) { self.renameOver(); }},
        {8, "append", [](Outsider& self) { self.append(); }},
        {8, "remove", [](Outsider& self) { self.remove(); }},
        {8, "rewrite unseen", [](Outsider& self) { self.rewriteUnseen(); }},
        {8, "move", [](Outsider& self) { self.move(self.path(), self.path()); }},
        {4, "move out", [](Outsider& self) { self.move(self.path(), self.outside()); }},
        {4, "move in", [](Outsider& self) { self.move(self.outside(), self.path()); }},
        {4, "move folder",
         [](Outsider& self) {
             self.move("data/Notes/" + self.subfolder(), "data/Notes/" + self.subfolder());
         }},
        {3, "trash", [](Outsider& self) { self.move(self.path(), "data/.Trash/" + self.name()); }},
        {6, "make folders", [](Outsider& self) { self.makeFolders(); }},
        {3, "replace by other", [](Outsider& self) { self.replaceByOther(); }},
        {3, "shell", [](Outsider& self) { self.shell(); }},
        {4, "touch", [](Outsider& self) { self.touch(); }},
        {4, "change mode", [](Outsider& self) { self.changeMode(); }},
        {1, "take all notes away",
         [](Outsider& self) { self.move("data/Notes", "outside/notes"); }},
        {2, "bring all notes back",
         [](Outsider& self) { self.move("outside/notes", "data/Notes"); }},
    };
    return all;
}

std::size_t Outsider::below(std::size_t bound) {
    return std::uniform_int_distribution<std::size_t>(0, bound - 1)(_random);
}

template <class Item>
const Item& Outsider::any(const std::vector<Item>& items) {
    return items[below(items.size())];
}

const std::vector<Outsider::Way>& Outsider::unwatchedWays() {
    static const std::vector<Way> all{
        {3, "make anew unseen", [](Outsider& self) { self.makeAnewUnseen(); }},
        {2, "swap", [](Outsider& self) { self.swap(); }},
        {2, "link", [](Outsider& self) { self.linkTwin(); }},
        {2, "write by link", [](Outsider& self) { self.writeTwin(); }},
        {3, "rewrite unseen", [](Outsider& self) { self.rewriteUnseen(); }},
    };
    return all;
}

void Outsider::edit() {
    editOneOf(ways());
}

void Outsider::editUnwatched() {
    editOneOf(below(2) == 0 ? ways() : unwatchedWays());
}

void Outsider::editOneOf(const std::vector<Way>& ways) {
    int sum = 0;
    for (const Way& way : ways) {
        sum += way.weight;
    }
    int left = static_cast<int>(below(static_cast<std::size_t>(sum)));
    for (const Way& way : ways) {
        left -= way.weight;
        if (left < 0) {
            _story += std::string("\n") + way.name;
            way.go(*this);
            return;
        }
    }
}

std::string Outsider::story() {
    return std::exchange(_story, {});
}

std::string Outsider::text() {
    std::string all = below(10) == 0 ? "\xef\xbb\xbf" : "";
    for (std::size_t left = below(6); left > 0; --left) {
        all += any(lines) + (below(8) == 0 ? "\r\n" : "\n");
    }
    all += std::to_string(below(1000));
    return below(12) == 0 ? all + "\xff" : all;
}

std::string Outsider::name() {
    return any(noteNames);
}

std::string Outsider::subfolder() {
    std::string path = any(folderNames);
    while (below(3) == 0) {
        path += "/" + any(folderNames);
    }
    return path;
}

std::string Outsider::notePath() {
    return "data/Notes/" + (below(2) == 0 ? subfolder() + "/" : "") + name();
}

std::string Outsider::dayPath() {
    return "data/Calendar/" + any(dayNames);
}

std::string Outsider::path() {
    return below(4) == 0 ? dayPath() : notePath();
}

std::string Outsider::outside() {
    return "outside/" + std::to_string(below(4));
}

bool Outsider::hasRoom(const std::string& file) {
    _story += " " + file;
    std::error_code error;
    const fs::path path = _folder / file;
    fs::create_directories(path.parent_path(), error);
    const auto kind = fs::symlink_status(path, error).type();
    return fs::is_directory(path.parent_path(), error) &&
           (kind == fs::file_type::regular || kind == fs::file_type::not_found);
}

void Outsider::put(const std::string& file, const std::string& bytes) {
    if (hasRoom(file)) {
        _folder.write(file, bytes);
    }
}

void Outsider::writeOver() {
    put(path(), text());
}

void Outsider::append() {
    const std::string file = path();
    if (hasRoom(file)) {
        std::ofstream stream(_folder / file, std::ios::binary | std::ios::app);
        for (std::size_t left = below(3); left > 0; --left) {
            stream << any(lines) << '\n' << std::flush;
        }
    }
}

void Outsider::renameOver() {
    const std::string file = path();
    const auto slash = file.rfind('/') + 1;
    const std::string temporary = file.substr(0, slash) +
                                  (below(2) == 0 ? ".syncthing." : "~syncthing~") +
                                  file.substr(slash) + ".tmp";
    if (hasRoom(file)) {
        _folder.write(temporary, text());
        std::error_code error;
        fs::rename(_folder / temporary, _folder / file, error);
    }
}

// Other bytes of the same length, and the old date: only the inode or its change time tells.
void Outsider::rewriteUnseen() {
    const std::string file = path();
    if (hasRoom(file)) {
        const std::string target = below(2) == 0 ? file : "outside/copy";
        if (writeAlike(_folder, file, target) && target != file) {
            fs::rename(_folder / target, _folder / file);
        }
    }
}

// The file system may give the new file the old one's inode.
void Outsider::makeAnewUnseen() {
    const std::string file = path();
    if (hasRoom(file) && writeAlike(_folder, file, "outside/anew")) {
        fs::remove(_folder / file);
        writeAlike(_folder, "outside/anew", file);
    }
}

void Outsider::swap() {
    const std::string one = path();
    const std::string other = path();
    if (hasRoom(one) && hasRoom(other)) {
        ::renameat2(AT_FDCWD, (_folder / one).c_str(), AT_FDCWD, (_folder / other).c_str(),
                    RENAME_EXCHANGE);
    }
}

void Outsider::linkTwin() {
    const std::string file = path();
    std::error_code error;
    if (hasRoom(file)) {
        const std::string twin = _folder / ("outside/twin " + std::to_string(below(4)));
        fs::remove(twin, error);
        fs::create_hard_link(_folder / file, twin, error);
    }
}

void Outsider::writeTwin() {
    const std::string twin = "outside/twin " + std::to_string(below(4));
    writeAlike(_folder, twin, twin);
}

void Outsider::move(const std::string& from, const std::string& to) {
    _story += " " + from + " to " + to;
    std::error_code error;
    fs::create_directories((_folder / to).substr(0, (_folder / to).rfind('/')), error);
    fs::rename(_folder / from, _folder / to, error);
}

void Outsider::makeFolders() {
    const std::string made = "data/Notes/" + subfolder();
    for (std::size_t left = below(4); left > 0; --left) {
        put(made + "/" + name(), text());
    }
    std::error_code error;
    fs::create_directories(_folder / made, error);
}

void Outsider::remove() {
    const std::string gone = below(5) == 0 ? "data/Notes/" + subfolder() : path();
    _story += " " + gone;
    std::error_code error;
    fs::remove_all(_folder / gone, error);
}

void Outsider::replaceByOther() {
    const std::string file = path();
    if (!hasRoom(file)) {
        return;
    }
    const std::string target = _folder / file;
    fs::remove(target);
    switch (below(3)) {
        case 0: fs::create_directory(target); break;
        case 1: fs::create_symlink(_folder / "outside/0", target); break;
        default: ::mkfifo(target.c_str(), 0600); break;
    }
}

// A file that is not here yet, or one of those that has been brought.
void Outsider::shell() {
    const std::string file = "data/Notes/Far " + std::to_string(below(3)) + ".txt";
    if (hasRoom(file) && !_folder.exists(file)) {
        const std::string made = _folder.write("outside/shell", " ");
        ::setxattr(made.c_str(), shellMark, "nextcloud", 9, 0);
        fs::rename(made, _folder / file);
    } else if (_folder.exists(file)) {
        fs::rename(_folder.write("outside/brought", text()), _folder / file);
    }
    put("data/Notes/Near.txt.nextcloud", " ");
}

void Outsider::touch() {
    const std::string file = path();
    _story += " " + file;
    ::utimensat(AT_FDCWD, (_folder / file).c_str(), nullptr, AT_SYMLINK_NOFOLLOW);
}

void Outsider::changeMode() {
    const std::string file = path();
    _story += " " + file;
    std::error_code error;
    if (fs::is_regular_file(fs::symlink_status(_folder / file, error))) {
        ::chmod((_folder / file).c_str(), below(2) == 0 ? 0600 : 0644);
    }
}

}  // namespace tessaly::tests
