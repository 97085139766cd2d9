// SPDX-License-Identifier: MIT
#include "app/planner.h"

#include <filesystem>
#include <sstream>
#include <system_error>

namespace tessaly::tests {

Planner::Planner(const User& user)
    : _defaults(_folder / settingsFile),
      _groupDefaults(_folder / "config/group.json"),
      _clock(platform::parseTime(user.now).value()),
      _locks(_folder / "locks"),
      _services({_files,
                 _changes,
                 _locks,
                 _defaults,
                 _groupDefaults,
                 _clock,
                 _pool,
                 {_folder / "data", _folder / "config", _folder / "state", _folder / "cache"},
                 {user.locale, ""},
                 [dropbox = user.dropbox] { return dropbox; },
                 [container = user.cloudContainer] { return container; },
                 user.trash,
                 [this, answer = user.answer](const ports::Question& question) {
                     _questions.push_back(question);
                     return question.buttons.empty() ? std::nullopt : answer;
                 },
                 user.dataFolder}) {}

base::Result<base::Done> Planner::intoFakeTrash(const std::string& file) {
    std::error_code error;
    if (std::filesystem::remove(file, error)) {
        return base::Done{};
    }
    return base::Failure{base::Failure::Kind::notFound, file};
}

std::string Planner::textOf(std::string_view filename) const {
    const std::string name = std::string{root}.append(filename);
    return _folder.exists(name) ? _folder.read(name) : "-";
}

void Planner::write(std::string_view notes) {
    constexpr std::string_view opener = "-- ";
    std::istringstream stream{std::string{notes}};
    std::string filename;
    std::string text;
    const auto finish = [&] {
        if (!filename.empty()) {
            _folder.write(std::string{root} + filename, text);
        }
        text.clear();
    };
    for (std::string line; std::getline(stream, line);) {
        if (line.starts_with(opener)) {
            finish();
            filename = line.substr(opener.size());
        } else {
            text += line + "\n";
        }
    }
    finish();
}

}  // namespace tessaly::tests
