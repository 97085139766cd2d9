// SPDX-License-Identifier: MIT
#include <unistd.h>

#include "cli/context.h"
#include "cli/rpc_answer.h"
#include "cli/rpc_lines.h"
#include "cli/verb_functions.h"

namespace tessaly::cli {

Exit runRpc(Context& context) {
    const RpcAnswers answers{context.services.ports().clock, {context.services.dateStrings()}};
    RpcLines lines{STDIN_FILENO, context.out, context.cancelled};
    while (const auto line = lines.next()) {
        context.out.line(line->isTooLong ? RpcAnswers::answerToTooLong()
                                         : answers.answerTo(line->text));
    }
    if (lines.error().empty()) {
        return Exit::done;
    }
    complain(lines.error());
    return Exit::couldNot;
}

}  // namespace tessaly::cli
