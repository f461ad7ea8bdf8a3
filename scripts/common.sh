# shellcheck shell=bash
# Sourced by the scripts that build, test and show the project; they work in its top folder.
set -euo pipefail
script=$(realpath "$0")
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# A source that the Windows target is built from is unavailable: the code with which scripts/setup-windows says so.
# shellcheck disable=SC2034 # for the scripts that source this file
readonly unavailable=69

jobs=${VANTRY_JOBS:-$(nproc)}

# Says how the script is called, as its comment has it, and ends it.
usage() {
    sed --quiet 's/^# usage:/usage:/p' "$script" >&2
    exit 64
}

# step TITLE COMMAND...
# Says what begins and how long it took; what the command prints is shown only if it fails, with its exit code.
step() {
    local title=$1 started=$SECONDS log code=0
    mkdir -p build/log
    log=build/log/$(tr --complement --squeeze-repeats 'A-Za-z0-9\n' '-' <<< "$title").log
    echo "== $title ..."
    # In a subshell of its own: behind || a function would go on after a command that has failed.
    set +e
    (
        set -e
        "${@:2}"
    ) > "$log" 2>&1
    code=$?
    set -e
    if [ "$code" != 0 ]; then
        tail --lines=60 "$log" >&2
        echo "== $title: FAILED with exit code $code; the whole output is in $log" >&2
        return "$code"
    fi
    echo "== $title: done in $((SECONDS - started)) s"
}

# build PRESET TARGET...
build() { cmake --preset "$1" && cmake --build --preset "$1" --parallel "$jobs" --target "${@:2}"; }

# build_step TITLE PRESET TARGET...
build_step() { step "$1 (some minutes the first time)" build "${@:2}"; }

build_sandbox() { build_step "Building the sandbox" linux-debug vantry-sandbox; }

as_root() { if [ "$(id --user)" = 0 ]; then "$@"; else sudo "$@"; fi; }

installed() { [ "$(dpkg-query --show --showformat='${db:Status-Status}' "$1" 2> /dev/null)" = installed ]; }

# install_packages PACKAGE... - those that are missing
install_packages() {
    local package missing=()
    for package in "$@"; do
        installed "$package" || missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    echo "Installing packages: ${missing[*]}"
    as_root apt-get update --quiet=2
    as_root env DEBIAN_FRONTEND=noninteractive \
        apt-get install --yes --quiet=2 --no-install-recommends "${missing[@]}"
}
