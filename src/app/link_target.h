// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "app/line_look.h"
#include "base/day.h"

namespace tessaly::app {

/// Where a link leads. What is opened from a note is chosen by this list: an address of any other
/// kind is refused, as a note may come from anybody.
struct LinkTarget {
    enum class Kind {
        web,        ///< `text` is an address of "http", "https" or "mailto"
        noteTitle,  ///< `text` is what a general note is called
        noteFile,   ///< `text` is a file name below the folder of general notes; it may lack ".txt"
        day,        ///< the note of `day`
        picture,    ///< `text` is a file name below the folder of images
        tag,        ///< `text` is "#name" or "@name"
        search,     ///< `text` is what is searched for
        refused     ///< `text` says why, in words for the user
    };
    Kind kind = Kind::refused;
    std::string text;
    base::Day day{};

    bool operator==(const LinkTarget&) const = default;
};

/// Of a span that is a link, a note's title or an image; of others it is refused. No name leads out
/// of its folder, whatever stands in the note; no file is looked at.
LinkTarget linkTarget(const LookSpan& span);

/// The picture that an image shows, below the folder of images: "photo.png", "Images/photo.png" and
/// "../Images/photo.png" are the same. Nothing: it lies elsewhere, as those of the web do.
std::optional<std::string> pictureFile(std::string_view target);

}  // namespace tessaly::app
