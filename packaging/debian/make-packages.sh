#!/bin/sh
# Makes the Debian packages of a finished build with debhelper.
#
#   packaging/debian/make-packages.sh BUILD FOLDER [ARCHITECTURE]
#
# BUILD is the build folder, in which the library and the tool have been built. FOLDER receives the
# packages. ARCHITECTURE is Debian's name of the processor that the build is for, i386, if it is not
# this machine's. The package kel-doc is for all processors, so it is made without ARCHITECTURE only.
set -eu
source=$(cd "$(dirname "$0")/../.." && pwd)
KEL_BUILD=$(cd "$1" && pwd)
mkdir -p "$2"
packages=$(cd "$2" && pwd)
architecture=${3:-$(dpkg --print-architecture)}

# A compiler for both processors comes with tools for both, so that nothing is a cross build to dpkg.
export KEL_BUILD DEB_BUILD_ARCH="$architecture" DEB_HOST_ARCH="$architecture"
export DEB_RULES_REQUIRES_ROOT=no LC_ALL=C.UTF-8

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir "$work/kel"
cp -R "$source/packaging/debian" "$work/kel/debian"
cd "$work/kel"

# The version and the maintainer are each defined in one place. The date is that of the sources, so
# that packages of all processors have the same changelog.
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$KEL_BUILD/CMakeCache.txt")
maintainer=$(sed -n 's/^Maintainer: //p' debian/control)
date=$(git -C "$source" log -1 --format=%cD 2>/dev/null) || date=$(date -R -r "$source/CHANGELOG.md")
cat >debian/changelog <<END
kel ($version-1) unstable; urgency=medium

  * Version $version. CHANGELOG.md in the package kel-doc lists the changes.

 -- $maintainer  $date
END

if [ $# = 2 ]; then
    debian/rules binary
else
    debian/rules binary-arch
fi
mv "$work"/*.deb "$packages"
