#!/usr/bin/env bash
# Builds and runs the tests. Everything that it needs is installed first.
#   ./test.sh            all suites that this machine can run
#   ./test.sh --native   the Linux build alone
set -euo pipefail
cd "$(dirname "$0")"
source scripts/prepare.sh

case "${1:-}" in
    "" | --native) ;;
    *) echo "usage: ./test.sh [--native]" >&2; exit 2 ;;
esac

install_packages "${BUILD_PACKAGES[@]}" "${TEST_PACKAGES[@]}" binutils python3
CMAKE_EXTRA=(-DKESTREL_TESTS=ON -DKESTREL_BENCH=OFF)
build_preset native

say "Checking who includes whom"
python3 scripts/check_includes.py

say "Running the native suites"
ctest --preset native -j2
