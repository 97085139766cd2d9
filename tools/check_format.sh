#!/bin/sh
# SPDX-License-Identifier: MIT
# Complains of every source that clang-format would write otherwise. With --fix it writes them.
set -eu
cd "$(dirname -- "$(readlink -f -- "$0")")/.."
if [ "${1:-}" = --fix ]; then
    set -- -i
else
    set -- --dry-run -Werror
fi
find src tests bench fuzz \( -name '*.h' -o -name '*.cpp' \) -print0 | xargs -0 clang-format "$@"
