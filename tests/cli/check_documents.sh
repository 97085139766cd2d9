#!/bin/sh
# SPDX-License-Identifier: MIT
# The documents made from the table of verbs: the manual page in the repository is the one that the
# command makes, and each is in the form that its reader asks for.
#   check_documents.sh PROGRAM MANUAL_PAGE
set -eu
program=$1 page=$2
failed=0

complain() {
    echo "$1"
    failed=1
}

"$program" --dump man | diff -u "$page" - ||
    complain "the manual page is out of date; run: tessaly --dump man > packaging/tessaly.1"
! grep '^\.It Li ".*".*"$' "$page" ||
    complain "a quote ends the argument of a macro too early in the manual page"
if command -v mandoc >/dev/null; then
    mandoc -Tlint "$page" || complain "mandoc complains of the manual page"
fi
for shell in bash zsh fish; do
    if command -v "$shell" >/dev/null; then
        "$program" --dump "completion-$shell" | "$shell" -n /dev/stdin ||
            complain "$shell does not read its completions"
    fi
done
exit $failed
