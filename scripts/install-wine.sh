#!/bin/bash
# Enables a Debian machine to run the 32-bit Windows programs that mingw builds.
#
#   scripts/install-wine.sh REASON
#
# Ends with status 0 if a program has been built and run, and with status 10 if there is no Wine and
# none can be installed now; the file REASON then holds a line with the reason. Any other failure,
# such as an installed Wine that runs nothing, is status 1. With KEL_WINE=no in the environment the
# script does not try.
#
# 32-bit Wine needs shared libraries for i386 of exactly the versions that are installed for amd64.
# Now and then the package indexes of the two architectures are of different hours and nothing fits.
# So several sets of indexes are tried, each by a simulation first. The machine is changed only if
# all packages fit and none has to be removed. If none fits, only waiting helps.
set -u
export LC_ALL=C DEBIAN_FRONTEND=noninteractive
cd "$(dirname "$0")/.." || exit

reason=${1:?usage: install-wine.sh REASON}
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

printf 'int main() { return sizeof(void*) == 4 ? 42 : 1; }\n' >"$scratch/probe.cpp"
i686-w64-mingw32-g++-posix -static -o "$scratch/probe.exe" "$scratch/probe.cpp" ||
    fail "mingw does not build a program"

runs() {
    timeout 300 scripts/winerun.sh "$scratch/probe.exe" </dev/null >/dev/null 2>&1
    [ $? = 42 ]
}

[ "${KEL_WINE:-yes}" != no ] || give_up "KEL_WINE=no asks to do without Wine"
if runs; then
    exit 0
fi
if [ "$(id -u)" != 0 ] || ! grep -qs '^ID=debian' /etc/os-release; then
    give_up "Wine for 32-bit programs is missing, and this is not root on Debian"
fi

apt=(apt-get -y -q -o Acquire::Retries=3 -o Dpkg::Use-Pty=0 -o DPkg::Lock::Timeout=300)
index=() # options that choose a set of package indexes; none for the machine's own

# Prints the archive that the machine is set up with.
mirror() {
    {
        sed -n 's/^URIs:[[:space:]]*\([^[:space:]]*\).*/\1/p' /etc/apt/sources.list.d/*.sources
        sed -n 's/^deb[[:space:]]\{1,\}\(\[[^]]*\][[:space:]]*\)\{0,1\}\([^[:space:]]*\).*/\2/p' \
            /etc/apt/sources.list /etc/apt/sources.list.d/*.list
    } 2>/dev/null | grep '/debian/*$' | head -n 1
}

# use_index SUITE...: chooses a separate set of indexes that is consistent between the
# architectures. The machine's own indexes are not changed.
use_index() {
    local folder="$scratch/$1-$#" suite
    mkdir -p "$folder/lists/partial"
    for suite in "$@"; do
        echo "deb [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] $(mirror) $suite main"
    done >"$folder/sources.list"
    index=(-o Dir::Etc::sourcelist="$folder/sources.list" -o Dir::Etc::sourceparts=/dev/null
        -o Dir::State::lists="$folder/lists" -o APT::Sandbox::User=root)
    chmod 755 "$scratch"
    "${apt[@]}" "${index[@]}" update >>"$scratch/log" 2>&1
}

# Installs the packages if they fit.
try_install() {
    local install=("${apt[@]}" "${index[@]}" --no-remove --no-install-recommends)
    "${install[@]}" --simulate install wine wine32:i386 >>"$scratch/log" 2>&1 || return 1
    "${install[@]}" install wine wine32:i386 ||
        give_up "Wine for 32-bit programs fits this machine but could not be installed"
}

echo "Installing: wine wine32:i386"
codename=$(. /etc/os-release && echo "$VERSION_CODENAME")
dpkg --print-foreign-architectures | grep -qx i386 || dpkg --add-architecture i386
"${apt[@]}" update >>"$scratch/log" 2>&1 || echo "A package index is unavailable now; continuing."
try_install ||
    { use_index "$codename" "$codename-updates"; try_install; } ||
    { use_index "$codename"; try_install; } || {
    tail -n 20 "$scratch/log" >&2
    give_up "Wine for 32-bit programs cannot be installed: no set of package indexes fits"
}
runs || fail "Wine is installed but does not run a 32-bit program"
