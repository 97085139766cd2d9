// SPDX-License-Identifier: MIT
#include "base/log.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <mutex>
#include <string>
#include <utility>

namespace tessaly::base {

namespace {

void writeToStandardError(std::string_view line) {
    // One call for the line and its break, so that lines of other processes do not cut it.
    const std::string text = std::string(line) + '\n';
    std::fwrite(text.data(), 1, text.size(), stderr);
}

struct Output {
    std::mutex mutex;
    LogSink sink = writeToStandardError;
};

Output& output() {
    // Never destroyed: threads may log while the program ends.
    static auto* const instance = new Output;
    return *instance;
}

std::atomic<bool> isRoutineLogged = true;

bool isLineBreak(char c) {
    return c == '\n' || c == '\r' || c == '\v' || c == '\f';
}

}  // namespace

void log(std::string_view fixedText, std::string_view subject) {
    std::string line(fixedText);
    if (!subject.empty() && !line.empty() && line.back() != ' ') {
        line += ' ';
    }
    line += subject;
    std::replace_if(line.begin(), line.end(), isLineBreak, ' ');
    const std::scoped_lock lock(output().mutex);
    output().sink(line);
}

void logRoutine(std::string_view fixedText, std::string_view subject) {
    if (isRoutineLogged) {
        log(fixedText, subject);
    }
}

void setRoutineLog(bool isOn) {
    isRoutineLogged = isOn;
}

LogSink setLogSink(LogSink sink) {
    const std::scoped_lock lock(output().mutex);
    return std::exchange(output().sink, std::move(sink));
}

}  // namespace tessaly::base
