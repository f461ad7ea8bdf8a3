# Sourced by the scripts of the Windows target: where its dependencies live, outside the source tree.
# The toolchain file finds the prefix by the same rule.
cache=${VANTRY_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/tavikvantryapi}
sources=$cache/sources
work=$cache/windows
prefix=$work/prefix
