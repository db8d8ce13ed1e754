#!/usr/bin/env bash
# Builds and runs the tests. Everything that it needs is installed first.
#   ./test.sh           the Linux build, and both Windows builds under Wine
#   ./test.sh --native  the Linux build alone
set -euo pipefail
cd "$(dirname "$0")"
source scripts/prepare.sh

case "${1:-}" in
    "" | --native) ;;
    *) echo "usage: ./test.sh [--native]" >&2; exit 2 ;;
esac

results=()
# run_suites PRESET JOBS [LABEL]: a failure is counted at the end, so that the other suites are run as well.
run_suites() {
    say "Running the suites ($1)"
    local report="$PWD/build/$1/results.xml"
    rm -f "$report"
    if ! ctest --preset "$1" -j"$2" ${3:+-L "$3"} --output-junit "$report"; then
        say "Some of them failed ($1); the other suites are run all the same"
    fi
    results+=("$1=$report")
}

install_packages "${BUILD_PACKAGES[@]}" "${TEST_PACKAGES[@]}" binutils python3
CMAKE_EXTRA=(-DKESTREL_TESTS=ON -DKESTREL_BENCH=OFF)
build_preset native

say "Checking who includes whom"
python3 scripts/check_includes.py
run_suites native 2

if [ "${1:-}" != --native ]; then
    source scripts/windows.sh
    install_packages "${WINDOWS_BUILD_PACKAGES[@]}"
    for preset in win64 win32; do build_preset "$preset"; done
    find_runnable
    trap stop_wine EXIT
    start_wine
    for preset in win64 win32; do
        if can_run "$preset"; then
            # One after the other: all of them live in one prefix.
            run_suites "$preset" 1
        else
            run_suites "$preset" 2 files
        fi
    done
fi

say "All suites"
python3 scripts/summarize.py "${results[@]}"
