// SPDX-License-Identifier: MIT
#include "tasks/operation_failures.h"

#include "base/log.h"

namespace tessaly::tasks {

using Kind = base::Failure::Kind;

namespace {

std::string_view textFor(Kind kind) {
    if (kind == Kind::outside) {
        return "couldn't create the url";
    }
    return kind == Kind::notFound ? "file does not exist"
                                  : "Could not read and write into the note: ";
}

}  // namespace

base::Failure loggedOfNote(base::Failure failure) {
    if (failure.kind != Kind::changed) {
        base::log(textFor(failure.kind), failure.description);
    }
    return failure;
}

bool isLasting(Kind kind) {
    return isLost(kind) || kind == Kind::denied || kind == Kind::tooLarge || kind == Kind::changed;
}

bool isLost(Kind kind) {
    return kind == Kind::notFound || kind == Kind::notAFile || kind == Kind::malformed ||
           kind == Kind::outside;
}

}  // namespace tessaly::tasks
