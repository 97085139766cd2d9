// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "app/note_history.h"
#include "base/localisation.h"
#include "cli/change_report.h"
#include "cli/context.h"
#include "cli/history_rows.h"
#include "cli/note_text.h"
#include "cli/verb_action.h"
#include "cli/verb_functions.h"
#include "store/note_document.h"

namespace tessaly::cli {

namespace {

using base::Failure;
using base::tr;
using File = std::optional<std::string>;

/// The file whose texts are meant; none: those of all.
base::Result<File> wantedFile(Context& context, std::size_t argument) {
    const auto& arguments = context.invocation.arguments;
    if (arguments.size() <= argument) {
        return File{};
    }
    auto file = app::fileInHistory(context.services, arguments[argument], context.readOptions());
    context.progress.erase();
    return file ? base::Result<File>{std::move(file).value()} : file.failure();
}

Exit listTexts(Context& context, std::size_t noteArgument) {
    const auto file = wantedFile(context, noteArgument);
    if (!file) {
        return couldNot(context, file.failure());
    }
    const auto rows = app::listHistory(context.services, *file);
    if (!rows) {
        return couldNot(context, rows.failure());
    }
    if (rows->empty() && context.terminal.isTerminal && !context.invocation.json) {
        context.out.line(tr("No texts are kept."));
    }
    printRows(context, *rows, *file ? Of::oneFile : Of::allFiles);
    return Exit::done;
}

Exit listAllHistory(Context& context) {
    return listTexts(context, 0);
}

Exit showText(Context& context) {
    const auto text = app::historyText(context.services, context.invocation.arguments[1]);
    if (!text) {
        return couldNot(context, text.failure());
    }
    if (!context.invocation.json) {
        printNoteText(context, text->bytes);
        return Exit::done;
    }
    const auto decoded = store::decodedText(text->bytes);
    if (!decoded) {
        return couldNot(context,
                        {Failure::Kind::malformed,
                         fmt::format(fmt::runtime(tr("{} is not UTF-8 text")), text->row.id)});
    }
    context.out.line(recordOf(text->row).add("text", *decoded).text());
    return Exit::done;
}

Exit restoreText(Context& context) {
    const Invocation& invocation = context.invocation;
    const std::string to = invocation.value("--to");
    return carryOut(context, [&](app::Services& services) {
        return reportOn(
            context, app::restoreText(services, invocation.arguments[1],
                                      invocation.has("--to") ? std::optional<std::string_view>(to)
                                                             : std::nullopt,
                                      context.readOptions()));
    });
}

bool mayClear(Context& context, std::size_t texts) {
    if (context.invocation.has("--yes")) {
        return true;
    }
    const std::string what =
        fmt::format(fmt::runtime(base::trPlural("{} text will be gone for good.",
                                                "{} texts will be gone for good.", texts)),
                    texts);
    const auto answer = context.services.ports().questions(
        {tr("Clear the history?"), what, {tr("Yes, clear it"), tr("No, keep it")}});
    if (!answer) {
        complain(tr("there is no answer, so nothing was cleared; with --yes there is no question"));
    }
    return answer && *answer == 0;
}

void printCleared(Context& context, std::size_t texts) {
    if (context.invocation.json) {
        context.out.line(JsonObject{}.add("did", "cleared").add("entries", texts).text());
        return;
    }
    const std::string words = base::trPlural("Cleared {} text", "Cleared {} texts", texts);
    context.out.line(fmt::format(fmt::runtime(words), texts));
}

Exit clearTexts(Context& context) {
    if (context.invocation.has("--dry-run")) {
        return listTexts(context, 1);  // these would go
    }
    const auto file = wantedFile(context, 1);
    if (!file) {
        return couldNot(context, file.failure());
    }
    const auto entries = context.services.history().entries(*file);
    if (!entries) {
        return couldNot(context, entries.failure());
    }
    if (!entries->empty() && !mayClear(context, entries->size())) {
        return Exit::couldNot;
    }
    const auto cleared = context.services.history().clear(*file);
    if (!cleared) {
        return couldNot(context, cleared.failure());
    }
    printCleared(context, *cleared);
    return Exit::done;
}

constexpr std::array historyActions{
    VerbAction{"show", "ID", 2, 2, "", showText},
    VerbAction{"restore", "ID", 2, 2, "--to --dry-run", restoreText},
    VerbAction{"clear", "[NOTE]", 1, 2, "--yes --dry-run", clearTexts},
    VerbAction{"", "[NOTE]", 0, 1, "", listAllHistory},
};

const VerbAction& actionOf(const std::vector<std::string>& arguments) {
    const auto named = std::find_if(
        historyActions.begin(), historyActions.end() - 1,
        [&](const VerbAction& row) { return !arguments.empty() && row.name == arguments.front(); });
    return *named;
}

}  // namespace

Exit runHistory(Context& context) {
    const VerbAction& action = actionOf(context.invocation.arguments);
    if (const auto misuse = misuseOf(action, context.invocation)) {
        complain(*misuse);
        return Exit::misuse;
    }
    return action.run(context);
}

}  // namespace tessaly::cli
