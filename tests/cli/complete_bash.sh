#!/bin/bash
# SPDX-License-Identifier: MIT
# Asks bash's completion for words and compares what it offers.
#   complete_bash.sh PROGRAM ROOT
set -u
PATH=$(dirname "$1"):$PATH
export TESSALY_ROOT=$2 LC_ALL=C.UTF-8
source <(tessaly --dump completion-bash)
compopt() { :; }  # works only where the shell itself completes
failed=0

# check EXPECTED WORD…: the last word is being typed
check() {
    local expected=$1
    shift
    COMP_WORDS=(tessaly "$@") COMP_CWORD=$#
    _tessaly
    local offered
    offered=$(printf '%s\n' "${COMPREPLY[@]}" | sort | paste -sd '|')
    if [[ $offered != "$expected" ]]; then
        echo "tessaly $*: expected $expected, got $offered"
        failed=1
    fi
}

check 'tags|tasks|today|trash' t
check 'today' --root nowhere tod
check '--color' --c
check 'always|auto|never' --color ''
check 'always|auto|never' today --color ''
check '' today ''
check '--state' tasks --s
check 'cancelled|done|open|scheduled' tasks --state ''
check 'today|tomorrow' day to
check '' day today ''
check 'Notes/Home/Books.txt|Notes/Home/Garten.txt' show Notes/Home/
check 'Notes/Reading list.txt' show 'Notes/Reading\ l'
check '' --root nowhere show Notes/
check 'get|list|reset|set' settings ''
check 'markAsCanceled|markAsDone|markAsScheduled' mark markAs
check 'append|overwrite|prepend' add x --mode ''
check 'Notes/Home/Books.txt' add x --to Notes/Home/B
check 'Notes/Home/Garten.txt' trash Notes/Home/Books.txt Notes/Home/G
check 'Notes/Home/Garten.txt' 'done' Notes/Home/Books.txt Notes/Home/G
check 'day|month|quarter|week|year' repeat today:2 --every ''
check 'restore' history re
check 'isNumbersTodo' settings get isN
check '' settings set isNumbersTodo ''
check "$2/Notes" --root "$2/N"
check "$2/Notes/Home" parse "$2/Notes/H"
check 'delete|list|rename|save|show' filter ''
check 'all|future|last-month|last-week|next-month|next-week|past|this-month|this-week' \
    filter save Week --timeframe ''
check 'today|tomorrow' filter save Week --to to

# Filters, which the root has none of.
folder=$(mktemp -d)
trap 'rm -r "$folder"' EXIT
export HOME=$folder XDG_CONFIG_HOME=$folder XDG_DATA_HOME=$folder XDG_STATE_HOME=$folder \
    XDG_CACHE_HOME=$folder TESSALY_ROOT=$folder/root
mkdir "$TESSALY_ROOT"
for name in 'This week' Trip; do
    tessaly filter save "$name" --state open >/dev/null || failed=1
done
check 'This week|Trip' filter show ''
check 'This week' filter 'delete' 'This\ w'
check 'Trip' filter rename Tr
check '' filter rename Trip ''
check 'This week|Trip' search --filter T
check '' search call T
exit $failed
