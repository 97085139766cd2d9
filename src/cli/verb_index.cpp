// SPDX-License-Identifier: MIT
#include <fmt/format.h>

#include "app/index_keeper.h"
#include "base/localisation.h"
#include "cli/context.h"
#include "cli/json_line.h"
#include "cli/safe_text.h"
#include "cli/verb_functions.h"

namespace tessaly::cli {

namespace {

using base::Failure;
using base::tr;
using base::trPlural;

Exit notWritten(Context& context, const Failure& failure) {
    const char* text = nullptr;
    if (failure.kind == Failure::Kind::unavailable) {
        text = base::N_("no start-up index is kept here: {}");
    } else if (failure.kind == Failure::Kind::exists) {
        text = base::N_("the start-up index is being written at this moment: {}");
    }
    if (text == nullptr) {
        return couldNot(context, failure);
    }
    return couldNot(context,
                    {failure.kind, fmt::format(fmt::runtime(tr(text)), failure.description)});
}

std::string withNumber(const Context& context, const std::string& text, std::size_t count) {
    const base::LocaleFormats& formats = context.services.dateStrings().formats();
    return fmt::format(fmt::runtime(text), formats.number(static_cast<long long>(count)));
}

}  // namespace

Exit runIndex(Context& context) {
    const auto written = app::writeIndex(context.services, context.readOptions());
    if (!written) {
        return notWritten(context, written.failure());
    }
    context.progress.erase();
    if (context.invocation.json) {
        context.out.line(JsonObject{}
                             .add("did", "indexWritten")
                             .add("notes", written->notes)
                             .add("fresh", written->fresh)
                             .add("path", written->file)
                             .text());
        return Exit::done;
    }
    context.out.line(withNumber(context,
                                trPlural("Wrote the start-up index: {} note.",
                                         "Wrote the start-up index: {} notes.", written->notes),
                                written->notes));
    if (written->fresh > 0) {
        context.out.line(
            withNumber(context,
                       trPlural("{} note has changed just now and is read at the next start.",
                                "{} notes have changed just now and are read at the next start.",
                                written->fresh),
                       written->fresh));
    }
    return Exit::done;
}

}  // namespace tessaly::cli
