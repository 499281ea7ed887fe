# Sourced by ./run and ./test: brings the Debian packages that they need onto the machine.

fail() {
    echo "$(basename "$0"): $*" >&2
    exit 1
}

as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo --preserve-env=DEBIAN_FRONTEND "$@"
    else
        fail "packages are missing and need root rights or sudo to install: ${missing_packages[*]}"
    fi
}

# Prints what of the packages listed in the files is not installed.
list_missing_packages() {
    local package
    grep --no-filename --invert-match '^#' "$@" | while read -r package; do
        dpkg-query --show --showformat='${db:Status-Abbrev}\n' "$package" 2>/dev/null | grep -q '^ii' || echo "$package"
    done
}

# The index may be fetched while its mirror is being updated, so a failure is tried again; packages can still be had
# when only a part of the index is missing, so the last failure decides nothing.
update_package_index() {
    local attempt
    for attempt in 1 2 3; do
        as_root apt-get update --error-on=any && return
        echo "apt-get update failed, attempt $attempt of 3" >&2
        sleep $((attempt * 5))
    done
}

apt_install() {
    as_root apt-get "$@" install --yes --no-install-recommends "${missing_packages[@]}"
}

# Packages of two architectures must have the same version. Where the security updates of only one of them can be read,
# they have not; the release's own versions of both do.
apt_install_of_release() {
    local preferences
    preferences=$(mktemp)
    printf 'Package: *\nPin: release n=bookworm,l=Debian\nPin-Priority: 1001\n' >"$preferences"
    chmod a+r "$preferences"
    apt_install -o "Dir::Etc::Preferences=$preferences" --allow-downgrades
}

# Installs the packages listed in the files, if any is missing.
install_packages() {
    mapfile -t missing_packages < <(list_missing_packages "$@")
    [ ${#missing_packages[@]} -eq 0 ] && return
    echo "Installing ${#missing_packages[@]} packages: ${missing_packages[*]}"
    export DEBIAN_FRONTEND=noninteractive
    case " ${missing_packages[*]}" in
        *:i386*) as_root dpkg --add-architecture i386 ;;
    esac
    update_package_index
    apt_install || apt_install_of_release || apt_install || true
    mapfile -t missing_packages < <(list_missing_packages "$@")
    [ ${#missing_packages[@]} -eq 0 ] || fail "these packages could not be installed: ${missing_packages[*]}"
}

# The compiler cache outlives a clone; it changes the time that a build takes, never its result.
use_compiler_cache() {
    export CCACHE_DIR="${CCACHE_DIR:-${XDG_CACHE_HOME:-${HOME:-/tmp}/.cache}/kvtdruck/ccache}"
    mkdir -p "$CCACHE_DIR" || fail "the compiler cache $CCACHE_DIR can't be created"
    export CCACHE_BASEDIR="$PWD" CCACHE_NOHASHDIR=1 CCACHE_MAXSIZE=3G
    # What ccache asks for before it keeps results that precompiled headers are part of
    # (https://ccache.dev/manual/4.7.5.html#_precompiled_headers).
    export CCACHE_SLOPPINESS=pch_defines,time_macros
    export CMAKE_CXX_COMPILER_LAUNCHER=ccache
}
