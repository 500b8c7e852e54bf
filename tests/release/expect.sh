# For the scripts that check a binary, which source it and end with "exit $status".
# shellcheck shell=sh disable=SC2034 # status is for the script
status=0

# expect WHAT PATTERN COMMAND...: some line that the command prints matches the pattern.
expect() {
    what=$1
    pattern=$2
    shift 2
    if "$@" | grep -Eq -e "$pattern"; then
        echo "$what: yes"
    else
        echo "$what: NO, nothing like '$pattern' in: $*"
        "$@" | head -n 20
        status=1
    fi
}
