// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "app/dry_run.h"
#include "app/note_address.h"
#include "base/localisation.h"
#include "cli/context.h"
#include "cli/file_diffs.h"
#include "cli/filter_options.h"
#include "cli/filter_rows.h"
#include "cli/json_line.h"
#include "cli/safe_text.h"
#include "cli/verb_action.h"
#include "cli/verb_functions.h"
#include "search/filter_plist.h"
#include "store/paths.h"

namespace tessaly::cli {

namespace {

using base::tr;
using search::Filter;
using Name = base::Result<std::string>;

void printRecord(Context& context, const std::string& name, const Filter& filter) {
    context.out.line(JsonObject{}.add("name", name).add("items", filterRecords(filter)).text());
}

Exit showOneFilter(Context& context) {
    const std::string& name = context.invocation.arguments[1];
    const auto filter = context.services.filterHelper().load(name);
    if (!filter) {
        return couldNot(context, filter.failure());
    }
    if (context.invocation.json) {
        printRecord(context, name, *filter);
        return Exit::done;
    }
    for (const std::string& line : filterLines(*filter)) {
        context.out.line(line);
    }
    return Exit::done;
}

/// Why a filter cannot be read, without its name.
std::string reasonOf(const base::Failure& failure, const std::string& name) {
    const std::string& words = failure.description;
    return words.starts_with(name + ": ") ? words.substr(name.size() + 2) : words;
}

/// The names go to a program that reads them as they are, so that it is told beside them.
void listUnreadable(Context& context, const std::string& name, const base::Failure& failure) {
    const std::string reason = reasonOf(failure, name);
    if (context.invocation.json) {
        context.out.line(JsonObject{}.add("name", name).add("error", reason).text());
        return;
    }
    const std::string told = fmt::format(fmt::runtime(tr("{0} (cannot be read: {1})")),
                                         safeText(name), safeText(reason));
    if (context.terminal.isTerminal) {
        context.out.line(told);
    } else {
        context.out.line(safeText(name));
        complain(told);
    }
}

void listFilter(Context& context, const std::string& name) {
    const auto filter = context.services.filterHelper().load(name);
    if (!filter) {
        listUnreadable(context, name, filter.failure());
    } else if (context.invocation.json) {
        printRecord(context, name, *filter);
    } else {
        context.out.line(safeText(name));
    }
}

Exit listFilters(Context& context) {
    const auto names = context.services.filterHelper().list();
    if (!names) {
        return couldNot(context, names.failure());
    }
    for (const std::string& name : *names) {
        listFilter(context, name);
    }
    if (names->empty() && context.terminal.isTerminal && !context.invocation.json) {
        context.out.line(tr("No filters are saved."));
    }
    return Exit::done;
}

/// What a change of filters came to: what to print, with the name that the filter has then.
struct FilterChange {
    Name name;
    std::string_view did;  // for programs
    std::string words;
    std::string asked = {};  // the name that the filter was to have
};
using ChangeFilters = std::function<FilterChange(search::FilterHelper filters)>;

/// A file of filters as it would be shown: its bytes are not for people.
std::string readable(const std::string& bytes) {
    const auto filter = search::filterFromPlist(bytes);
    if (!filter) {
        return tr("no filter that can be read") + "\n";
    }
    std::string text;
    for (const std::string& line : filterLines(*filter)) {
        text += line + "\n";
    }
    return text;
}

Exit pretend(Context& context, const ChangeFilters& change) {
    std::vector<app::FileChange> changes;
    std::optional<base::Failure> failure;
    {
        app::DryRun dryRun{context.services};
        const Name name = change(dryRun.services().filterHelper()).name;
        failure = name ? std::nullopt : std::optional(name.failure());
        changes = dryRun.changes();
    }
    if (failure) {
        return couldNot(context, *failure);
    }
    for (app::FileChange& each : changes) {
        for (std::optional<std::string>* bytes : {&each.before, &each.after}) {
            *bytes = *bytes ? std::optional(readable(**bytes)) : std::nullopt;
        }
    }
    printDiffs(context, changes);
    return Exit::done;
}

std::string wordsOf(const FilterChange& done) {
    const std::string name = safeText(*done.name);
    const std::string told =
        done.asked.empty() || done.asked == *done.name
            ? name
            : fmt::format(fmt::runtime(tr("{0} (for “{1}”)")), name, safeText(done.asked));
    return fmt::format(fmt::runtime(done.words), told);
}

Exit make(Context& context, const ChangeFilters& change) {
    if (context.invocation.has("--dry-run")) {
        return pretend(context, change);
    }
    const FilterChange done = change(context.services.filterHelper());
    if (!done.name) {
        return couldNot(context, done.name.failure());
    }
    context.out.line(context.invocation.json
                         ? JsonObject{}.add("did", done.did).add("name", *done.name).text()
                         : wordsOf(done));
    return Exit::done;
}

Exit saveFilter(Context& context) {
    const auto filter = filterFromOptions(context.invocation, [&](std::string_view text) {
        return app::parseDay(text, context.services.today(),
                             context.services.dateStrings().formats());
    });
    if (!filter) {
        complain(filter.failure().description);
        return Exit::misuse;
    }
    const std::string& name = context.invocation.arguments[1];
    return make(context, [&](search::FilterHelper filters) -> FilterChange {
        const auto saved = filters.save(name, *filter);
        if (!saved) {
            return {saved.failure(), {}, {}};
        }
        return saved->how == search::FilterHelper::Saved::How::replacing
                   ? FilterChange{saved->name, "replaced", tr("Replaced the filter {}"), name}
                   : FilterChange{saved->name, "saved", tr("Saved the filter {}"), name};
    });
}

Exit renameFilter(Context& context) {
    return make(context, [&](search::FilterHelper filters) {
        const auto& arguments = context.invocation.arguments;
        return FilterChange{filters.rename(arguments[1], arguments[2]), "renamed",
                            tr("The filter is now called {}"), arguments[2]};
    });
}

Exit deleteFilter(Context& context) {
    return make(context, [&](search::FilterHelper filters) {
        return FilterChange{filters.remove(context.invocation.arguments[1]), "trashed",
                            tr("Moved to the trash: {}")};
    });
}

constexpr std::array filterActions{
    VerbAction{"list", "", 1, 1, "", listFilters},
    VerbAction{"show", "NAME", 2, 2, "", showOneFilter},
    VerbAction{"save", "NAME", 2, 2, "--state --kind --timeframe --from --to --keyword --dry-run",
               saveFilter},
    VerbAction{"rename", "NAME NEW", 3, 3, "--dry-run", renameFilter},
    VerbAction{"delete", "NAME", 2, 2, "--dry-run", deleteFilter},
};

}  // namespace

Exit runFilter(Context& context) {
    const auto& arguments = context.invocation.arguments;
    const auto action =
        std::find_if(filterActions.begin(), filterActions.end(),
                     [&](const VerbAction& row) { return row.name == arguments.front(); });
    const auto misuse = action == filterActions.end()
                            ? fmt::format(fmt::runtime(tr("{} needs {}")), "filter",
                                          context.invocation.verb->synopsis)
                            : misuseOf(*action, context.invocation);
    if (misuse) {
        complain(*misuse);
        return Exit::misuse;
    }
    return action->run(context);
}

}  // namespace tessaly::cli
