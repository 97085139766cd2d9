#!/bin/sh
# SPDX-License-Identifier: MIT
# Runs shellcheck over every shell script of the project.
set -eu
cd "$(dirname -- "$(readlink -f -- "$0")")/.."
# A script that is made while running (SC1090) cannot be followed.
# Scripts are known by their first line; what is sourced, by its name.
{
    find . \( -path ./.git -o -path ./build -o -name corpus \) -prune -o -type f -print0 |
        xargs -0 awk 'FNR == 1 && /^#!\/.*(sh|bash)$/ { printf "%s%c", FILENAME, 0 } { nextfile }'
    find ./tools -name '*.sh' -print0
} | sort -zu | xargs -0 shellcheck --external-sources --severity=warning --exclude=SC1090
