# Sourced by every recipe (NAME/build.sh). A recipe runs in its own process, so that any failing command ends it.
set -euo pipefail

recipe_dir=$(cd "$(dirname "$0")" && pwd)
project=$(cd "$recipe_dir/../../.." && pwd)
source "$project/cmake/recipes/paths.sh"

tree=$work/build/$(basename "$recipe_dir")
source_dir=$tree/source
binary_dir=$tree/binary
jobs=${VANTRY_JOBS:-$(nproc)}

apply() { patch --directory="$source_dir" --strip=1 --forward --batch --input="$1"; }

# unpack TARBALL [DEBIAN_TARBALL]
# Leaves a fresh tree in $source_dir with Debian's patches (when named) and the recipe's own applied.
unpack() {
    mkdir -p "$source_dir"
    tar --extract --file="$sources/$1" --directory="$source_dir" --strip-components=1
    local patch
    if [ $# -gt 1 ]; then
        tar --extract --file="$sources/$2" --directory="$source_dir"
        while read -r patch; do
            apply "$source_dir/debian/patches/$patch"
        done < <(grep --invert-match --extended-regexp '^(#|$)' "$source_dir/debian/patches/series")
    fi
    for patch in "$recipe_dir"/*.patch; do
        [ ! -e "$patch" ] || apply "$patch"
    done
}

# configure SOURCE_DIR CMAKE_OPTION...
configure() {
    local optimize="-O2 -DNDEBUG -ffile-prefix-map=$work=."
    cmake -G Ninja -S "$1" -B "$binary_dir" -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_TOOLCHAIN_FILE="$project/cmake/mingw-w64.cmake" -DVANTRY_WINDOWS_PREFIX="$prefix" \
        -DCMAKE_INSTALL_PREFIX="$prefix" -DCMAKE_C_FLAGS_RELEASE="$optimize" -DCMAKE_CXX_FLAGS_RELEASE="$optimize" \
        "${@:2}"
}

# build TARGET...
build() { cmake --build "$binary_dir" --parallel "$jobs" --target "$@"; }

# Builds everything and installs it without symbols.
build_and_install() {
    build all
    cmake --install "$binary_dir" --strip
}
