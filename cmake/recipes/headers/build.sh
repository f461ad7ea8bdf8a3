#!/bin/bash
# Header-only libraries are the same for every target. They are linked one by one, because the build machine's
# include directory must not be searched in a cross build.
source "$(dirname "$0")/../common.sh"

mkdir -p "$prefix/include" "$prefix/share/cmake"
ln -sfn /usr/include/boost "$prefix/include/boost"
ln -sfn /usr/include/CLI "$prefix/include/CLI"
ln -sfn /usr/include/nlohmann "$prefix/include/nlohmann"
# Copies, because a CMake package finds its headers relative to itself.
cp -r /usr/share/cmake/{CLI11,nlohmann_json} "$prefix/share/cmake/"
