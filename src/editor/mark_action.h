// SPDX-License-Identifier: MIT
#pragma once

#include <array>

#include "base/enum_names.h"

namespace tessaly::editor {

/// The commands on selected lines and words.
enum class MarkAction {
    bold,
    italic,
    link,
    inlineCode,
    heading1,
    heading2,
    heading3,
    heading4,
    todo,
    numberedTodo,
    unorderedList,
    orderedList,
    markAsDone,
    markAsScheduled,
    markAsCanceled,
    shiftRight,
    shiftLeft,
    moveUp,
    moveDown,
    quote,
};

}  // namespace tessaly::editor

template <>
struct tessaly::base::EnumNames<tessaly::editor::MarkAction> {
    using T = editor::MarkAction;
    static constexpr std::array<EnumName<T>, 20> rows{{{T::bold, "bold"},
                                                       {T::italic, "italic"},
                                                       {T::link, "link"},
                                                       {T::inlineCode, "inlineCode"},
                                                       {T::heading1, "heading1"},
                                                       {T::heading2, "heading2"},
                                                       {T::heading3, "heading3"},
                                                       {T::heading4, "heading4"},
                                                       {T::todo, "todo"},
                                                       {T::numberedTodo, "numberedTodo"},
                                                       {T::unorderedList, "unorderedList"},
                                                       {T::orderedList, "orderedList"},
                                                       {T::markAsDone, "markAsDone"},
                                                       {T::markAsScheduled, "markAsScheduled"},
                                                       {T::markAsCanceled, "markAsCanceled"},
                                                       {T::shiftRight, "shiftRight"},
                                                       {T::shiftLeft, "shiftLeft"},
                                                       {T::moveUp, "moveUp"},
                                                       {T::moveDown, "moveDown"},
                                                       {T::quote, "quote"}}};
};
