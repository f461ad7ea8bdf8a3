#!/bin/bash
# log4cxx as a DLL, because a host and the library that it loads must share one set of loggers.
# Its log text is wchar_t, as in the library.
source "$(dirname "$0")/../common.sh"

unpack log4cxx_1.5.0.orig.tar.gz
configure "$source_dir" -DBUILD_SHARED_LIBS=ON -DAPR_STATIC=ON -DAPU_STATIC=ON \
    -DAPR_CONFIG_EXECUTABLE=NO -DAPR_UTIL_CONFIG_EXECUTABLE=NO \
    -DLOG4CXX_CHAR=wchar_t -DLOG4CXX_WCHAR_T=ON -DLOG4CXX_NETWORKING_SUPPORT=OFF \
    -DBUILD_TESTING=OFF -DLOG4CXX_WITH_PKG_CONFIG=OFF -DCMAKE_CXX_STANDARD=17 \
    -DCMAKE_CXX_STANDARD_LIBRARIES="-liphlpapi -lws2_32 -lrpcrt4 -lshell32 -ladvapi32 -lole32"
build_and_install
