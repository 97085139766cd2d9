// SPDX-License-Identifier: MIT
#include "tasks/task_desk.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace tessaly::tests {
namespace {

using tasks::NoteName;
using tasks::RepeatInterval;
using tasks::TaskChange;
using tasks::TaskOperations;
using tasks::TaskOutcome;
using tasks::TaskReference;
using What = TaskChange::What;

std::string wordFor(What what) {
    static const std::map<What, std::string> words{
        {What::completed, "done"},
        {What::cancelled, "cancelled"},
        {What::reopened, "opened"},
        {What::scheduled, "scheduled"},
        {What::copied, "copied"},
        {What::removedCopy, "removed copy"},
        {What::leftCopy, "left copy"},
        {What::repeated, "repeated"},
        {What::deleted, "deleted"},
        {What::archived, "archived"},
        {What::alreadyDone, "already done"},
        {What::alreadyCancelled, "already cancelled"},
        {What::alreadyOpen, "already open"},
        {What::alreadyScheduled, "already scheduled"},
        {What::nothingToArchive, "nothing to archive"},
    };
    return words.at(what);
}

NoteName noteCalled(const std::string& name) {
    const bool isDay = name.find_first_not_of("0123456789") == name.npos;
    return {isDay ? base::NoteType::calendar : base::NoteType::note,
            name.find('.') == name.npos ? name + ".txt" : name};
}

TaskReference referenceTo(std::string text) {
    TaskReference task;
    if (const auto equals = text.find('='); equals != text.npos) {
        const bool isThere = text.compare(equals, 2, "==") == 0;
        task.where = isThere ? TaskReference::Where::there : TaskReference::Where::anywhere;
        task.text = text.substr(equals + (isThere ? 2 : 1));
        std::replace(task.text->begin(), task.text->end(), '_', ' ');
        text.erase(equals);
    }
    const auto colon = text.rfind(':');
    task.note = noteCalled(text.substr(0, colon));
    task.lineIndex = std::stoul(text.substr(colon + 1)) - 1;
    return task;
}

std::string rowFor(const TaskChange& change) {
    std::string row = wordFor(change.what) + " ";
    row += std::string(base::folderName(change.note.type)).append("/") + change.note.filename;
    if (change.what == What::nothingToArchive) {
        return row;
    }
    row += ":" + std::to_string(change.lineIndex + 1) + " " + change.line;
    return change.day ? row + " | " + base::tagText(*change.day) : row;
}

std::string rowsFor(const base::Result<TaskOutcome>& result) {
    if (!result) {
        return "failed: " + result.failure().description + "\n";
    }
    std::string rows;
    for (const TaskChange& change : result->changes) {
        rows += rowFor(change) + "\n";
    }
    for (const tasks::TaskRefusal& refusal : result->refusals) {
        rows += "refused: " + refusal.failure.description + "\n";
    }
    for (const std::string& copy : result->conflictCopies) {
        rows += "beside: " + copy + "\n";
    }
    return rows;
}

base::Day dayIn(std::istream& words) {
    std::string text;
    words >> text;
    return base::dayFromTagText(text).value();
}

}  // namespace

TaskDesk::TaskDesk(const tasks::RewriteSettings& settings)
    : _process(_folder, platform::parseTime("2019-05-21T14:07:33").value()),
      _operations({_process.failing, _process.clock, _process.runner}, _folder / "data", settings) {
    _folder.mkdir("data/Calendar");
    _folder.mkdir("data/Notes");
}

void TaskDesk::write(const Notes& notes) {
    for (const auto& [name, text] : notes) {
        _folder.write(std::string(root) + name, text);
    }
}

Notes TaskDesk::notes() const {
    Notes notes;
    const std::string data = _folder / "data";
    for (const auto& entry : std::filesystem::recursive_directory_iterator(data)) {
        if (!entry.is_directory()) {
            const std::string name = std::filesystem::relative(entry.path(), data);
            notes[name] = _folder.read(std::string(root) + name);
        }
    }
    return notes;
}

std::string TaskDesk::command(std::string_view text) {
    std::istringstream words{std::string(text)};
    std::string verb;
    words >> verb;
    const bool hasDay = verb == "schedule" || verb == "all";
    const base::Day first = hasDay ? dayIn(words) : base::Day{};
    if (verb == "all") {
        return rowsFor(_operations.scheduleAllOpen(first, dayIn(words)));
    }
    std::string unit;
    int count = 0;
    if (verb == "repeat") {
        words >> unit >> count;
    }
    std::vector<TaskReference> lines;
    std::vector<NoteName> notes;
    for (std::string word; words >> word;) {
        if (verb == "archive") {
            notes.push_back(noteCalled(word));
        } else {
            lines.push_back(referenceTo(word));
        }
    }
    using Later = TaskOperations::LaterRepeats;
    if (verb == "done")
        return rowsFor(_operations.complete(lines));
    if (verb == "cancel")
        return rowsFor(_operations.cancel(lines));
    if (verb == "reopen")
        return rowsFor(_operations.reopen(lines));
    if (verb == "schedule")
        return rowsFor(_operations.schedule(lines, first));
    if (verb == "delete")
        return rowsFor(_operations.remove(lines, Later::stay));
    if (verb == "delete-all")
        return rowsFor(_operations.remove(lines, Later::go));
    if (verb == "finish")
        return rowsFor(_operations.finishRepeat(lines.at(0)));
    if (verb == "archive")
        return rowsFor(_operations.archive(notes));
    if (verb == "repeat") {
        return rowsFor(
            _operations.repeat(lines, base::fromRawValue<RepeatInterval>(unit).value(), count));
    }
    throw std::runtime_error("no such command: " + verb);
}

tasks::Undone TaskDesk::undo() {
    const auto last = _process.journal.operations(1).value();
    return _process.runner.undo(last.at(0)).value();
}

}  // namespace tessaly::tests
