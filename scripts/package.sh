#!/bin/sh
# Builds the packages that are shipped, and prints where they are.
#
#   scripts/package.sh linux      kel-<version>-linux-<processor>.tar.gz and a Debian package
#   scripts/package.sh windows    kel-<version>-win32.zip
set -eu
cd "$(dirname "$0")/.."

case ${1-} in
    linux) preset=release ;;
    windows) preset=windows ;;
    *)
        echo "usage: $0 {linux|windows}" >&2
        exit 2
        ;;
esac

scripts/install-deps.sh build tool package
if [ "$preset" = windows ]; then
    KEL_WINE=no scripts/install-deps.sh windows || [ $? = 10 ] # making a package needs no Wine
fi
cmake --preset $preset -DKEL_BUILD_TOOL=ON
cmake --build --preset $preset --target kel kel_tool
packages=build/$preset/packages
rm -rf "$packages"
cpack --config build/$preset/CPackConfig.cmake -B "$PWD/$packages"
rm -rf "$packages/_CPack_Packages"
ls -l "$packages"
