#!/bin/bash
# The C++ REST SDK: a static library over WinHTTP, built by the CMakeLists.txt beside this file.
source "$(dirname "$0")/../common.sh"

unpack cpprest_2.10.18.orig.tar.gz
configure "$recipe_dir" -DCPPREST_RELEASE_DIR="$source_dir/Release"
build_and_install
