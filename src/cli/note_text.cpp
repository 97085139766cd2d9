// SPDX-License-Identifier: MIT
#include "cli/note_text.h"

#include <string>

#include "cli/safe_text.h"

namespace tessaly::cli {

void printNoteText(Context& context, std::string_view bytes) {
    if (!context.terminal.isTerminal) {
        context.out.write(bytes);
        return;
    }
    const std::string text = safeText(bytes, LineBreaks::kept);
    context.out.write(text);
    if (!text.empty() && text.back() != '\n') {
        context.out.write("\n");
    }
}

}  // namespace tessaly::cli
