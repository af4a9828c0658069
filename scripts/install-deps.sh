#!/bin/sh
# Installs the missing packages for the given purposes on Debian. Only this script lists the
# packages.
#
#   scripts/install-deps.sh PURPOSE...
#
#   build   compiler and build system: all that the library needs
#   tool    the command-line tool
#   test    the tests, and a locale that writes numbers with a decimal comma
#   analyze the static analysis
#   mutate  planting mistakes that the tests must notice
#   package making the packages that are shipped
#   docs    the reference and all pages as a site
#   browser the tests of that site, and of the pages that kel makes, in a browser
#   demo    the documents that scripts/demo.sh works on, and tests and benchmarks too
#   bench   the benchmarks
#   coverage counting the code that the tests reach
#   linux32 building for 32-bit Linux, and its tests
#   fuzz    the fuzz targets, in 64 and in 32 bits
#   windows building KEL.dll for 32-bit Windows and its tests, and Wine to run them
#   windows64 the same for 64-bit Windows
#   windows-msvc what else KEL.dll in Microsoft's ABI needs
#
# Ends with status 10 if only Wine is missing and may not be installed; build/no-wine then contains the
# reason.
set -eu
cd "$(dirname "$0")/.."

comma_locale=de_DE.UTF-8

packages_for() {
    case $1 in
        build) echo "g++ cmake ninja-build" ;;
        tool) echo "libcli11-dev nlohmann-json3-dev" ;;
        test) echo "libgtest-dev python3 pkg-config binutils locales clang zsh fish" ;;
        analyze) echo "clang clang-tidy-14" ;;
        mutate) echo "python3-clang-14 ccache" ;;
        package) echo "dpkg-dev debhelper chrpath help2man lintian fakeroot python3" ;;
        docs) echo "doxygen python3" ;;
        browser) echo "chromium chromium-driver python3-selenium" ;;
        demo) echo "iso-codes python3" ;;
        bench) echo "libbenchmark-dev rapidjson-dev nlohmann-json3-dev python3 jq time" ;;
        linux32) echo "g++-multilib googletest" ;;
        coverage) echo "clang llvm-14 libclang-rt-14-dev python3" ;;
        fuzz) echo "clang libclang-rt-14-dev nlohmann-json3-dev g++-multilib" ;;
        windows) echo "g++-mingw-w64-i686-posix googletest python3 python3-pefile" ;;
        windows64) echo "g++-mingw-w64-x86-64-posix googletest python3 python3-pefile" ;;
        windows-msvc) echo "clang-14 clang-tools-14 lld-14 llvm-14 libc++-14-dev xz-utils" ;;
        *)
            echo "install-deps.sh: unknown purpose '$1'" >&2
            exit 2
            ;;
    esac
}

is_installed() {
    dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null | grep -qx installed
}

# One broken index, perhaps of another architecture, does not make the others useless.
update_indexes() {
    apt-get update || echo "A package index is unavailable now; continuing."
}

require_root() {
    if [ "$(id -u)" != 0 ]; then
        echo "install-deps.sh: $1; run this as root: scripts/install-deps.sh $purposes" >&2
        exit 1
    fi
}

install_packages() {
    DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "$@"
}

has_comma_locale() {
    locale -a 2>/dev/null | grep -qix 'de_DE\.utf-\?8'
}

purposes="$*"
if [ -z "$purposes" ]; then
    echo "usage: $0 PURPOSE..., with one or several of" >&2
    sed -n 's/^#   \([a-z0-9-]* .*\)/  \1/p' scripts/install-deps.sh >&2
    exit 2
fi

missing=""
for purpose in $purposes; do
    names=$(packages_for "$purpose")
    for name in $names; do
        is_installed "$name" || missing="$missing $name"
    done
done

if [ -n "$missing" ]; then
    require_root "missing packages:$missing"
    echo "Installing:$missing"
    # The package lists are fetched only if the present ones do not lead to the packages.
    # shellcheck disable=SC2086 # a list of words
    {
        install_packages --simulate $missing >/dev/null 2>&1 || update_indexes
        install_packages $missing || {
            update_indexes
            install_packages $missing
        }
    }
fi

case " $purposes " in
    *" test "*)
        if ! has_comma_locale; then
            require_root "missing locale $comma_locale"
            localedef -i de_DE -f UTF-8 "$comma_locale"
        fi
        ;;
esac

case " $purposes " in
    *" windows "*) scripts/install-wine.sh 32 build/no-wine ;;
esac
case " $purposes " in
    *" windows64 "*) scripts/install-wine.sh 64 build/no-wine ;;
esac
