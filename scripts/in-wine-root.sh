#!/bin/sh
# Runs a command with the packages of a folder that wine-root.sh made.
#
#   scripts/in-wine-root.sh FOLDER COMMAND [ARGUMENT...]
#
# The command sees the folder's /usr in place of the machine's. All other files are the machine's own
# under their own names, so a Wine server that serves several programs sees the files of each, wherever
# they are. Only the command and what it starts see the mounts, which end with the last of them. winerun.sh lets
# later programs join a running server. Needs root.
# shellcheck disable=SC2016 # the inner shell expands the variables
exec unshare --mount sh -eu -c '
    root=$1
    shift
    # What the machine keeps below /usr for itself: locales, checkouts, and documents to test with.
    for kept in /usr/lib/locale /usr/local /usr/src /usr/share/iso-codes; do
        [ -d "$kept" ] || continue
        mkdir -p "$root$kept"
        mount --rbind "$kept" "$root$kept"
    done
    mount --bind "$root/etc/alternatives" /etc/alternatives # where some commands lead
    mount --rbind "$root/usr" /usr
    exec "$@"' sh "$@"
