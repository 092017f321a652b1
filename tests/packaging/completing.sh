# SPDX-License-Identifier: GPL-3.0-or-later
# What bash would offer, for the tests to source.

# completing FILE PROGRAM WORD... : the offers for the last WORD of that command line, one a line.
completing() {
    # shellcheck disable=SC1090
    (
        source "$1"
        shift
        COMP_WORDS=("$@")
        COMP_CWORD=$(($# - 1))
        "_${1//-/_}"
        printf '%s\n' "${COMPREPLY[@]}"
    )
}
