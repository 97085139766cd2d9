// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace tessaly::tests {

/// A new, empty folder that goes away with everything in it. Names are relative to it. What cannot
/// be done throws: the test has no ground to stand on.
class TempFolder {
public:
    TempFolder() : _path(std::filesystem::temp_directory_path() / "tessaly-test-XXXXXX") {
        if (::mkdtemp(_path.data()) == nullptr) {
            throw std::runtime_error("no temporary folder: " + _path);
        }
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(_path, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::string& path() const { return _path; }

    /// The absolute path of `name`.
    std::string operator/(std::string_view name) const { return _path + "/" + std::string(name); }

    /// Writes a file over whatever it holds, making the folders above it; returns its path.
    std::string write(std::string_view name, std::string_view bytes) const {
        std::string file = *this / name;
        std::filesystem::create_directories(std::filesystem::path(file).parent_path());
        std::ofstream stream(file, std::ios::binary | std::ios::trunc);
        stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        stream.close();
        if (!stream) {
            throw std::runtime_error("cannot write " + file);
        }
        return file;
    }

    std::string read(std::string_view name) const {
        std::ifstream stream(*this / name, std::ios::binary);
        if (!stream) {
            throw std::runtime_error("cannot read " + (*this / name));
        }
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    /// Makes a folder and those above it; returns its path.
    std::string mkdir(std::string_view name) const {
        std::string folder = *this / name;
        std::filesystem::create_directories(folder);
        return folder;
    }

    /// A link at `name` that leads to `target`, as it is written; returns its path.
    std::string link(std::string_view name, std::string_view target) const {
        std::string file = *this / name;
        std::filesystem::create_symlink(target, file);
        return file;
    }

    /// Whether there is anything called `name`, a link that leads nowhere included.
    bool exists(std::string_view name) const {
        return std::filesystem::exists(std::filesystem::symlink_status(*this / name));
    }

    /// The names in the folder `name`, hidden ones included, in order.
    std::vector<std::string> names(std::string_view name = ".") const {
        std::vector<std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator(*this / name)) {
            found.push_back(entry.path().filename());
        }
        std::sort(found.begin(), found.end());
        return found;
    }

    /// Every name below the folder `name` and what the file holds; folders end in "/", links hold
    /// where they lead.
    std::map<std::string, std::string> everything(std::string_view name = ".") const {
        std::map<std::string, std::string> all;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(*this / name)) {
            const std::string found = entry.path().lexically_relative(*this / name);
            if (entry.is_symlink()) {
                all[found] = std::filesystem::read_symlink(entry.path());
            } else if (entry.is_directory()) {
                all[found + "/"];
            } else {
                all[found] = entry.is_regular_file() ? read(std::string(name) + "/" + found) : "";
            }
        }
        return all;
    }

private:
    std::string _path;
};

}  // namespace tessaly::tests
