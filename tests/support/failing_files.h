// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ports/file_changes.h"
#include "ports/file_system.h"
#include "ports/folder_locks.h"

namespace tessaly::tests {

/// Passes on what is asked of files, changes and locks, counting the calls of all three from 0. One
/// call can be made to fail without being passed on, and something can be done before each: another
/// writer's change, or an exception, which stands for the death of the process. One thread.
class FailingFiles final : public ports::FileSystem,
                           public ports::FileChanges,
                           public ports::FolderLocks {
public:
    using Done = base::Result<base::Done>;
    using Kind = base::Failure::Kind;
    using Hook = std::function<void(int call, std::string_view operation, const std::string& path)>;

    FailingFiles(ports::FileSystem& files, ports::FileChanges& changes, ports::FolderLocks& locks)
        : _files(files), _changes(changes), _locks(locks) {}

    /// Counts anew, and lets call number `call` fail.
    void failAt(int call, Kind kind) {
        _calls = 0;
        _failing = call;
        _kind = kind;
    }

    /// Counts anew, and calls `hook` before each call but those that it makes itself.
    void before(Hook hook) {
        _calls = 0;
        _hook = std::move(hook);
    }

    /// Lets the call fail that the hook is called for.
    void failThis(Kind kind) {
        _failing = _calls - 1;
        _kind = kind;
    }

    void heal() {
        failAt(-1, Kind::other);
        _hook = nullptr;
    }

    int calls() const { return _calls; }

    base::Result<std::vector<ports::FolderEntry>> list(const std::string& folder) override {
        return pass("list", folder, [&] { return _files.list(folder); });
    }
    base::Result<std::vector<ports::SurveyedEntry>> survey(const std::string& folder) override {
        return pass("survey", folder, [&] { return _files.survey(folder); });
    }
    base::Result<std::vector<std::optional<ports::SurveyedEntry>>> surveyNames(
        const std::string& folder, std::span<const std::string> names) override {
        return pass("surveyNames", folder, [&] { return _files.surveyNames(folder, names); });
    }
    base::Result<ports::FileContents> read(const std::string& file) override {
        return pass("read", file, [&] { return _files.read(file); });
    }
    Done readEach(const std::string& folder, std::span<const ports::FolderEntry> files,
                  const ports::FileSink& sink) override {
        return pass("readEach", folder, [&] { return _files.readEach(folder, files, sink); });
    }
    base::Result<ports::FolderEntry::Kind> kindOf(const std::string& path) override {
        return pass("kindOf", path, [&] { return _files.kindOf(path); });
    }
    base::Result<std::string> resolve(const std::string& path) override {
        return pass("resolve", path, [&] { return _files.resolve(path); });
    }

    Done makeFolders(const std::string& folder) override {
        return pass("makeFolders", folder, [&] { return _changes.makeFolders(folder); });
    }
    Done create(const std::string& file, std::string_view bytes, ports::Readers readers,
                ports::Durability durability) override {
        return pass("create", file,
                    [&] { return _changes.create(file, bytes, readers, durability); });
    }
    Done replace(const std::string& file, const ports::FileContents& read,
                 std::string_view bytes) override {
        return pass("replace", file, [&] { return _changes.replace(file, read, bytes); });
    }
    Done append(const std::string& file, std::string_view bytes,
                ports::Durability durability) override {
        return pass("append", file, [&] { return _changes.append(file, bytes, durability); });
    }
    Done sync(const std::string& file) override {
        return pass("sync", file, [&] { return _changes.sync(file); });
    }
    Done remove(const std::string& file, const ports::FileContents* read) override {
        return pass("remove", file, [&] { return _changes.remove(file, read); });
    }
    Done move(const std::string& from, const std::string& to) override {
        return pass("move", from, [&] { return _changes.move(from, to); });
    }
    Done removeFolder(const std::string& folder) override {
        return pass("removeFolder", folder, [&] { return _changes.removeFolder(folder); });
    }

    base::Result<std::unique_ptr<ports::FolderLock>> take(const std::string& folder) override {
        using Taken = base::Result<std::unique_ptr<ports::FolderLock>>;
        return pass("take", folder, [&]() -> Taken {
            auto lock = _locks.take(folder);
            return lock ? Taken(std::make_unique<Lock>(*this, *std::move(lock))) : lock.failure();
        });
    }
    bool isUnfinished(const std::string& folder) override { return _locks.isUnfinished(folder); }

private:
    class Lock final : public ports::FolderLock {
    public:
        Lock(FailingFiles& owner, std::unique_ptr<ports::FolderLock> lock)
            : _owner(owner), _lock(std::move(lock)) {}
        std::vector<std::string> unfinished() const override { return _lock->unfinished(); }
        Done begin(const std::string& folder) override {
            return _owner.pass("begin", folder, [&] { return _lock->begin(folder); });
        }
        void finish() override { _lock->finish(); }

    private:
        FailingFiles& _owner;
        const std::unique_ptr<ports::FolderLock> _lock;
    };

    template <class Operation>
    auto pass(std::string_view name, const std::string& path, const Operation& operation)
        -> decltype(operation()) {
        const int call = _calls++;
        if (const Hook hook = std::exchange(_hook, nullptr)) {
            hook(call, name, path);
            _hook = hook;
        }
        if (call == _failing) {
            return base::Failure{_kind, path + ": made to fail"};
        }
        return operation();
    }

    ports::FileSystem& _files;
    ports::FileChanges& _changes;
    ports::FolderLocks& _locks;
    int _calls = 0;
    int _failing = -1;
    Kind _kind = Kind::other;
    Hook _hook;
};

}  // namespace tessaly::tests
