// SPDX-License-Identifier: MIT
#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "app/note_lists.h"
#include "base/graphemes.h"
#include "base/localisation.h"
#include "base/note_type.h"
#include "cli/context.h"
#include "cli/json_records.h"
#include "cli/safe_text.h"
#include "cli/spans.h"
#include "cli/task_lines.h"
#include "cli/verb_functions.h"

namespace tessaly::cli {

namespace {

using base::tr;

app::NoteScope listScope(const Invocation& invocation) {
    if (invocation.has("--all")) {
        return app::NoteScope::all;
    }
    return invocation.has("--calendar") ? app::NoteScope::calendar : app::NoteScope::general;
}

/// Whether general notes have that folder; they all lie in the one without a name.
bool isFolder(Context& context, std::string_view folder) {
    constexpr std::string_view notes = "Notes/";
    if (folder.starts_with(notes)) {
        folder.remove_prefix(notes.size());
    }
    if (folder.empty()) {
        return true;
    }
    const auto path = context.services.dataStore().pathOf(base::NoteType::note, folder);
    return path && context.services.ports().files.kindOf(*path).ok();
}

std::string pathOf(const app::NoteRow& row) {
    return fmt::format("{}/{}", base::folderName(row.type), safeText(row.filename));
}

/// "Work/Garden/" of "Work/Garden/Plants.txt"; empty without a folder.
std::string foldersOf(std::string_view filename) {
    const std::size_t slash = filename.rfind('/');
    return slash == std::string_view::npos ? std::string{}
                                           : safeText(filename.substr(0, slash + 1));
}

/// "○ 3 ✓ 12" in columns of their own, blank where there are none.
Spans countsOf(const store::NoteModel& model, const Terminal& terminal) {
    const auto part = [&](grammar::TodoType type, unsigned count, Spans& spans) {
        const Span sign = signOf(type, terminal);
        const std::string number = fmt::format(" {:>3}  ", count);
        if (count == 0) {
            spans.push_back({Style::plain, std::string(widthOf({sign}) + number.size(), ' ')});
            return;
        }
        spans.push_back(sign);
        spans.push_back({Style::dim, number});
    };
    Spans spans;
    part(grammar::TodoType::open, model.numOpenTodos, spans);
    part(grammar::TodoType::done, model.numDoneTodos, spans);
    return spans;
}

/// The days on which notes were changed, in the user's words; few, and dear to make.
class ChangeDates {
public:
    ChangeDates(app::Services& services, const std::vector<app::NoteRow>& rows)
        : _clock(services.ports().clock) {
        for (const app::NoteRow& row : rows) {
            const base::Day day = _clock.local(row.changed).day;
            if (_texts.find(day) == _texts.end()) {
                const std::string& text = _texts[day] = services.dateStrings().dateWithYear(day);
                _columns = std::max(_columns, base::terminalWidth(text));
            }
        }
    }

    /// All of them equally wide.
    std::string of(const app::NoteRow& row) const {
        const std::string& text = _texts.at(_clock.local(row.changed).day);
        return std::string(_columns - base::terminalWidth(text), ' ') + text;
    }

private:
    ports::Clock& _clock;
    std::map<base::Day, std::string> _texts;
    std::size_t _columns = 0;
};

void printInTerminal(Context& context, const app::NoteRow& row, const ChangeDates& dates) {
    Spans left{{Style::dim, foldersOf(row.filename)}, {Style::plain, safeText(row.title)}};
    if (row.model.date) {
        left.push_back({Style::dim, "  " + base::tagText(*row.model.date)});
    }
    Spans right = countsOf(row.model, context.terminal);
    right.push_back({Style::dim, dates.of(row)});
    context.out.line(drawn(withRightPart(left, right, context.terminal), context.terminal));
}

void printInTerminal(Context& context, const std::vector<app::NoteRow>& rows) {
    const ChangeDates dates{context.services, rows};
    for (const app::NoteRow& row : rows) {
        printInTerminal(context, row, dates);
    }
}

void printRow(Context& context, const app::NoteRow& row) {
    if (context.invocation.json) {
        context.out.line(recordOf(row).text());
    } else {
        const Spans line{{Style::dim, pathOf(row)}, {Style::plain, "  " + safeText(row.title)}};
        context.out.line(drawn(line, context.terminal));
    }
}

}  // namespace

Exit runList(Context& context) {
    const std::string folder = context.invocation.value("--folder");
    const app::NoteRows notes = app::listNotes(context.services, listScope(context.invocation),
                                               folder, context.readOptions());
    if (!isComplete(context, notes.report)) {
        return Exit::couldNot;
    }
    if (notes.rows.empty() && !isFolder(context, folder)) {
        complain(fmt::format(fmt::runtime(tr("there is no folder “{}”")), safeText(folder)));
        return Exit::couldNot;
    }
    if (context.terminal.isTerminal && !context.invocation.json) {
        printInTerminal(context, notes.rows);
        return Exit::done;
    }
    for (const app::NoteRow& row : notes.rows) {
        printRow(context, row);
    }
    return Exit::done;
}

}  // namespace tessaly::cli
