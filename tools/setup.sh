# SPDX-License-Identifier: MIT
# shellcheck shell=sh
# What ./run, ./test and bench/run share. Source it with `root` set to the checkout. All it has to
# say goes to standard error, so that the output of the program which is started stays clean.

say() { printf '%s\n' "$*" >&2; }

fail() {
    say "$*"
    exit 1
}

# packagesOf SECTION...: the packages of these sections of packages.txt.
packagesOf() {
    for section in "$@"; do
        awk -v wanted="$section" '
            $1 == "#" { inside = (NF == 2 && $2 == wanted); next }
            inside && NF { print $1 }' "${root:?}/packages.txt"
    done
}

# missingOf PACKAGE...: those that are not installed, on one line.
missingOf() {
    # shellcheck disable=SC2016  # dpkg-query fills these in, not the shell
    installed=$(dpkg-query -W -f='${db:Status-Status} ${Package}\n' "$@" 2>/dev/null |
        sed -n 's/^installed //p') || true
    for package in "$@"; do
        printf '%s\n' "$installed" | grep -qxF -e "$package" || printf '%s ' "$package"
    done
}

# needPackages SECTION...: installs what is missing of these sections.
needPackages() {
    wanted=$(packagesOf "$@" | sort -u | tr '\n' ' ')
    if ! command -v apt-get >/dev/null || ! command -v dpkg-query >/dev/null; then
        say "There is no apt-get here; going on in the hope that these are installed: $wanted"
        return
    fi
    # shellcheck disable=SC2086  # a list of words
    missing=$(missingOf $wanted)
    [ -n "$missing" ] || return 0

    if [ "$(id -u)" = 0 ]; then
        asRoot=
    elif command -v sudo >/dev/null; then
        asRoot=sudo
    else
        fail "These packages are missing, and there is neither root nor sudo to install them:
    apt-get install --no-install-recommends $missing"
    fi
    mkdir -p "$root/build"
    log=$root/build/packages.log
    say "Installing what is missing (as root, through apt-get; the log is build/packages.log):"
    say "    $missing"
    apt="$asRoot env DEBIAN_FRONTEND=noninteractive apt-get -o DPkg::Lock::Timeout=300 -y"
    # shellcheck disable=SC2086  # lists of words
    if ! { $apt update && $apt install --no-install-recommends $missing; } >"$log" 2>&1; then
        tail -n 15 "$log" >&2
        fail "apt-get failed, as above. To try by hand:
    apt-get update && apt-get install --no-install-recommends $missing"
    fi
}

# A compiler cache without a home lives in the build folder.
if [ -z "${CCACHE_DIR:-}" ] && { [ -z "${HOME:-}" ] || [ ! -w "$HOME" ]; }; then
    export CCACHE_DIR="${root:?}/build/.ccache"
fi

# A build machine has nothing to build upon.
if [ -n "${CI:-}" ]; then
    export TESSALY_WERROR=ON TESSALY_PCH=ON TESSALY_UNITY=ON
fi

# configure PRESET: silent unless there is something to complain about.
configure() {
    (cd "$root" && cmake --preset "$1" --log-level=WARNING) >/dev/null ||
        fail "The build could not be configured."
}

# build PRESET
build() {
    (cd "$root" && cmake --build --preset "$1") >&2 || fail "The build failed ($1)."
}

# buildQuietly PRESET: says something only when there was something to do.
buildQuietly() {
    if ! output=$(cd "$root" && cmake --build --preset "$1" -- --quiet 2>&1); then
        say "$output"
        fail "The build failed ($1)."
    fi
    case $output in
        "" | "ninja: no work to do.") ;;
        *) say "$output" ;;
    esac
}
