// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace tessaly::cli {

/// How a run ended; the process's exit status.
enum class Exit { done = 0, couldNot = 1, misuse = 2 };

struct Context;

/// What a shell offers to complete.
enum class Completion { nothing, words, day, note, file, folder, settingKey, filter };

/// An option of a verb, or of every verb.
struct OptionRow {
    const char* name;      ///< "--folder"
    const char* argument;  ///< "FOLDER"; null for a switch
    const char* help;      ///< English, to be translated
    Completion completion = Completion::nothing;
    std::string_view words = {};  ///< what the argument may be, by blanks, for `Completion::words`
    /// Options of a verb with the same group, other than 0, exclude each other.
    int group = 0;
};

struct ExampleRow {
    const char* command;
    const char* help;  ///< English, to be translated
};

/// What a shell offers for the arguments of a verb; `words` go before it: before a setting's key or
/// a filter as an argument of its own.
struct ArgumentCompletion {
    Completion completion = Completion::nothing;
    std::string_view words = {};
};

/// What a verb works on, beside what it is given.
enum class Needs { dataFolder, nothing };
/// Whether a verb is done when its work is, or waits for more of it until it is ended.
enum class Stays { no, yes };

/// A verb of the command: parsing, help, manual and shell completions all read this row.
struct VerbRow {
    const char* name;
    const char* synopsis;  ///< its arguments, "[DATE]"
    std::size_t fewest;    ///< arguments
    std::size_t most;
    ArgumentCompletion completion;
    const char* help;  ///< one line; English, to be translated, as is `text`
    const char* text;  ///< paragraphs, an empty line between them
    std::span<const OptionRow> options;
    std::span<const ExampleRow> examples;
    Exit (*run)(Context& context);
    /// Before a verb that needs the data folder, writes that were left half done there are settled.
    Needs needs = Needs::dataFolder;
    Stays stays = Stays::no;
};

/// In the order in which help lists them.
std::span<const VerbRow> verbs();
/// Null when no verb has that name.
const VerbRow* findVerb(std::string_view name);

/// The options of every verb, which may stand before it or behind.
std::span<const OptionRow> globalOptions();

}  // namespace tessaly::cli
