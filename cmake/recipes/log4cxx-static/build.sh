#!/bin/bash
# The same log4cxx once more, static: for the DLL with the C interface, whose host has no loggers to share.
source "$(dirname "$0")/../common.sh"

recipe_dir=${recipe_dir%-static} # the same patches
unpack log4cxx_1.5.0.orig.tar.gz
configure "$source_dir" -DBUILD_SHARED_LIBS=OFF -DAPR_STATIC=ON -DAPU_STATIC=ON \
    -DAPR_CONFIG_EXECUTABLE=NO -DAPR_UTIL_CONFIG_EXECUTABLE=NO \
    -DLOG4CXX_CHAR=wchar_t -DLOG4CXX_WCHAR_T=ON -DLOG4CXX_NETWORKING_SUPPORT=OFF \
    -DBUILD_TESTING=OFF -DLOG4CXX_WITH_PKG_CONFIG=OFF -DCMAKE_CXX_STANDARD=17
build log4cxx
install -D --mode=644 "$binary_dir/src/main/cpp/liblog4cxx.a" "$prefix/lib/liblog4cxx-static.a"
