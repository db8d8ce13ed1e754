# Sourced by demo.sh, test.sh and bench/run: what a fresh Debian 12 lacks is installed, and a preset is built.
# Expects to be sourced from the repository's root.

# With the minutes and seconds since the script began.
say() { printf '\n== %s  [%d:%02d]\n' "$*" $((SECONDS / 60)) $((SECONDS % 60)); }

warn() { printf '\n!! %s\n' "$*" >&2; }

as_root() {
    if [ "$(id -u)" -eq 0 ]; then "$@"
    elif command -v sudo >/dev/null; then sudo "$@"
    else
        echo "These packages are missing and only root can install them: run this once as root, or install sudo." >&2
        return 1
    fi
}

# apt_get ARGUMENT...: one at a time, also of those that run beside each other; apt itself would give up at once.
apt_get() {
    as_root flock --close /var/lib/apt env DEBIAN_FRONTEND=noninteractive apt-get -o DPkg::Lock::Timeout=300 -qq "$@"
}
apt_install() { apt_get install -y --no-install-recommends "$@" >/dev/null; }

# install_packages NAME...: asks nothing of the network when all of them are there.
install_packages() {
    local missing=() name
    for name in "$@"; do
        dpkg-query -W -f='${Status}' "$name" 2>/dev/null | grep -q 'install ok installed' || missing+=("$name")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    say "Installing ${missing[*]}"
    # An index that cannot be fetched, perhaps of another architecture, is no obstacle to packages of the others.
    apt_get update || echo "Some package index could not be fetched; going on with what is there." >&2
    apt_install "${missing[@]}"
}

BUILD_PACKAGES=(g++ cmake ninja-build python3 libsqlite3-dev libcli11-dev nlohmann-json3-dev libfmt-dev
    libcpp-httplib-dev libncurses-dev)
TEST_PACKAGES=(libgtest-dev libgmock-dev clang mono-mcs mono-runtime mypy python3-pytest python3-pip python3-setuptools
    python3-wheel scdoc doxygen man-db zsh fish abigail-tools pkg-config python3-jsonschema tmux)
SLOW_TEST_PACKAGES=(chromium chromium-driver python3-selenium python3-prometheus-client python3-seccomp systemd ansible-core)
MODEL_PACKAGES=(spin gcc libc6-dev python3)
MUTANT_PACKAGES=(python3-clang-14 util-linux)

# build_preset PRESET [TARGET...]
build_preset() {
    local preset=$1
    shift
    say "Building ($preset)"
    cmake --preset "$preset" "${CMAKE_EXTRA[@]}" >/dev/null
    cmake --build --preset "$preset" ${1:+--target "$@"}
}

# build_programs PRESET [TARGET...]: without tests, but what was configured with them stays so.
build_programs() {
    CMAKE_EXTRA=()
    [ -f "build/$1/CMakeCache.txt" ] || CMAKE_EXTRA=(-DKESTREL_TESTS=OFF -DKESTREL_BENCH=OFF)
    build_preset "$@"
}
