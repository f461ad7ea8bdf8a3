#!/bin/bash
# Static APR-util, for log4cxx, which reads its XML configuration with it.
source "$(dirname "$0")/../common.sh"

unpack apr-util_1.6.3.orig.tar.bz2
configure "$source_dir" -DAPU_HAVE_ODBC=OFF -DAPR_HAS_LDAP=OFF -DAPR_INCLUDE_DIR="$prefix/include" \
    -DAPR_LIBRARIES="$prefix/lib/libapr-1.a"
build aprutil-1

# Its own installation would also build and install its DLLs.
cp "$source_dir"/include/*.h "$binary_dir"/{apu,apu_want,apr_ldap}.h "$prefix/include/"
cp "$binary_dir/libaprutil-1.a" "$prefix/lib/"
