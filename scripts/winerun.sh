#!/bin/sh
# Runs a program for 32-bit or 64-bit Windows under Wine, as CTest's emulator: without a display, for
# any user, in a Wine prefix of its own.
#
#   scripts/winerun.sh PROGRAM [ARGUMENT...]
#
# Uses the Wine of the folder that install-wine.sh has made where the machine's packages do not fit, or
# the machine's own Wine if the folder is missing or KEL_WINE is "machine".
#
# The first run makes the prefix, which takes some seconds. One Wine server remains for a minute
# after the last program: without it each program would have to start and end one. Server and
# services do not inherit our output, because a test driver waits until every process that inherited
# it has closed it. While a server runs, a program needs nothing but Wine's loader, and starts in a third of
# the time.
# Ends with status 77 if there is no Wine.
# shellcheck shell=dash # its test has -O and -ef, as bash's has
case $0 in
    */*) scripts=${0%/*} ;;
    *) scripts=. ;;
esac

# The header of the program says for which processor it is.
header=$(od -An -tu4 -j60 -N4 -- "$1" 2>/dev/null)
case $(od -An -tx2 -j$((${header:-0} + 4)) -N2 -- "$1" 2>/dev/null) in
    *8664*) width=64 ;;
    *) width=32 ;;
esac

root=${KEL_CACHE:-build/cache}/wine # in the repository, unless it begins with "/"
case $root in
    /*) ;;
    *) root=$scripts/../$root ;;
esac
if [ "${KEL_WINE:-}" = machine ] || [ ! -d "$root" ] || [ "$(id -u)" != 0 ]; then
    root=
    : "${WINEPREFIX:=${TMPDIR:-/tmp}/kel-wine$width-$(id -u)}"
else
    root=$(cd "$root" && pwd)
    : "${WINEPREFIX:=$root/prefix$width}"
fi
: "${WINEDEBUG:=-all}"
: "${WINEDLLOVERRIDES:=mscoree,mshtml=}" # no offers to install what no test needs
WINEARCH=win$width
export WINEPREFIX WINEARCH WINEDEBUG WINEDLLOVERRIDES
unset DISPLAY WAYLAND_DISPLAY
# File names and arguments are UTF-8, whatever locale a test runs in.
export LC_CTYPE=C.UTF-8
if [ "${LC_ALL:-C}" = C ]; then
    export LC_ALL=C.UTF-8
fi

# The file has the process and the folder of the server that was started last, and the loader. One that
# somebody else has made is not trusted.
running=$WINEPREFIX/.server
if [ -O "$running" ] && read -r server folder wine <"$running" && [ "/proc/$server/cwd" -ef "$folder" ]; then
    if [ "/proc/$server/ns/mnt" -ef /proc/self/ns/mnt ]; then
        exec "$wine" "$@"
    elif [ -n "$root" ]; then # the server sees the folder's packages
        exec nsenter --mount="/proc/$server/ns/mnt" --wdns="$PWD" "$wine" "$@"
    fi
fi
if [ -n "$root" ]; then
    KEL_WINE=machine exec "$scripts/in-wine-root.sh" "$root" "$scripts/winerun.sh" "$@"
fi

# The loader of the program's width starts it ten times as fast as the other one. The command "wine" is
# a script that finds it.
wine=
case $width in
    32) wine=$(PATH=/usr/lib/wine command -v wine) ;;
    64) wine=$(PATH=$PATH:/usr/lib/wine command -v wine64) ;;
esac
: "${wine:=$(command -v wine-stable || command -v wine)}"
if [ -z "$wine" ]; then
    echo "winerun.sh: Wine is not installed" >&2
    exit 77
fi
mkdir -p "$WINEPREFIX" || exit 77
# The lock is this shell's own. A subshell would run its last command in its own place, and so give the
# lock up before the services run. Another program would then start them, with its own output.
exec 9>"$WINEPREFIX/.lock"
flock 9
# If a server runs already, a second one ends with status 2. A new server has no services yet.
if wineserver -p60 </dev/null >/dev/null 2>&1 9>&-; then
    timeout 180 "$wine" wineboot </dev/null >/dev/null 2>&1 9>&-
    # A server works in a folder that it names after the device and the number of the prefix.
    name=server-$(stat -L -c %D "$WINEPREFIX")-$(printf %x "$(stat -L -c %i "$WINEPREFIX")")
    for server in $(pidof wineserver wineserver64 wineserver32 2>/dev/null); do
        folder=$(readlink "/proc/$server/cwd")
        [ "${folder##*/}" != "$name" ] || echo "$server $folder $wine" >"$running"
    done
fi
exec 9>&-
exec "$wine" "$@"
