// SPDX-License-Identifier: MIT
#include "app/day_text.h"

#include "base/enum_names.h"

namespace tessaly::tests {
namespace {

std::string taskText(const store::NoteTask& task) {
    return std::string(task.todo.indents, '\t') + std::string{base::rawValue(task.todo.type)} +
           ": " + task.todo.content;
}

std::string placeText(const store::NoteTask& task) {
    return " (" + std::string{base::folderName(task.type)} + "/" + task.filename + ":" +
           std::to_string(task.todo.lineIndex + 1) + ")";
}

}  // namespace

std::string dayText(const app::DayViews& views) {
    std::string text;
    for (const app::DayView& view : views.days) {
        text += base::tagText(view.day) + " " + view.name + (view.hasNote ? " +" : "") + "\n";
        for (const auto& task : view.tasks) {
            text += "= " + taskText(task) + "\n";
        }
        for (const auto& task : view.scheduled) {
            text += "> " + taskText(task) + placeText(task) + "\n";
        }
        for (const auto& task : view.overdue.tasks) {
            text += "! " + taskText(task) + placeText(task) + "\n";
        }
    }
    return text;
}

}  // namespace tessaly::tests
