# What several scripts need. They source it from the root of the tree:
#
#   # shellcheck source=scripts/lib.sh
#   . scripts/lib.sh
#
# shellcheck shell=sh

# fail STATUS MESSAGE: ends the script.
fail() {
    echo "$0: $2" >&2
    exit "$1"
}

# Ends the script unless there is a static build for the architecture.
require_static_arch() {
    case ${1-} in
    amd64 | armhf) ;;
    *) fail 64 "expected an architecture, amd64 or armhf, but got '${1-}'" ;;
    esac
}

# Creates the folder $work and removes it when the script ends.
make_work_folder() {
    work=$(mktemp -d)
    trap 'rm -rf "$work"' EXIT
    trap 'exit 130' HUP INT TERM PIPE
}

# Runs unshare as root: another user becomes root in a new user namespace.
unshare_as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        unshare "$@"
    else
        unshare --map-root-user "$@"
    fi
}
