// SPDX-License-Identifier: MIT
#include "cli/documents.h"

#include <array>

namespace tessaly::cli {

namespace {

struct Document {
    std::string_view name;
    std::string (*make)();
};

constexpr std::array documents{
    Document{"man", manPage},
    Document{"completion-bash", bashCompletion},
    Document{"completion-zsh", zshCompletion},
    Document{"completion-fish", fishCompletion},
};

}  // namespace

std::optional<std::string> documentNamed(std::string_view name) {
    for (const Document& document : documents) {
        if (document.name == name) {
            return document.make();
        }
    }
    return std::nullopt;
}

}  // namespace tessaly::cli
