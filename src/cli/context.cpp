// SPDX-License-Identifier: MIT
#include "cli/context.h"

#include <cstdio>
#include <string>

#include <fmt/format.h>

#include "app/index_keeper.h"
#include "base/localisation.h"
#include "cli/safe_text.h"

namespace tessaly::cli {

store::NoteReader::Options Context::readOptions() {
    store::NoteReader::Options options;
    options.progress = [this](std::size_t files) { progress.tell(files); };
    options.cancelled = &cancelled;
    return options;
}

void complain(std::string_view text) {
    const std::string line = fmt::format("tessaly: {}\n", text);
    std::fwrite(line.data(), 1, line.size(), stderr);
}

Exit misuse(std::string_view text) {
    complain(text);
    return Exit::misuse;
}

Exit couldNot(Context& context, const base::Failure& failure) {
    context.progress.erase();
    if (failure.kind != base::Failure::Kind::cancelled) {
        complain(safeText(failure.description));
    }
    return Exit::couldNot;
}

void tellOfSkipped(const Context& context) {
    if (context.skipped == 0) {
        return;
    }
    const std::string text =
        base::trPlural("{} file could not be read; see: tessaly doctor",
                       "{} files could not be read; see: tessaly doctor", context.skipped);
    complain(fmt::format(fmt::runtime(text), context.skipped));
}

bool isComplete(Context& context, const store::ReadReport& report) {
    context.progress.erase();
    context.skipped += report.skipped.size();
    context.isIndexStale = context.isIndexStale || app::isIndexStale(report);
    return !report.cancelled;
}

}  // namespace tessaly::cli
