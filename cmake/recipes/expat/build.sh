#!/bin/bash
# Static expat, for apr-util. Debian's patches carry the security fixes.
source "$(dirname "$0")/../common.sh"

unpack expat_2.5.0.orig.tar.gz expat_2.5.0-1+deb12u2.debian.tar.xz
configure "$source_dir/expat" -DEXPAT_SHARED_LIBS=OFF -DEXPAT_BUILD_TOOLS=OFF -DEXPAT_BUILD_EXAMPLES=OFF \
    -DEXPAT_BUILD_TESTS=OFF -DEXPAT_BUILD_DOCS=OFF -DEXPAT_BUILD_PKGCONFIG=OFF
build_and_install
