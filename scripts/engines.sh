#!/usr/bin/env bash
# Programs of others that the slow tests meet, in build/engines: downloaded as Debian's packages and unpacked there, not
# installed, so that none of their services is ever started.
#   scripts/engines.sh       what is not there yet; prints the folder
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/prepare.sh

# A package, and a program of it that must be there.
ENGINES=(prometheus:usr/bin/promtool)

folder="$PWD/build/engines"
for engine in "${ENGINES[@]}"; do
    package=${engine%%:*} program=${engine#*:}
    [ ! -x "$folder/$program" ] || continue
    fresh=$(mktemp -d)
    trap 'rm -rf "$fresh"' EXIT
    # The index may be older than what the archive has by now. All of this says what it does on the error output.
    (cd "$fresh" && { apt-get download -qq "$package" || { apt_get update && apt-get download -qq "$package"; }; }) >&2 || {
        echo "The package $package cannot be downloaded: this machine needs Debian's archive for it." >&2
        exit 1
    }
    mkdir -p "$folder"
    dpkg-deb -x "$fresh"/*.deb "$folder"
    [ -x "$folder/$program" ] || { echo "The package $package has no $program." >&2; exit 1; }
    rm -rf "$fresh"
done
echo "$folder"
