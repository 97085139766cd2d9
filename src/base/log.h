// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string_view>

namespace tessaly::base {

/// Writes one diagnostic line: a fixed English text and, behind it, what it was about (a path, an
/// error's description), which may be empty. Any thread; lines never mix. Line breaks inside
/// become blanks, so that one failure is one line. Note contents are never logged, but for a line
/// that the messages of the tag lists and of numbering name.
void log(std::string_view fixedText, std::string_view subject = {});

/// The same for what happens in the ordinary course of things ("onUpdate"): written unless that was
/// switched off.
void logRoutine(std::string_view fixedText, std::string_view subject = {});
/// Whether routine lines are written; they are at start. Any thread.
void setRoutineLog(bool isOn);

/// Where log lines go, without their line break.
using LogSink = std::function<void(std::string_view line)>;

/// Sends all further lines to `sink`, and returns the sink they went to before. At start, lines go
/// to standard error. Call it while no other thread logs: at start, or around a test.
LogSink setLogSink(LogSink sink);

}  // namespace tessaly::base
