#!/bin/bash
# Enables a Debian machine to run the Windows programs that mingw builds.
#
#   scripts/install-wine.sh {32|64} REASON
#
# Wine for programs of the given width is installed among the packages of the machine if it fits them.
# That needs shared libraries of exactly the same versions for i386 and for amd64. Now and then the
# package indexes of the two architectures are of different hours and nothing fits. So several sets of
# indexes are tried, each by a simulation first. If none fits, Wine is installed in a folder of its own
# (see wine-root.sh). KEL_WINE in the environment chooses one way:
#
#   machine   only among the packages of the machine
#   root      only in the folder
#   no        not at all
#
# The folder is build/cache/wine, or wine in the folder that KEL_CACHE names.
#
# Ends with status 0 if a program has been built and run. Ends with status 10 if Wine is missing and may
# not be installed, because this is not root on Debian or because of KEL_WINE=no; the file REASON then
# holds a line with the reason. Any other failure is status 1.
set -u
export LC_ALL=C DEBIAN_FRONTEND=noninteractive
cd "$(dirname "$0")/.." || exit

usage="usage: install-wine.sh {32|64} REASON"
width=${1:?$usage}
reason=${2:?$usage}
case $width in
    32)
        compiler=i686-w64-mingw32-g++-posix
        packages=(wine wine32:i386)
        ;;
    64)
        compiler=x86_64-w64-mingw32-g++-posix
        packages=(wine wine64)
        ;;
    *)
        echo "$usage" >&2
        exit 2
        ;;
esac
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
mkdir -p "$(dirname "$reason")"
rm -f "$reason"

give_up() {
    echo "$1" >"$reason"
    echo "install-wine.sh: $1" >&2
    exit 10
}

fail() {
    echo "install-wine.sh: $1" >&2
    exit 1
}

# Returns whether winerun.sh runs a program.
runs() {
    timeout 300 scripts/winerun.sh "$scratch/probe.exe" </dev/null >/dev/null 2>&1
    [ $? = 42 ]
}

apt=(apt-get -y -q -o Acquire::Retries=3 -o Dpkg::Use-Pty=0 -o DPkg::Lock::Timeout=300)
index=() # options that choose a set of package indexes; none for the machine's own

# use_index SUITE...: chooses a separate set of indexes that is consistent between the architectures.
# The machine's own indexes are not changed.
use_index() {
    local folder="$scratch/$1-$#" suite
    mkdir -p "$folder/lists/partial"
    for suite in "$@"; do
        echo "deb [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] $(scripts/mirror.sh) $suite main"
    done >"$folder/sources.list"
    index=(-o Dir::Etc::sourcelist="$folder/sources.list" -o Dir::Etc::sourceparts=/dev/null
        -o Dir::State::lists="$folder/lists" -o APT::Sandbox::User=root)
    chmod 755 "$scratch"
    "${apt[@]}" "${index[@]}" update >>"$scratch/log" 2>&1
}

# Installs the packages if they fit, which a simulation shows.
try_install() {
    local install=("${apt[@]}" "${index[@]}" --no-remove --no-install-recommends)
    "${install[@]}" --simulate install "${packages[@]}" >>"$scratch/log" 2>&1 &&
        "${install[@]}" install "${packages[@]}"
}

# Installs the packages with the first set of indexes that fits. Otherwise the machine is as before.
install_on_machine() {
    local added=no codename
    echo "Installing: ${packages[*]}"
    # shellcheck source=/dev/null
    codename=$(. /etc/os-release && echo "$VERSION_CODENAME")
    if [ "$width" = 32 ] && ! dpkg --print-foreign-architectures | grep -qx i386; then
        dpkg --add-architecture i386
        added=yes
    fi
    "${apt[@]}" update >>"$scratch/log" 2>&1 || echo "A package index is unavailable now; continuing."
    try_install && return
    use_index "$codename" "$codename-updates" && try_install && return
    use_index "$codename" && try_install && return
    tail -n 20 "$scratch/log" >&2
    # Every later update would fail with an index that is broken now.
    [ $added = no ] || dpkg --remove-architecture i386
    return 1
}

install_in_folder() {
    scripts/wine-root.sh "${KEL_CACHE:-build/cache}/wine" || fail "Wine's own folder cannot be made"
    runs || fail "Wine in its own folder does not run a $width-bit program"
}

way=${KEL_WINE:-any}
[ "$way" != no ] || give_up "KEL_WINE=no asks to do without Wine"
printf 'int main() { return sizeof(void*) == %d ? 42 : 1; }\n' $((width / 8)) >"$scratch/probe.cpp"
"$compiler" -static -o "$scratch/probe.exe" "$scratch/probe.cpp" || fail "mingw does not build a program"

if [ "$way" != root ] && runs; then
    exit 0
fi
if [ "$(id -u)" != 0 ] || ! grep -qs '^ID=debian' /etc/os-release; then
    give_up "Wine for $width-bit programs is missing, and this is not root on Debian"
fi
case $way in
    any) { install_on_machine && runs; } || install_in_folder ;;
    machine) { install_on_machine && runs; } || fail "Wine does not fit the packages of this machine" ;;
    root) install_in_folder ;;
    *) fail "KEL_WINE is neither machine nor root nor no: $way" ;;
esac
