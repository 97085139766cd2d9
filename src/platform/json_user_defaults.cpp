// SPDX-License-Identifier: MIT
#include "platform/json_user_defaults.h"

#include <algorithm>
#include <cmath>
#include <ctime>
#include <fcntl.h>
#include <utility>

#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>

#include "base/localisation.h"
#include "platform/atomic_file.h"
#include "platform/file_descriptor.h"
#include "platform/json_object.h"

namespace tessaly::platform {

using base::Done;
using base::Failure;
using nlohmann::ordered_json;
using ports::DefaultsValue;

namespace {

/// What tells that the file is still the one that was read. All zero: there is none.
struct Mark {
    ino_t inode = 0;
    off_t size = 0;
    std::int64_t modified = 0;
    std::int64_t changed = 0;

    bool operator==(const Mark&) const = default;
};

std::int64_t nanoseconds(const timespec& time) {
    return time.tv_sec * std::int64_t{1'000'000'000} + time.tv_nsec;
}

Mark markOf(const std::string& file) {
    struct stat status;
    if (::stat(file.c_str(), &status) != 0) {
        return {};
    }
    return {status.st_ino, status.st_size, nanoseconds(status.st_mtim),
            nanoseconds(status.st_ctim)};
}

/// Dates of files move in ticks: within one, a second change may leave no mark.
bool isSettled(const Mark& mark) {
    constexpr std::int64_t longTick = 50'000'000;
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    return mark == Mark{} || nanoseconds(now) - mark.changed > longTick;
}

std::optional<std::vector<std::string>> textsOf(const ordered_json& value) {
    std::vector<std::string> texts;
    for (const ordered_json& item : value) {
        if (!item.is_string()) {
            return std::nullopt;
        }
        texts.push_back(item.get<std::string>());
    }
    return texts;
}

std::optional<DefaultsValue> valueOf(const ordered_json& value) {
    switch (value.type()) {
        case ordered_json::value_t::boolean: return value.get<bool>();
        case ordered_json::value_t::number_float: return value.get<double>();
        case ordered_json::value_t::string: return value.get<std::string>();
        case ordered_json::value_t::array: return textsOf(value);
        case ordered_json::value_t::number_integer: return value.get<std::int64_t>();
        case ordered_json::value_t::number_unsigned:
            return std::in_range<std::int64_t>(value.get<std::uint64_t>())
                       ? std::optional<DefaultsValue>(value.get<std::int64_t>())
                       : std::nullopt;
        default: return std::nullopt;
    }
}

std::string folderOf(const std::string& file) {
    return file.substr(0, std::max<std::size_t>(file.find_last_of('/'), 1));
}

/// Holds every other writer of the folder off until it is closed. Where the file system knows no
/// such lock, writers that meet within the same instant are not held apart.
FileDescriptor lockFolder(const std::string& folder) {
    FileDescriptor fd(
        uninterrupted([&] { return ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
    if (fd) {
        uninterrupted([&] { return ::flock(fd.get(), LOCK_EX); });
    }
    return fd;
}

base::Result<std::string> printed(const std::string& file, const ordered_json& values) {
    try {
        return values.dump(4) + "\n";
    } catch (const ordered_json::exception&) {
        return Failure{Failure::Kind::malformed,
                       fmt::format("{}: {}", file, base::tr("a setting must be UTF-8 text"))};
    }
}

}  // namespace

struct JsonUserDefaults::State {
    ordered_json values = ordered_json::object();
    std::optional<Failure> problem;
    Mark mark;
    bool settled = false;
};

JsonUserDefaults::JsonUserDefaults(std::string file) : _file(std::move(file)) {}
JsonUserDefaults::~JsonUserDefaults() = default;

JsonUserDefaults::State JsonUserDefaults::load() {
    State state;
    state.mark = markOf(_file);
    state.settled = isSettled(state.mark);
    const auto contents = _files.read(_file);
    if (!contents) {
        if (contents.failure().kind != Failure::Kind::notFound) {
            state.problem = contents.failure();
        }
        return state;
    }
    auto parsed = parseJsonObject(_file, contents->bytes);
    if (parsed) {
        state.values = std::move(parsed).value();
    } else {
        state.problem = parsed.failure();
    }
    return state;
}

const JsonUserDefaults::State& JsonUserDefaults::current() {
    if (_state == nullptr || !_state->settled || markOf(_file) != _state->mark) {
        _state = std::make_unique<State>(load());
    }
    return *_state;
}

/// Always from what the file holds now, under the lock: other processes write it too.
template <class Change>
base::Result<Done> JsonUserDefaults::change(Change apply) {
    const std::scoped_lock lock(_mutex);
    const std::string folder = folderOf(_file);
    if (auto made = _changes.makeFolders(folder); !made) {
        return made;
    }
    const FileDescriptor folderLock = lockFolder(folder);
    State state = load();
    if (state.problem) {
        return *state.problem;
    }
    apply(state.values);
    const auto bytes = printed(_file, state.values);
    if (!bytes) {
        return bytes.failure();
    }
    _state.reset();
    return replaceFile(_file, *bytes);
}

std::optional<DefaultsValue> JsonUserDefaults::valueForKey(std::string_view key) {
    const std::scoped_lock lock(_mutex);
    const ordered_json& values = current().values;
    const auto found = values.find(key);
    return found == values.end() ? std::nullopt : valueOf(*found);
}

base::Result<Done> JsonUserDefaults::setValue(std::string_view key, const DefaultsValue& value) {
    if (const double* number = std::get_if<double>(&value); number && !std::isfinite(*number)) {
        return Failure{Failure::Kind::malformed,
                       fmt::format("{}: {}", key, base::tr("JSON knows no such number"))};
    }
    return change([&](ordered_json& values) {
        std::visit([&](const auto& held) { values[std::string(key)] = held; }, value);
    });
}

base::Result<Done> JsonUserDefaults::removeValue(std::string_view key) {
    {
        const std::scoped_lock lock(_mutex);
        const State& state = current();
        if (!state.problem && !state.values.contains(key)) {
            return Done{};
        }
    }
    return change([&](ordered_json& values) { values.erase(std::string(key)); });
}

std::vector<std::string> JsonUserDefaults::keys() {
    const std::scoped_lock lock(_mutex);
    std::vector<std::string> keys;
    for (const auto& item : current().values.items()) {
        keys.push_back(item.key());
    }
    std::sort(keys.begin(), keys.end());
    return keys;
}

std::optional<Failure> JsonUserDefaults::problem() {
    const std::scoped_lock lock(_mutex);
    return current().problem;
}

}  // namespace tessaly::platform
