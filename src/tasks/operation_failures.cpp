// SPDX-License-Identifier: MIT
#include "tasks/operation_failures.h"

#include "base/log.h"

namespace tessaly::tasks {

using FailureKind = base::Failure::Kind;

namespace {

std::string_view textFor(FailureKind kind) {
    if (kind == FailureKind::outside) {
        return "couldn't create the url";
    }
    return kind == FailureKind::notFound ? "file does not exist"
                                         : "Could not read and write into the note: ";
}

}  // namespace

base::Failure loggedOfNote(base::Failure failure) {
    if (failure.kind != FailureKind::changed) {
        base::log(textFor(failure.kind), failure.description);
    }
    return failure;
}

bool isLasting(FailureKind kind) {
    return isLost(kind) || kind == FailureKind::denied || kind == FailureKind::tooLarge ||
           kind == FailureKind::changed;
}

bool isLost(FailureKind kind) {
    return kind == FailureKind::notFound || kind == FailureKind::notAFile ||
           kind == FailureKind::malformed || kind == FailureKind::outside;
}

}  // namespace tessaly::tasks
