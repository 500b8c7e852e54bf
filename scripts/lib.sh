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

# Runs the command as root.
as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    else
        sudo "$@"
    fi
}

# Runs unshare as root: another user becomes root in a new user namespace.
unshare_as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        unshare "$@"
    else
        unshare --map-root-user "$@"
    fi
}

# debian_archives TYPE [OPTIONS]: the system's sources of Debian packages as lines of a sources.list,
# TYPE being deb or deb-src.
debian_archives() {
    apt-get indextargets 'Created-By: Packages' 'Origin: Debian' --format \
        "$1 [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg${2:+ $2}] \$(SITE) \$(RELEASE) \$(COMPONENT)" |
        sort -u
}

# make_apt FOLDER ARCH: makes an apt configuration in the folder, FOLDER/apt.conf, and fetches the
# lists of the sources on standard input. Sources, lists and hooks of the system are left alone.
make_apt() {
    mkdir -p "$1/parts" "$1/lists/partial" "$1/cache/archives/partial"
    cat >"$1/parts/debian.list"
    cat >"$1/apt.conf" <<END
APT::Architecture "$2";
APT::Architectures "$2";
Dir::Etc::SourceList "/dev/null";
Dir::Etc::SourceParts "$1/parts";
Dir::State::Lists "$1/lists";
Dir::Cache "$1/cache";
APT::Sandbox::User "root";
#clear APT::Update::Pre-Invoke;
#clear APT::Update::Post-Invoke;
#clear APT::Update::Post-Invoke-Success;
END
    apt-get -c "$1/apt.conf" update -qq
}
