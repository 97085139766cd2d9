// SPDX-License-Identifier: MIT
#include "app/task_address.h"

#include <charconv>
#include <utility>

#include <fmt/format.h>

#include "base/localisation.h"
#include "base/utf8.h"

namespace tessaly::app {
namespace {

using base::Failure;

constexpr std::size_t mostDigits = 9;

base::Result<std::optional<std::size_t>> lineIndexOf(const TaskName& name) {
    if (name.line.empty()) {
        return std::optional<std::size_t>{};
    }
    std::size_t number = 0;
    if (name.line.size() <= mostDigits) {
        std::from_chars(name.line.data(), name.line.data() + name.line.size(), number);
    }
    if (number == 0) {
        return Failure{Failure::Kind::malformed,
                       fmt::format(fmt::runtime(base::tr("“{0}:{1}”: there is no line {1}")),
                                   name.note, name.line)};
    }
    return std::optional{number - 1};
}

Failure notALine(std::string_view text) {
    const std::string words = base::tr("“{0}”: “{1}” is no line; lines are numbers from 1");
    return {Failure::Kind::malformed,
            fmt::format(fmt::runtime(words), text, text.substr(text.rfind(':') + 1))};
}

}  // namespace

TaskName readTaskName(std::string_view text) {
    const std::string_view name = base::trimmed(text);
    const auto colon = name.rfind(':');
    if (colon == std::string_view::npos) {
        return {name, {}};
    }
    const std::string_view line = name.substr(colon + 1);
    if (line.find_first_not_of("0123456789") != std::string_view::npos) {
        return {name, {}};
    }
    return line.empty() ? TaskName{name, {}} : TaskName{name.substr(0, colon), line};
}

TaskFinder::TaskFinder(Services& services, store::NoteReader::Options options)
    : _services(services), _options(std::move(options)) {}

base::Result<TaskAddress> TaskFinder::find(std::string_view text) {
    const TaskName name = readTaskName(text);
    const auto lineIndex = lineIndexOf(name);
    if (!lineIndex) {
        return lineIndex.failure();
    }
    const auto& note = noteCalled(name.note);
    if (note) {
        return TaskAddress{*note, *lineIndex};
    }
    if (name.line.empty()) {
        return isLineMiswritten(name.note) ? notALine(name.note) : note.failure();
    }
    // A title may end in a colon and digits, too.
    const auto& whole = noteCalled(base::trimmed(text));
    if (whole) {
        return TaskAddress{*whole, std::nullopt};
    }
    return name.note.empty() ? whole.failure() : note.failure();
}

bool TaskFinder::isLineMiswritten(std::string_view text) {
    const auto colon = text.rfind(':');
    return colon != std::string_view::npos && noteCalled(text.substr(0, colon)).ok();
}

const base::Result<NoteAddress>& TaskFinder::noteCalled(std::string_view text) {
    const auto known = _notes.find(text);
    if (known != _notes.end()) {
        return known->second;
    }
    return _notes.emplace(text, findNote(_services, text, _options)).first->second;
}

}  // namespace tessaly::app
