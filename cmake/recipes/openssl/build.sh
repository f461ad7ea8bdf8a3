#!/bin/bash
# Static OpenSSL, for the sandbox alone: what a TLS server and its certificates need.
source "$(dirname "$0")/../common.sh"

unneeded=(
    shared tests engine module legacy dso async autoload-config
    dtls srp psk srtp ocsp ct cms ts cmp comp gost dsa ec2m
    aria bf blake2 camellia cast idea md4 mdc2 rc2 rc4 rmd160 scrypt seed siphash siv sm2 sm3 sm4 whirlpool
)

unpack openssl_3.0.22.orig.tar.gz
cd "$source_dir"
# Its own folders get names of Windows, so that none of this machine stands in the program.
./Configure mingw64 "${unneeded[@]/#/no-}" --cross-compile-prefix=x86_64-w64-mingw32- CC=gcc-posix CFLAGS=-O2 \
    --prefix=/ --libdir=lib --openssldir=C:/OpenSSL
make --jobs="$jobs" build_libs
make DESTDIR="$prefix" install_dev
