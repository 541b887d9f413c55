#!/usr/bin/env bash
# Runs a Windows program in the build tree's own Wine prefix:
#
#   wine-run.sh x64|x86 PROGRAM [ARGUMENT...]    exit code, streams, directory, arguments and environment pass through
#   wine-run.sh x64|x86 --stop                   ends everything that still runs in the prefixes
#
# Called by wine-x64 and wine-x86, which see to it that the right Wine is there. Windows are shown nowhere, unless
# CORVANE_DISPLAY names an X display for them. Programs with a display have a prefix of their own, because the first
# one in a prefix that opens a window decides for all others whether windows can be shown.
set -euo pipefail

word=$1
shift
tree=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

firstOf() {
    local file
    for file in "$@"; do
        if [ -x "$file" ]; then
            echo "$file"
            return
        fi
    done
    echo "wine-run.sh: none of these is installed: $*" >&2
    exit 1
}

case $word in
    x64)
        wine=$(firstOf /usr/lib/wine/wine64)
        export WINEARCH=win64
        ;;
    x86)
        wine=$(firstOf /usr/lib/wine/wine)
        export WINEARCH=win32
        ;;
esac
server=$(firstOf /usr/lib/wine/wineserver64 /usr/lib/wine/wineserver32)

prefix=$tree/build/wine/$word
export WINEDEBUG=${WINEDEBUG:--all}
export WINEDLLOVERRIDES='mscoree,mshtml=;winemenubuilder.exe=d'
export DISPLAY=${CORVANE_DISPLAY:-}
export LANG=${LANG:-C.UTF-8}
unset WINELOADER WINESERVER

if [ "${1:-}" = --stop ]; then
    for WINEPREFIX in "$prefix" "$prefix-windows"; do
        export WINEPREFIX
        if [ -d "$WINEPREFIX" ]; then
            "$server" -k || true
            "$server" -w
        fi
    done
    exit 0
fi

export WINEPREFIX=$prefix${DISPLAY:+-windows}

# A server of our own outlives each program by a few minutes: a cold start costs seconds, a warm one 20 ms. It and the
# services it starts must not hold the caller's streams, or a pipe from the program would stay open after its end.
(
    mkdir -p "$WINEPREFIX"
    exec 9>"$WINEPREFIX.lock"
    flock 9
    exec </dev/null >/dev/null 2>&1
    started=
    if "$server" -p300 9>&-; then
        "$wine" wineboot 9>&-
        started=yes
    fi
    if [ -n "$DISPLAY" ] && [ ! -e "$WINEPREFIX.ready" ]; then
        # No window manager is there: Wine draws the frames, and waits for nobody. Its own fonts are those of Windows.
        "$wine" reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d N /f 9>&-
        cp /usr/share/wine/fonts/*.ttf "$WINEPREFIX/drive_c/windows/Fonts" || true
        touch "$WINEPREFIX.ready"
    fi
    # Wine ends the desktop a second after the last program, and of two programs at once that need a new one, one may
    # find it half made and get no windows. So an idle program stays, for longer than the next one is put in its place,
    # and another one alone opens the first window. Programs with a display run one at a time and begin with a new one.
    opensFirst=$started
    holder=$WINEPREFIX/drive_c/holder
    if [ -z "$DISPLAY" ] && { [ -n "$started" ] || [ -z "$(find "$holder" -mmin -5)" ]; }; then
        rm -f "$holder"
        "$wine" cmd /c "echo.>C:\holder & ping -n 600 127.0.0.1" 9>&- &
        for ((tenths = 0; tenths < 100; ++tenths)); do
            if [ -e "$holder" ]; then break; fi
            sleep 0.1
        done
        opensFirst=yes
    fi
    if [ -n "$opensFirst" ]; then "$wine" rundll32 user32.dll,GetDesktopWindow 9>&-; fi
) || true

exec "$wine" "$@"
