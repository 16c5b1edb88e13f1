# shellcheck shell=bash
# SPDX-License-Identifier: Apache-2.0
# complete.bash SCRIPT PROGRAM WORD...: what bash would offer for the last WORD, one a line. What
# the script leaves to readline shows as "compopt -o NAME".
script=$1
shift
# shellcheck source=/dev/null
source "$script"

# The real one works only while a line is edited.
compopt() {
    echo "compopt $*"
}

COMP_WORDS=("$@")
COMP_CWORD=$(($# - 1))
read -r _ _ function program < <(complete -p "$1")
[[ $program == "$1" ]] || exit 1
COMPREPLY=()
"$function"
[[ ${#COMPREPLY[@]} == 0 ]] || printf '%s\n' "${COMPREPLY[@]}"
