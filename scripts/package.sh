#!/bin/sh
# Builds the packages that are shipped, and prints where they are.
#
#   scripts/package.sh linux      kel-<version>-linux-<processor>.tar.gz and the Debian packages
#                                 libkel1, libkel-dev, kel and kel-doc
#   scripts/package.sh linux32    the same for 32-bit Linux; kel-doc is for all processors
#   scripts/package.sh windows    kel-<version>-win32.zip and kel-<version>-win64.zip
set -eu
cd "$(dirname "$0")/.."

architecture=
case ${1-} in
    linux) presets=release ;;
    linux32)
        presets=linux32
        architecture=i386
        ;;
    windows) presets="windows windows64" ;;
    *)
        echo "usage: $0 {linux|linux32|windows}" >&2
        exit 2
        ;;
esac

scripts/install-deps.sh build tool package docs
if [ "$1" = windows ]; then
    for preset in $presets; do
        KEL_WINE=no scripts/install-deps.sh "$preset" || [ $? = 10 ] # making a package needs no Wine
    done
fi
if [ "$1" = linux32 ]; then
    scripts/install-deps.sh linux32
    # The packages depend on the run-time libraries for which dpkg finds the packages here.
    if ! dpkg-query -W libc6:i386 libgcc-s1:i386 libstdc++6:i386 >/dev/null; then
        echo "$0: libstdc++6:i386 is not installed. Install it with:" >&2
        echo "dpkg --add-architecture i386 && apt-get update && apt-get install libstdc++6:i386" >&2
        exit 1
    fi
fi
for preset in $presets; do
    cmake --preset "$preset" -DKEL_BUILD_TOOL=ON
    cmake --build --preset "$preset" --target kel kel_tool
    python3 -B scripts/docs/build.py . "build/$preset/docs"
    packages=build/$preset/packages
    rm -rf "$packages"
    cpack --config "build/$preset/CPackConfig.cmake" -B "$PWD/$packages"
    rm -rf "$packages/_CPack_Packages"
    if [ "$1" != windows ]; then
        packaging/debian/make-packages.sh "build/$preset" "$packages" $architecture
    fi
done
for preset in $presets; do
    ls -l "build/$preset/packages"
done
