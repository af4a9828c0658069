#!/bin/sh
# Prints the address of the Debian archive that this machine is set up with.
{
    sed -n 's/^URIs:[[:space:]]*\([^[:space:]]*\).*/\1/p' /etc/apt/sources.list.d/*.sources
    sed -n 's/^deb[[:space:]]\{1,\}\(\[[^]]*\][[:space:]]*\)\{0,1\}\([^[:space:]]*\).*/\2/p' \
        /etc/apt/sources.list /etc/apt/sources.list.d/*.list
} 2>/dev/null | grep '/debian/*$' | head -n 1
