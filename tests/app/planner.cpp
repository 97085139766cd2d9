// SPDX-License-Identifier: MIT
#include "app/planner.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include "support/notes_in_text.h"

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
                 user.isThreaded ? static_cast<base::Executor&>(_pool) : _inline,
                 _query,
                 _mainQueue,
                 _downloads,
                 _cacheFiles,
                 _fileClock,
                 user.tellingStamps,
                 [this](const std::vector<std::string>& arguments) {
                     _started.push_back(arguments);
                     return base::Result<base::Done>(base::Done{});
                 },
                 [folders = user.cloudFolders] { return folders; },
                 user.watchOutlook,
                 {_folder / "data", _folder / "config", _folder / "state", _folder / "cache"},
                 {user.locale, ""},
                 [dropbox = user.dropbox] { return dropbox; },
                 [container = user.cloudContainer] { return container; },
                 user.trash,
                 [this, answer = user.answer](const ports::Question& question) {
                     _questions.push_back(question);
                     return question.buttons.empty() ? std::nullopt : answer;
                 },
                 user.dataFolder,
                 user.isTestMode,
                 followedJobs(),
                 user.trashReturn}) {}

ports::FollowedJobs Planner::followedJobs() {
    class Job final : public ports::FollowedJob {
    public:
        explicit Job(std::shared_ptr<ScriptedJob> script) : _script(std::move(script)) {}
        bool hasEnded() override { return _script->hasEnded; }
        void end() override { _script->isAsked = true; }

    private:
        const std::shared_ptr<ScriptedJob> _script;
    };
    return [this](const std::vector<std::string>& arguments)
               -> base::Result<std::unique_ptr<ports::FollowedJob>> {
        _started.push_back(arguments);
        _followed = std::make_shared<ScriptedJob>();
        return std::unique_ptr<ports::FollowedJob>(std::make_unique<Job>(_followed));
    };
}

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
    for (const auto& [name, text] : notesIn(notes)) {
        _folder.write(std::string{root} + name, text);
    }
}

}  // namespace tessaly::tests
