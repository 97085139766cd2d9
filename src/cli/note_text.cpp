// SPDX-License-Identifier: MIT
#include "cli/note_text.h"

#include <fmt/format.h>

#include "base/localisation.h"
#include "cli/safe_text.h"
#include "store/note_document.h"

namespace tessaly::cli {

std::string sizeInWords(Context& context, std::uint64_t bytes) {
    const std::string words =
        base::trPlural("{} byte", "{} bytes", static_cast<unsigned long>(bytes));
    return fmt::format(fmt::runtime(words), context.services.dateStrings().formats().number(
                                                static_cast<long long>(bytes)));
}

bool isBinary(std::string_view bytes) {
    return bytes.find('\0') != bytes.npos && !store::decodedText(bytes);
}

void printNoteText(Context& context, std::string_view bytes) {
    if (!context.terminal.isTerminal) {
        context.out.write(bytes);
        return;
    }
    if (isBinary(bytes)) {
        context.out.line(
            fmt::format(fmt::runtime(base::tr("binary, {}")), sizeInWords(context, bytes.size())));
        return;
    }
    const std::string text = safeText(bytes, LineBreaks::kept);
    context.out.write(text);
    if (!text.empty() && text.back() != '\n') {
        context.out.write("\n");
    }
}

}  // namespace tessaly::cli
