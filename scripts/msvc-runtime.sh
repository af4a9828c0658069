#!/bin/bash
# Makes the run-time that the preset windows-msvc links: import libraries, a few objects, and the C++
# library, compiled in Microsoft's 32-bit ABI. See cmake/msvc-runtime/README.md.
#
#   scripts/msvc-runtime.sh
#
# Everything is kept in the folder KEL_CACHE, or else build/cache. The first run downloads the sources of
# libc++ as Debian's source package llvm-toolchain-14 (130 MB) from the machine's own archive. Later runs
# find that nothing has changed.
set -euo pipefail
cd "$(dirname "$0")/.."

mkdir -p "${KEL_CACHE:-build/cache}"
cache=$(cd "${KEL_CACHE:-build/cache}" && pwd)
source=$cache/libcxx-14
exec 9>"$cache/msvc-runtime.lock" # for checkouts that share the folder
flock 9

# apt checks the signature of the index and the sums of the files. The machine's own indexes do not change.
fetch_sources() {
    local work=$source.part suite
    suite=$(. /etc/os-release && echo "$VERSION_CODENAME")
    mkdir -p "$work/lists/partial"
    echo "deb-src [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] $(scripts/mirror.sh) $suite main" \
        >"$work/sources.list"
    (
        cd "$work"
        apt=(apt-get -q -o Acquire::Retries=3 -o APT::Sandbox::User=root
            -o Dir::Etc::sourcelist="$PWD/sources.list" -o Dir::Etc::sourceparts=/dev/null
            -o Dir::State::lists="$PWD/lists")
        "${apt[@]}" update
        "${apt[@]}" --download-only source llvm-toolchain-14
        tar xf llvm-toolchain-14_*.orig.tar.xz --strip-components=2 --wildcards '*/libcxx/src/*'
    )
    rm -rf "$source"
    mkdir "$source"
    mv "$work/src" "$source/src"
    rm -rf "$work"
}

# Prints the folder of Wine's 32-bit DLLs, of the machine or of a root in the cache.
wine_dlls() {
    local folder
    for folder in {,"$cache"/*}/usr/lib/i386-linux-gnu/wine/i386-windows; do
        if [ -e "$folder/ucrtbase.dll" ]; then
            echo "$folder"
            return
        fi
    done
    echo "msvc-runtime.sh: Wine's 32-bit DLLs are missing" >&2
    return 1
}

[ -d "$source/src" ] || fetch_sources
dlls=$(wine_dlls)
launcher=$(command -v ccache || true)
# KEL_CACHE decides where the tool chain looks for the result.
export KEL_CACHE=$cache
cmake -G Ninja -S cmake/msvc-runtime -B "$cache/msvc-runtime" --fresh -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/toolchains/i686-windows-msvc.cmake" \
    -DCMAKE_CXX_COMPILER_LAUNCHER="$launcher" -DKEL_LIBCXX_SOURCE="$source" -DKEL_WINE_DLLS="$dlls"
cmake --build "$cache/msvc-runtime"
