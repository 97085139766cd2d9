#!/bin/sh
# SPDX-License-Identifier: MIT
# Builds and starts what users get, on notes of its own, and looks at the answers.
set -eu
root=$(dirname -- "$(dirname -- "$(readlink -f -- "$0")")")
notes=$(mktemp -d)
trap 'rm -rf "$notes"' EXIT
mkdir "$notes/Calendar" "$notes/Notes"
printf '* [ ] Call Bob\n* [x] Buy milk @done(2019-05-21)\n' >"$notes/Calendar/20190521.txt"
printf '* [ ] Write to Ann\n' >"$notes/Calendar/20190520.txt"
printf '# Plans\n* [ ] Paint the fence >2019-05-21 #home\n' >"$notes/Notes/Plans.txt"

tessaly() { "$root/run" --root "$notes" --now 2019-05-21T09:00:00 "$@"; }
state() { (cd "$notes" && find . -printf '%p %s %T@\n' | sort); }

# expect TEXT ARGUMENTS...: TEXT stands in what the command prints.
expect() {
    text=$1
    shift
    answer=$(tessaly "$@") || {
        echo "tessaly $* ended with status $?"
        exit 1
    }
    case $answer in
        *"$text"*) ;;
        *)
            printf 'tessaly %s does not print "%s" but:\n%s\n' "$*" "$text" "$answer"
            exit 1
            ;;
    esac
}

before=$(state)
expect "Call Bob"
expect "Call Bob" today
expect "Paint the fence" today
expect "Write to Ann" overdue
expect "Buy milk" tasks --state 'done'
expect "Plans" list
expect '"Call Bob"' today --json
expect "#home" tags
expect "# Plans" show Plans
expect "$notes" doctor
[ "$(state)" = "$before" ] || {
    echo "reading has changed the notes"
    exit 1
}

# What is written, in a history of its own.
export XDG_STATE_HOME="$notes/.state" XDG_CACHE_HOME="$notes/.cache"
unset XDG_RUNTIME_DIR
expect "+* Buy bread" add '* Buy bread' --dry-run
expect "Added to Calendar/20190521.txt" add '* Buy bread'
expect "Buy bread" today
expect "Created Notes/Ideas.txt" new Ideas
expect "text added" history today
original=$(tessaly history today --json | sed -n 's/.*"id":"\([0-9a-f]*\)".*"cause":"found".*/\1/p')
expect "Restored Calendar/20190521.txt" history restore "$original"
case $(tessaly show today) in
    *"Buy bread"*)
        echo "the earlier text did not come back"
        exit 1
        ;;
esac
if tessaly nonsense 2>/dev/null; then
    echo "a verb that does not exist is taken"
    exit 1
fi
echo "smoke: all answers are as they should be"
