#!/bin/bash
# GoogleTest and GoogleMock, from the sources that Debian's package googletest installs.
source "$(dirname "$0")/../common.sh"

configure /usr/src/googletest
build_and_install
rm -r "$prefix/lib/pkgconfig" # names the cache folder, and is not used
