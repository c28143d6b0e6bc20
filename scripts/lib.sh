# SPDX-License-Identifier: GPL-3.0-or-later
# Shell functions shared by run, test and the scripts: sourced, never started. All they say goes to stderr.
# shellcheck shell=bash

murvo_root=$(dirname -- "$(dirname -- "$(readlink -f -- "${BASH_SOURCE[0]}")")")

say() {
    printf '%s\n' "$@" >&2
}

die() {
    say "$@"
    exit 1
}

usage_error() {
    say "$@"
    exit 2
}

# The folder in which a preset is built, whatever the caller's folder.
build_folder() {
    printf '%s/build/%s\n' "$murvo_root" "$1"
}

use_ccache() {
    command -v ccache >/dev/null || return 0
    export CMAKE_CXX_COMPILER_LAUNCHER=ccache
    # Clones in other folders share what was compiled once.
    export CCACHE_BASEDIR=$murvo_root CCACHE_NOHASHDIR=1
}

# A build folder that was configured for another place (a moved or copied tree) must be configured afresh.
configured_elsewhere() {
    local cache=$1/CMakeCache.txt
    [[ -f $cache ]] && ! grep --quiet --line-regexp --fixed-strings \
        "CMAKE_HOME_DIRECTORY:INTERNAL=$murvo_root" "$cache"
}

configure() {
    local preset=$1 folder log stamp
    folder=$(build_folder "$preset")
    stamp=$folder/.configured
    [[ -f $folder/build.ninja && $stamp -nt $murvo_root/CMakePresets.json ]] &&
        ! configured_elsewhere "$folder" && return
    say "Configuring (preset $preset) ..."
    mkdir -p "$folder"
    log=$folder/configure.log
    local -a fresh=()
    configured_elsewhere "$folder" && fresh=(--fresh)
    rm -f "$stamp"
    if ! (cd "$murvo_root" && use_ccache && cmake --preset "$preset" "${fresh[@]}") >"$log" 2>&1; then
        cat "$log" >&2
        die "CMake could not configure the build; its words are above."
    fi
    touch "$stamp"
}

# Lets one in fifty of Ninja's progress lines through, and everything else.
thin_out_progress() {
    local line count=0
    while IFS= read -r line || [[ -n $line ]]; do
        [[ $line != *'Re-checking globbed directories...'* ]] || continue
        if [[ $line =~ ^\[[0-9]+/[0-9]+\] ]]; then
            ((++count != 1)) || printf 'Building ...\n'
            ((count % 10 == 0)) || continue
        fi
        printf '%s\n' "$line"
    done
}

# Configures where needed and builds. On a terminal Ninja shows its progress in one line of its own.
build() {
    local preset=$1 status=0
    shift
    configure "$preset"
    use_ccache
    if [[ -t 2 ]]; then
        cmake --build "$(build_folder "$preset")" "$@" >&2 || status=$?
    else
        cmake --build "$(build_folder "$preset")" "$@" 2>&1 | thin_out_progress | grep --invert-match --line-buffered \
            --line-regexp 'ninja: no work to do\.' >&2 || status=${PIPESTATUS[0]}
    fi
    [[ $status -eq 0 ]] || die "The build failed; the compiler's words are above."
}
