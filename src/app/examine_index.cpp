// SPDX-License-Identifier: MIT
#include "app/examine_index.h"

#include <fmt/format.h>

#include "app/index_keeper.h"
#include "base/localisation.h"

namespace tessaly::app {
namespace {

using Level = Finding::Level;

constexpr char what[] = "index";

Finding unused(const base::Failure& failure, Level level) {
    return {level,
            what,
            fmt::format(fmt::runtime(base::tr("The start-up index is not used: {}")),
                        failure.description),
            {}};
}

Finding findingOf(const IndexState& state, const base::LocaleFormats& formats) {
    if (!state.failure) {
        const std::string notes = formats.number(static_cast<long long>(state.notes));
        return {Level::fine, what,
                fmt::format(fmt::runtime(base::tr("Notes in the start-up index: {}")), notes),
                state.file};
    }
    if (!state.isWanted) {
        return unused(*state.failure, Level::fine);
    }
    if (state.failure->kind == base::Failure::Kind::notFound) {
        return {
            Level::fine,
            what,
            base::tr("There is no start-up index; it is written when there are a thousand notes"),
            {}};
    }
    Finding finding = unused(*state.failure, Level::note);
    finding.command = {"tessaly", "index"};
    return finding;
}

}  // namespace

void examineIndex(Services& services, Findings& findings) {
    findings.add(findingOf(indexState(services), services.dateStrings().formats()));
}

}  // namespace tessaly::app
