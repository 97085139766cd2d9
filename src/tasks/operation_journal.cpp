// SPDX-License-Identifier: MIT
#include "tasks/operation_journal.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include "base/localisation.h"
#include "base/sha256.h"
#include "base/temporary_name.h"
#include "store/paths.h"
#include "tasks/operation_text.h"

namespace tessaly::tasks {

using base::Done;
using base::Failure;
using base::Result;

namespace {

constexpr std::size_t hashLength = 16;
constexpr std::string_view forgottenEnding = ".forgotten";

std::string folderOf(ports::FileSystem& files, const std::string& root) {
    const auto resolved = files.resolve(root);
    return base::sha256(resolved ? *resolved : root).substr(0, hashLength);
}

std::string recordName(std::uint64_t number) {
    return fmt::format("{:010}", number);
}

std::optional<std::uint64_t> numberOfName(std::string_view name) {
    std::uint64_t number = 0;
    std::from_chars(name.data(), name.data() + name.size(), number);
    return number > 0 && recordName(number) == name ? std::optional(number) : std::nullopt;
}

bool isMissing(const Failure& failure) {
    return failure.kind == Failure::Kind::notFound;
}

Result<Done> doneIfMissing(Result<Done> removed) {
    return removed || !isMissing(removed.failure()) ? removed : Result<Done>(Done{});
}

}  // namespace

OperationJournal::OperationJournal(Tools tools, const std::string& folder, std::string root,
                                   const JournalLimits& limits)
    : _tools(tools),
      _limits(limits),
      _root(std::move(root)),
      _folder(store::joined(folder, folderOf(tools.files, _root))) {}

std::string OperationJournal::fileOf(std::uint64_t number) const {
    return store::joined(_folder, recordName(number));
}

Result<OperationJournal::Names> OperationJournal::names() const {
    const auto entries = _tools.files.list(_folder);
    if (!entries) {
        return isMissing(entries.failure()) ? Result<Names>(Names{}) : entries.failure();
    }
    Names names;
    for (const ports::FolderEntry& entry : *entries) {
        std::string_view name = entry.name;
        const bool isForgotten = name.ends_with(forgottenEnding);
        name.remove_suffix(isForgotten ? forgottenEnding.size() : 0);
        const auto number = numberOfName(name);
        names.highest = std::max(names.highest, number.value_or(0));
        if (number && !isForgotten) {
            names.numbers.push_back(*number);
        } else if (number || base::nameOfTemporary(name)) {
            names.leftOver.push_back(entry.name);
        }
    }
    std::sort(names.numbers.begin(), names.numbers.end());
    return names;
}

Result<std::unique_ptr<ports::FolderLock>> OperationJournal::take() {
    return _tools.locks.take(_folder);
}

bool OperationJournal::hasPending() const {
    return _tools.files.kindOf(pendingFile()).ok();
}

std::optional<Operation> OperationJournal::read(const std::string& file) const {
    const auto contents = _tools.files.read(file);
    return contents ? operationOf(contents->bytes) : std::nullopt;
}

Result<std::optional<Operation>> OperationJournal::pending() const {
    const auto contents = _tools.files.read(pendingFile());
    if (!contents) {
        return isMissing(contents.failure()) ? Result<std::optional<Operation>>(std::nullopt)
                                             : contents.failure();
    }
    auto operation = operationOf(contents->bytes);
    if (!operation) {
        return Failure{Failure::Kind::malformed,
                       pendingFile() + ": " + base::tr("this is no operation that can be read")};
    }
    return operation;
}

Result<Done> OperationJournal::begin(const Operation& operation) {
    auto made = _tools.changes.makeFolders(_folder);
    return made ? _tools.changes.create(pendingFile(), textOf(operation), ports::Readers::ownerOnly,
                                        ports::Durability::now)
                : made;
}

Result<Done> OperationJournal::amend(std::size_t index, const NoteStep& step) {
    return append(textOf(index, step), ports::Durability::now);
}

Result<Done> OperationJournal::noteStepsMade(std::size_t count, ports::Durability durability) {
    return append(textOfStepsMade(count), durability);
}

Result<Done> OperationJournal::append(std::string_view text, ports::Durability durability) {
    // A file that is not there would be made.
    if (const auto kind = _tools.files.kindOf(pendingFile()); !kind) {
        return kind.failure();
    }
    return _tools.changes.append(pendingFile(), text, durability);
}

Result<std::uint64_t> OperationJournal::finish() {
    auto found = names();
    if (!found) {
        return found.failure();
    }
    const std::uint64_t number = found->highest + 1;
    if (const auto moved = _tools.changes.move(pendingFile(), fileOf(number)); !moved) {
        return moved.failure();
    }
    Names all = *std::move(found);
    all.numbers.push_back(number);
    prune(all);
    return number;
}

Result<Done> OperationJournal::abandon() {
    return doneIfMissing(_tools.changes.remove(pendingFile()));
}

// The highest number stays taken, by a file under another name.
Result<Done> OperationJournal::forget(std::uint64_t number) {
    const auto found = names();
    if (!found) {
        return found.failure();
    }
    const std::string file = fileOf(number);
    if (number < found->highest) {
        return doneIfMissing(_tools.changes.remove(file));
    }
    return doneIfMissing(_tools.changes.move(file, file + std::string(forgottenEnding)));
}

Result<std::vector<Operation>> OperationJournal::operations(std::size_t most) const {
    const auto found = names();
    if (!found) {
        return found.failure();
    }
    const std::vector<std::uint64_t>& numbers = found->numbers;
    std::vector<Operation> operations;
    for (auto number = numbers.rbegin(); number != numbers.rend() && operations.size() < most;
         ++number) {
        if (auto operation = read(fileOf(*number))) {
            operation->number = *number;
            operations.push_back(*std::move(operation));
        }
    }
    return operations;
}

// The operation that was made last stays, however long ago it was begun.
void OperationJournal::prune(const Names& names) {
    for (const std::string& name : names.leftOver) {
        [[maybe_unused]] const auto removed = _tools.changes.remove(store::joined(_folder, name));
    }
    const std::vector<std::uint64_t>& numbers = names.numbers;
    const std::size_t tooMany = numbers.size() - std::min(numbers.size(), _limits.operations);
    const base::Instant oldest = _tools.clock.now() - _limits.age;
    for (std::size_t at = 0; at + 1 < numbers.size(); ++at) {
        const auto operation = read(fileOf(numbers[at]));
        if (operation && at >= tooMany && operation->time >= oldest) {
            return;
        }
        if (operation) {
            [[maybe_unused]] const auto removed = _tools.changes.remove(fileOf(numbers[at]));
        }
    }
}

}  // namespace tessaly::tasks
