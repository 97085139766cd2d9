// SPDX-License-Identifier: MIT
#include "cli/file_diffs.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include <fmt/format.h>

#include "cli/json_line.h"
#include "cli/note_text.h"
#include "cli/safe_text.h"
#include "cli/spans.h"
#include "store/paths.h"
#include "store/unified_diff.h"

namespace tessaly::cli {

namespace {

/// Relative to the data folder; of a file elsewhere, the whole path.
std::string nameInFolder(std::string_view path, const std::string& root) {
    if (path.size() > root.size() + 1 && store::isInside(path, root)) {
        path.remove_prefix(root.size() + 1);
    }
    return std::string{path};
}

std::string sided(char side, const std::string& name) {
    return fmt::format("{}{}{}", side, name.starts_with('/') ? "" : "/", name);
}

/// `patch` ends a name at a blank unless it stands in quotes.
std::string inQuotesIfNeeded(const std::string& name) {
    if (name.find_first_of(" \"\\") == std::string::npos) {
        return name;
    }
    std::string text = "\"";
    for (const char c : name) {
        text.append(c == '"' || c == '\\' ? "\\" : "").push_back(c);
    }
    return text + '"';
}

bool isEmpty(const std::optional<std::string>& text) {
    return text && text->empty();
}

bool hasHeader(const app::FileChange& change) {
    return change.movedFrom || (!change.before && isEmpty(change.after)) ||
           (!change.after && isEmpty(change.before));
}

/// What lines cannot tell: that a file moves, or that an empty one comes or goes; "" else.
std::string headerOf(const app::FileChange& change, const std::string& from,
                     const std::string& to) {
    if (!hasHeader(change)) {
        return {};
    }
    std::string lines = change.before ? "deleted file mode 100644\nindex e69de29..0000000\n"
                                      : "new file mode 100644\nindex 0000000..e69de29\n";
    if (change.movedFrom) {
        lines = fmt::format("rename from {}\nrename to {}\n", from, to);
    }
    return fmt::format("diff --git {} {}\n{}", inQuotesIfNeeded(sided('a', from)),
                       inQuotesIfNeeded(sided('b', to)), lines);
}

bool isOfBinary(const app::FileChange& change) {
    return isBinary(change.before.value_or("")) || isBinary(change.after.value_or(""));
}

std::string binarySide(Context& context, char side, const std::string& name,
                       const std::optional<std::string>& bytes) {
    return bytes ? fmt::format("{} ({})", sided(side, name), sizeInWords(context, bytes->size()))
                 : "/dev/null";
}

/// What `patch` passes over.
std::string binaryDiff(Context& context, const app::FileChange& change, const std::string& from,
                       const std::string& to) {
    return change.before == change.after
               ? std::string()
               : fmt::format("Binary files {} and {} differ\n",
                             binarySide(context, 'a', from, change.before),
                             binarySide(context, 'b', to, change.after));
}

std::string textOf(Context& context, const app::FileChange& change, const std::string& root) {
    const std::string to = nameInFolder(change.path, root);
    const std::string from = change.movedFrom ? nameInFolder(*change.movedFrom, root) : to;
    const std::string header = headerOf(change, safeText(from), safeText(to));
    if (isOfBinary(change)) {
        return header + binaryDiff(context, change, safeText(from), safeText(to));
    }
    return header + store::unifiedDiff(change.before ? sided('a', from) : std::string{},
                                       change.before.value_or(""),
                                       change.after ? sided('b', to) : std::string{},
                                       change.after.value_or(""));
}

struct LineStyle {
    std::string_view beginning;
    Style style;
};
constexpr std::array headerStyles{
    LineStyle{"+++ ", Style::section},      LineStyle{"--- ", Style::section},
    LineStyle{"diff ", Style::section},     LineStyle{"rename ", Style::section},
    LineStyle{"new file ", Style::section}, LineStyle{"deleted file ", Style::section},
    LineStyle{"index ", Style::section},    LineStyle{"@@ ", Style::place},
};
constexpr std::array lineStyles{
    LineStyle{"@@ ", Style::place},
    LineStyle{"+", Style::added},
    LineStyle{"-", Style::removed},
    LineStyle{"\\", Style::dim},
};

Style styleOf(std::string_view line, std::span<const LineStyle> styles) {
    const auto row = std::find_if(styles.begin(), styles.end(), [&](const LineStyle& one) {
        return line.starts_with(one.beginning);
    });
    return row == styles.end() ? Style::plain : row->style;
}

void printInTerminal(Context& context, std::string_view text) {
    std::span<const LineStyle> styles = headerStyles;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        const Style style = styleOf(line, styles);
        if (style == Style::place) {
            styles = lineStyles;  // a line of a note may begin as a header does
        }
        context.out.line(drawn({{style, safeText(line, LineBreaks::kept)}}, context.terminal));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
    }
}

void printDiff(Context& context, const app::FileChange& change, const std::string& text) {
    if (context.invocation.json) {
        JsonObject object;
        object.add("path", change.path);
        if (change.movedFrom) {
            object.add("movedFrom", *change.movedFrom);
        }
        context.out.line(object.add("diff", text).text());
    } else {
        printDiffText(context, text);
    }
}

}  // namespace

std::string diffBetween(Context& context, const FileText& from, const FileText& to) {
    const std::string root = context.services.dataStore().root();
    return store::unifiedDiff(sided('a', nameInFolder(from.path, root)), from.bytes,
                              sided('b', nameInFolder(to.path, root)), to.bytes);
}

void printDiffText(Context& context, const std::string& text) {
    if (context.terminal.isTerminal) {
        printInTerminal(context, text);
    } else {
        context.out.write(text);
    }
}

void printDiffs(Context& context, const std::vector<app::FileChange>& changes) {
    const std::string root = context.services.dataStore().root();
    // `patch` takes lines of text that follow a header alone for that header's file.
    for (const bool withHeader : {false, true}) {
        for (const app::FileChange& change : changes) {
            if (hasHeader(change) == withHeader) {
                printDiff(context, change, textOf(context, change, root));
            }
        }
    }
}

}  // namespace tessaly::cli
