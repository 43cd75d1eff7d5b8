# Shared by the scripts of the project; to be sourced by bash.

root=$(dirname "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")")
build=$root/build

build_packages=(g++ cmake ninja-build qtbase5-dev libcli11-dev libjs-dygraphs)
manual_packages=(python3 pandoc libjs-lunr)
test_packages=("${build_packages[@]}" "${manual_packages[@]}" libgtest-dev libgmock-dev
    python3-fastjsonschema python3-junitparser perl vim neovim)

# Standard output belongs to the program that a script runs, so the scripts speak here.
say() { printf '%s: %s\n' "${0##*/}" "$*" >&2; }

missing_packages() {
    local installed package
    installed=$(dpkg-query -W -f='${Package} ${db:Status-Status}\n' "$@" 2>/dev/null) || true
    for package in "$@"; do
        grep -qxF "$package installed" <<<"$installed" || printf '%s\n' "$package"
    done
}

# need_packages PACKAGE...: installs those that are missing, or names them and stops.
need_packages() {
    # Elsewhere than on Debian the packages have other names; let the build find its tools.
    command -v dpkg-query >/dev/null || return 0

    local missing
    mapfile -t missing < <(missing_packages "$@")
    (( ${#missing[@]} )) || return 0
    if (( EUID != 0 )); then
        say "packages are missing; as root, run: apt-get install ${missing[*]}"
        exit 1
    fi

    say "installing ${missing[*]}"
    export DEBIAN_FRONTEND=noninteractive
    # A package source that cannot be reached matters only if the installation needs it.
    local wait_for_others=(-o DPkg::Lock::Timeout=300)
    apt-get update -q "${wait_for_others[@]}" </dev/null >&2 ||
        say "not all package lists could be refreshed"
    if ! apt-get install -q -y "${wait_for_others[@]}" --no-install-recommends "${missing[@]}" \
        </dev/null >&2; then
        say "cannot install ${missing[*]}"
        exit 1
    fi
}

# Some packages of Node.js bring npm along.
need_npm() {
    need_packages nodejs
    command -v npm >/dev/null || need_packages npm
}

# A build folder that came along with a copied or moved tree is of no use here.
is_configured() {
    [[ -e $build/build.ninja || -e $build/Makefile ]] &&
        grep -qsxF "CMAKE_HOME_DIRECTORY:INTERNAL=$root" "$build/CMakeCache.txt"
}

configure() {
    if is_configured; then
        cmake -S "$root" -B "$build"
    else
        cmake --fresh -G Ninja -S "$root" -B "$build"
    fi
}

# build_quietly COMMAND...: runs one step of the build and shows its output only if it fails.
build_quietly() {
    local log=$build/build.log
    if ! "$@" >"$log" 2>&1 </dev/null; then
        cat "$log" >&2
        say "the build failed"
        exit 1
    fi
}

# Scripts that run at the same time must not build at the same time.
lock_build() {
    mkdir -p "$build"
    exec {build_lock}>"$build/.lock"
    flock "$build_lock"
}

unlock_build() { exec {build_lock}>&-; }

build_target() {
    lock_build
    if ! is_configured; then
        say "building $1 in $build"
        build_quietly configure
    fi
    build_quietly cmake --build "$build" --target "$1"
    unlock_build
}

build_compiler() { build_target yxstcmp; }

# Always configured anew: an earlier build may have been made without the test packages.
build_all() {
    lock_build
    say "building in $build"
    build_quietly configure
    build_quietly cmake --build "$build"
    unlock_build
}
