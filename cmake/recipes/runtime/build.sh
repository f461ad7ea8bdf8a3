#!/bin/bash
# The compiler's run-time DLLs, which a package ships beside the library.
source "$(dirname "$0")/../common.sh"

mkdir -p "$prefix/bin"
for dll in libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll; do
    x86_64-w64-mingw32-strip --strip-debug -o "$prefix/bin/$dll" \
        "$(x86_64-w64-mingw32-g++-posix -print-file-name="$dll")"
done
