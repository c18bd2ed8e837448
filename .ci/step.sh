# SPDX-License-Identifier: Apache-2.0
# Steps of a run with the time that each took; for what is sourced from .ci.
cd "$(dirname "${BASH_SOURCE[0]}")/.."

times=()

# step MINUTES COMMAND...
step() {
    local start=$SECONDS status=0
    echo "== ${*:2}"
    "${@:2}" || status=$?
    local taken=$((SECONDS - start))
    times+=("$(printf '%3d:%02d of %2d min  %s' $((taken / 60)) $((taken % 60)) "$1" "${*:2}")")
    return "$status"
}

tell_times() {
    printf '%s\n' "${times[@]}"
    echo "$((SECONDS / 60)) min in all"
}
