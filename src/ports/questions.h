// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tessaly::ports {

/// An alert, or a choice that is put to the user. The words are in the user's language already.
struct Question {
    std::string title;
    std::string text;
    std::vector<std::string> buttons;  ///< none: the user is only told
};

/// Puts a question to the user and waits for the answer: a button's index. Nothing when nobody can
/// be asked or the user would not answer, and for a question without buttons. Main queue.
using Questions = std::function<std::optional<std::size_t>(const Question&)>;

}  // namespace tessaly::ports
