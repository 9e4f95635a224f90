# shellcheck shell=bash
# What scripts/run and scripts/test share: the packages they need, and building.
# Sourced, not run. Kept to what bash 3.2 knows, which is what macOS has.
# All that is said here goes to standard error: standard output belongs to the calling script.
set -euo pipefail

# Headers are precompiled, and one that was made again from the same sources is the same.
export CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_ctime,include_file_mtime

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd -P)

# The compiler, its linker and cache, CMake, Ninja and Qt build the programs; ffmpeg, mkvtoolnix and mplayer are the tools they
# drive; unzip unpacks them (zip is for tests) and procps has the ps that watches them; the font is for
# burned-in subtitles. The window needs a platform plugin of Qt, and its tests a display of their own.
debian_packages="g++ lld ccache cmake ninja-build qt6-base-dev qt6-svg-dev qt6-qpa-plugins ffmpeg mkvtoolnix mplayer atomicparsley unzip zip procps fonts-dejavu-core xvfb xauth"
brew_formulas="ccache cmake ninja qt ffmpeg mkvtoolnix mplayer atomicparsley"
needed_commands="c++ cmake ninja ffmpeg ffprobe mkvmerge unzip ps"

say() { printf '==> %s\n' "$*" >&2; }
fail() { printf '%s\n' "$*" >&2; exit 1; }
have() { command -v "$1" >/dev/null 2>&1; }
cores() { getconf _NPROCESSORS_ONLN 2>/dev/null || echo 2; }

missing_packages() {
    local package
    for package in $debian_packages; do
        dpkg-query -W -f '${Status}\n' "$package" 2>/dev/null | grep -q ' installed$' || printf ' %s' "$package"
    done
}

as_root() {
    if [ "$(id -u)" = 0 ]; then "$@"; else sudo "$@"; fi
}

apt_get() {
    as_root env DEBIAN_FRONTEND=noninteractive apt-get -o DPkg::Lock::Timeout=300 "$@" </dev/null >&2
}

install_with_apt() {
    local missing
    missing=$(missing_packages)
    [ -n "$missing" ] || return 0
    if [ "$(id -u)" != 0 ] && ! have sudo; then
        fail "Packages are missing, and there is no sudo here. As root, run: apt-get install$missing"
    fi
    say "Installing$missing"
    apt_get update -q
    # shellcheck disable=SC2086  # a list of words
    apt_get install -q -y --no-install-recommends $missing
}

install_with_brew() {
    local prefix formula missing=""
    prefix=$(brew --prefix)
    for formula in $brew_formulas; do
        [ -d "$prefix/opt/$formula" ] || missing="$missing $formula"
    done
    export CMAKE_PREFIX_PATH="$prefix${CMAKE_PREFIX_PATH:+:$CMAKE_PREFIX_PATH}"
    [ -n "$missing" ] || return 0
    say "Installing$missing"
    # shellcheck disable=SC2086  # a list of words
    brew install $missing </dev/null >&2
}

expect_commands() {
    local command missing=""
    for command in $needed_commands; do
        have "$command" || missing="$missing $command"
    done
    [ -z "$missing" ] || fail "This system has neither apt-get nor Homebrew. Install these first, and Qt 6.4 or later:$missing"
}

# Touches the network only when something is missing.
install_missing() {
    if have apt-get && have dpkg-query; then
        install_with_apt
    elif have brew; then
        install_with_brew
    else
        expect_commands
    fi
}

cached() { # FOLDER NAME: a value of its CMake cache
    sed -n "s/^$2:[A-Z]*=//p" "$1/CMakeCache.txt"
}

# True for a tree that was configured for another place (the checkout was moved or copied) or with a
# compiler that is no longer there: CMake refuses to work in such a one.
is_foreign_tree() {
    [ -f "$1/CMakeCache.txt" ] || return 1
    [ "$(cached "$1" CMAKE_HOME_DIRECTORY)" = "$root" ] || return 0
    [ "$(cached "$1" CMAKE_CACHEFILE_DIR)" = "$1" ] || return 0
    [ ! -x "$(cached "$1" CMAKE_CXX_COMPILER)" ]
}

fast_linker() {
    [ "$(uname -s)" = Linux ] || return 0
    if have mold; then
        echo -fuse-ld=mold
    elif have ld.lld; then
        echo -fuse-ld=lld
    fi
}

# build PRESET FOLDER [CMake options...]: configures and builds; a tree that is up to date stays as it is.
build() {
    local preset=$1 folder=$root/$2
    shift 2
    if is_foreign_tree "$folder"; then
        say "$folder was configured elsewhere: building it afresh"
        find "$folder/" -mindepth 1 -delete
    fi
    say "Building in $folder"
    (
        cd "$root"
        cmake --preset "$preset" \
            -DCMAKE_CXX_COMPILER_LAUNCHER="$(command -v ccache || true)" \
            -DCMAKE_EXE_LINKER_FLAGS="$(fast_linker)" "$@"
        cmake --build "$folder" --parallel "$(cores)"
    ) >&2
}
