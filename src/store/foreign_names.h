// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace tessaly::store {

/// What a file's name alone tells of it. Everything that lists a folder of notes asks here.
enum class NameKind {
    ordinary,
    hidden,       ///< begins with a dot, and is no temporary file of ours
    temporary,    ///< of ours, or of a sync client or program that is writing
    backup,       ///< an editor's
    placeholder,  ///< of a sync client, for a file that has not been downloaded
};

/// Case counts: names are known as programs write them. What a user may call a note is ordinary,
/// "~100 ideas.txt" and "#1 list.txt" too. Searches only the ends of the name.
NameKind nameKind(std::string_view name);

/// The name of the file that a placeholder stands for; nothing for any other name.
std::optional<std::string_view> nameOfPlaceholder(std::string_view name);

/// Which version the device in a conflict copy's name wrote: the copy, or, as some clients have it,
/// the version that kept the plain name.
enum class DeviceOf { copy, original };

/// A name that a sync client gave to one of two versions of a file.
struct ConflictName {
    std::string original;     ///< the name of the file that it is a version of
    std::string device;       ///< device or user as the name tells it; may be empty
    DeviceOf deviceOf;        ///< says nothing when `device` is empty
    std::string_view client;  ///< whose pattern it is, English: "Syncthing"
};

/// Reads a name as a conflict copy's, without asking whether the original is there. Only the last
/// mark is taken off: the original may be a conflict copy's name again. Nothing for other names,
/// for which no pattern is tried unless some part of the name gives reason to.
std::optional<ConflictName> conflictName(std::string_view name);

/// The note that `name` is a conflict copy of: a name counts as one only when `exists` knows the
/// original, or, where that is a conflict copy itself, its original, in the same folder. Where
/// several of these are known it is the innermost, which is no conflict copy. `exists` is asked for
/// a name as `name` spells it, then for the same composed (form C); `original` is what it knew.
/// Device and client are those of the last mark.
std::optional<ConflictName> conflictCopyOf(
    std::string_view name, const std::function<bool(std::string_view name)>& exists);

}  // namespace tessaly::store
