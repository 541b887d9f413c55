#!/usr/bin/env bash
# Installs the Debian packages that a group of work needs; says and does nothing when all are there.
#
#   tools/setup.sh GROUP...
#
#   native    build and run on this machine        windows   cross build, and Wine to run what was built
#   tests     what the tests themselves need       checks    format, static analysis, scripts
#   fuzz      the fuzz targets                     bench     the peers that the engine is measured beside
#   mutation  what finds the places of mutants
#   all       everything but bench and mutation
set -euo pipefail

native='ccache cmake g++ libcli11-dev ninja-build nlohmann-json3-dev googletest'
tests='gcovr libwine-dev locales mingw-w64-tools python3 valgrind'
windows='debootstrap fonts-liberation fonts-wine fp-compiler fpc-source g++-mingw-w64-i686-posix
    g++-mingw-w64-x86-64-posix libwine-dev mingw-w64-tools python3 wine64 xdotool xvfb'
checks='clang-format clang-tidy cppcheck git python3 shellcheck'
fuzz='clang-14 libclang-rt-14-dev llvm-14 python3'
# shellcheck disable=SC2034  # read by their names alone, as they are no part of all
{
    bench='duktape-dev libbenchmark-dev liblua5.4-dev libluajit-5.1-dev python3 tcl8.6-dev'
    # The parser of version 14 gives up on comparisons of vectors.
    mutation='python3 python3-clang-16'
}

asRoot() {
    if [ "$(id -u)" = 0 ]; then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo "$@"
    else
        echo "setup.sh: this needs root, and there is no sudo: $*" >&2
        return 1
    fi
}

# What a command prints is shown only when it fails.
quietly() {
    local output
    if ! output=$("$@" 2>&1 </dev/null); then
        printf '%s\n' "$output" | tail -n 30 >&2
        echo "setup.sh: failed: $*" >&2
        return 1
    fi
}

installMissing() {
    local package installed missing=()
    installed=$(dpkg-query --show --showformat='${Package} ${db:Status-Status}\n' "$@" 2>/dev/null || true)
    for package in "$@"; do
        grep -qxF "$package installed" <<<"$installed" || missing+=("$package")
    done
    if [ ${#missing[@]} = 0 ]; then return; fi
    if ! command -v apt-get >/dev/null; then
        echo "setup.sh: this machine has no apt-get; install the equivalents of: ${missing[*]}" >&2
        return 1
    fi
    echo "setup.sh: installing ${missing[*]}" >&2
    quietly asRoot apt-get -q -o DPkg::Lock::Timeout=300 update
    quietly asRoot env DEBIAN_FRONTEND=noninteractive apt-get -q -y -o DPkg::Lock::Timeout=300 install \
        --no-install-recommends "${missing[@]}"
}

# One with a decimal comma, for tests of whole programs.
makeLocale() {
    if ! locale -a | grep -qix 'de_DE.utf-\?8'; then
        quietly asRoot localedef -i de_DE -f UTF-8 de_DE.UTF-8
    fi
}

groups=("$@")
if [ ${#groups[@]} = 0 ]; then
    sed -n '2,/^set /{/^set /!s/^# \{0,1\}//p}' "$0" >&2
    exit 64
fi

packages=
for group in "${groups[@]}"; do
    case $group in
        native | tests | windows | checks | fuzz | bench | mutation) packages+=" ${!group}" ;;
        all) packages+=" $native $tests $windows $checks $fuzz" ;;
        *)
            echo "setup.sh: no such group: $group" >&2
            exit 64
            ;;
    esac
done

# shellcheck disable=SC2086
installMissing $packages
for group in "${groups[@]}"; do
    case $group in tests | all) makeLocale ;; esac
    case $group in
        windows | all)
            "$(dirname "${BASH_SOURCE[0]}")/wine-x86" --prepare
            "$(dirname "${BASH_SOURCE[0]}")/free-pascal" --prepare
            ;;
    esac
done
