#!/bin/bash
# Static APR, for log4cxx.
source "$(dirname "$0")/../common.sh"

unpack apr_1.7.2.orig.tar.bz2

# APR includes <windows.h> late and with NOUSER, which <accctrl.h> does not survive: the headers are included
# beforehand, with the FD_SETSIZE that APR wants before <winsock2.h>. The atomics select the compiler's built-ins,
# as APR's own initialisation of the generic ones is missing on Windows. That it passes pointers to unsigned integers
# where Windows wants signed ones is an error from GCC 14 on.
flags="-D_WIN32_WINNT=0x0601 -DWIN32_LEAN_AND_MEAN -DFD_SETSIZE=1024 -DHAVE_ATOMIC_BUILTINS=1 -DHAVE_ATOMIC_BUILTINS64=1"
flags+=" -Wno-error=incompatible-pointer-types"
for header in winsock2.h ws2tcpip.h mswsock.h windows.h iphlpapi.h; do
    flags+=" -include $header"
done
configure "$source_dir" -DMIN_WINDOWS_VER=Windows7 -DCMAKE_C_FLAGS="$flags"
build apr-1

# APR's own installation would also build and install its DLLs.
mkdir -p "$prefix/include" "$prefix/lib"
cp "$source_dir"/include/*.h "$binary_dir/apr.h" "$prefix/include/"
cp "$binary_dir/libapr-1.a" "$prefix/lib/"
