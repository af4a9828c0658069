#!/bin/sh
# Makes a folder with a small Debian in it, which has Wine for programs of 32 and of 64 bits.
#
#   scripts/wine-root.sh FOLDER
#
# All packages in the folder are from one release of Debian without its updates, so those of the two
# architectures always fit each other. The packages of the machine are not changed, except that
# debootstrap is installed if it is missing. scripts/in-wine-root.sh runs commands in the folder.
#
# Does nothing if the folder exists. Otherwise it needs root and some minutes. With the Wine prefixes that
# the tests make, the folder takes about 4 GB. If the script fails, nothing remains.
set -eu

root=${1:?usage: wine-root.sh FOLDER}
case $root in
    /*) ;;
    *) root=$PWD/$root ;;
esac

scripts=$(cd "$(dirname "$0")" && pwd)

mkdir -p "$(dirname "$root")"
exec 9>"$root.lock"
flock 9
[ ! -d "$root" ] || exit 0

echo "Installing Wine in a folder of its own: $root"
if ! unshare --mount true; then
    echo "wine-root.sh: this system does not allow mounting, which the folder needs" >&2
    exit 1
fi
if ! command -v debootstrap >/dev/null; then
    DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends debootstrap ||
        { apt-get update && apt-get install -y --no-install-recommends debootstrap; }
fi

unfinished=$root.unfinished
rm -rf "$unfinished"
trap 'rm -rf "$unfinished"' EXIT
trap 'exit 1' INT TERM
# shellcheck source=/dev/null
codename=$(. /etc/os-release && echo "$VERSION_CODENAME")
export LC_ALL=C DEBIAN_FRONTEND=noninteractive
# The mounts are seen by these commands alone, and end with them.
# shellcheck disable=SC2016 # the inner shells expand the variables
unshare --mount sh -eu -c '
    debootstrap --arch=amd64 --variant=minbase "$2" "$1" "$3"
    echo force-unsafe-io >"$1/etc/dpkg/dpkg.cfg.d/fast"
    mountpoint -q "$1/proc" || mount -t proc proc "$1/proc"
    chroot "$1" sh -eu -c "
        dpkg --add-architecture i386
        apt-get -q update
        apt-get -q -y --no-install-recommends install wine wine32:i386 wine64
        apt-get clean"' sh "$unfinished" "$codename" "$("$scripts/mirror.sh")" 9>&-
mkdir -p "$unfinished/usr/lib/locale" # where in-wine-root.sh mounts
mv "$unfinished" "$root"
