#!/bin/sh
# Runs a Windows program under Wine, as CTest's emulator: without a display, for any user, in a Wine
# prefix of its own.
#
#   scripts/winerun.sh PROGRAM [ARGUMENT...]
#
# The first run makes the prefix, which takes some seconds. One Wine server remains for five minutes
# after the last program: without it each program would have to start and end one. Server and
# services do not inherit our output, because a test driver waits until every process that inherited
# it has closed it.
# Ends with status 77 if there is no Wine.
: "${WINEPREFIX:=${TMPDIR:-/tmp}/kel-wine-$(id -u)}"
: "${WINEDEBUG:=-all}"
: "${WINEDLLOVERRIDES:=mscoree,mshtml=}" # no offers to install what no test needs
export WINEPREFIX WINEDEBUG WINEDLLOVERRIDES
unset DISPLAY WAYLAND_DISPLAY
# File names and arguments are UTF-8, whatever locale a test runs in.
export LC_CTYPE=C.UTF-8
if [ "${LC_ALL:-C}" = C ]; then
    export LC_ALL=C.UTF-8
fi

wine=$(command -v wine-stable || command -v wine) || {
    echo "winerun.sh: Wine is not installed" >&2
    exit 77
}
mkdir -p "$WINEPREFIX" || exit 77
(
    flock 9
    # If a server runs already, a second one ends with status 2. A new server has no services yet.
    if wineserver -p300 </dev/null >/dev/null 2>&1 9>&-; then
        timeout 180 "$wine" wineboot </dev/null >/dev/null 2>&1 9>&-
    fi
) 9>"$WINEPREFIX.lock"
exec "$wine" "$@"
