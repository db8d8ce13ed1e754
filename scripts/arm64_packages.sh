# Sourced by package after bare.sh: the packages for arm64, made in a bare Debian 12 that has the cross compiler, and
# tried there in QEMU. Expects to be sourced from the repository's root.
source scripts/arm64.sh

# One suite alone, since a library's versions for both processors must be the same.
make_arm64_builder() {
    bare_root="$BARE/arm64"
    close_bare_system
    mkdir -p "$bare_root.archives/partial"
    say "Making a bare Debian 12 with a compiler for arm64 (a minute)"
    as_root mmdebstrap --quiet --variant=buildd --architectures=amd64,arm64 --include=crossbuild-essential-arm64 \
        bookworm "$bare_root" "deb http://deb.debian.org/debian bookworm main" || return 1
    as_root cp /etc/resolv.conf "$bare_root/etc/"
    as_root cp -r "$1/kestrel-sdk" "$bare_root/source"
    in_bare_system root "apt-get update -qq && cd /source &&
        apt-get build-dep -qq --arch-only --host-architecture arm64 --build-profiles cross,nocheck ./ >/dev/null"
}

# arm64_packages FOLDER: they lie in FOLDER then.
arm64_packages() {
    install_packages mmdebstrap qemu-user-static
    rm -rf "$1"
    copied_source "$1/kestrel-sdk"
    trap close_bare_system EXIT
    if ! make_arm64_builder "$1"; then
        warn "THE PACKAGES FOR ARM64 ARE NOT MADE: what they are made with cannot be had here (see above)."
        return 0
    fi
    say "Building the Debian packages for arm64"
    in_bare_system root "cd /source && SOURCE_DATE_EPOCH=$SOURCE_DATE_EPOCH DEB_BUILD_OPTIONS=parallel=$(nproc) \
        dpkg-buildpackage -us -uc -B --host-arch arm64 --build-profiles=cross,nocheck" >"$1/build.log" 2>&1 ||
        { tail -n 40 "$1/build.log" >&2; return 1; }
    rm -rf "$1/kestrel-sdk"
    cp "$bare_root"/*_arm64.* "$1"
    say "What lintian finds"
    lintian --allow-root --fail-on error,warning "$1"/*.changes
    try_arm64_packages
    (cd "$1" && ls -1 ./*.deb)
}

# They are installed beside their libraries for this processor, and an account works with them.
try_arm64_packages() {
    if ! register_arm64; then
        warn "THE PACKAGES FOR ARM64 ARE NOT TRIED: this machine cannot run them (binfmt_misc could not be told of QEMU)."
        return 0
    fi
    trap 'stop_arm64; close_bare_system' EXIT
    say "Trying the packages for arm64, in QEMU"
    as_root cp "$PACKAGES"/debian/{lib*,kestrel-sdk-dev}_*_amd64.deb "$bare_root"
    in_bare_system root "useradd --create-home --shell /bin/bash somebody &&
        apt-get install -qq --no-install-recommends /*.deb man-db bash-completion >/dev/null"
    in_bare_system somebody "set -e
        kestrel --version
        readelf -h /usr/bin/kestrel | grep -w AArch64
        sh -e /source/debian/tests/command-line"
}
