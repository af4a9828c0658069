#!/bin/sh
# Writes the .def file of a DLL to standard output.
#
#   make_def.sh NAME LIBRARY    the functions of mingw-w64's import library
#   make_def.sh NAME DLL        the exported functions of the DLL itself
#
# The system's functions are standard-call. Their names then include the size of the arguments, which
# only the import library knows. What vcruntime140.def has comes from that DLL, and is left out.
set -eu
name=$1
source=$2
others=$(dirname "$0")/vcruntime140.def

echo "LIBRARY $name.dll"
echo EXPORTS
case $source in
    *.a)
        # It complains about members of the library without symbols.
        names=$(i686-w64-mingw32-nm "$source" 2>/dev/null)
        echo "$names" | sed -n 's/.* T _\([A-Za-z0-9]*@[0-9]*\)$/\1/p' | sort -u
        ;;
    *)
        llvm-readobj-14 --coff-exports "$source" | sed -n 's/^ *Name: \(..*\)/\1/p' | sort -u |
            grep -vxF -e "$(sed -n 's/^ *//; s/@[0-9]*$//; /^[A-Za-z_]*$/p' "$others")"
        ;;
esac
