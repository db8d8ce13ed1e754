#!/usr/bin/env bash
# Builds and runs the tests. Everything that it needs is installed first.
#   ./test.sh           the Linux build, and both Windows builds under Wine
#   ./test.sh --native  the Linux build alone
#   ./test.sh --all     besides, the Linux build under sanitizers: addresses and undefined behaviour, threads
set -euo pipefail
cd "$(dirname "$0")"
source scripts/prepare.sh

case "${1:-}" in
    "" | --native | --all) ;;
    *) echo "usage: ./test.sh [--native | --all]" >&2; exit 2 ;;
esac

results=()
# run_suites NAME PRESET OPTION...: a failure is counted at the end, so that the other suites are run as well.
run_suites() {
    local name=$1 preset=$2
    local report="$PWD/build/$preset/$name.xml"
    shift 2
    say "Running the suites ($name)"
    rm -f "$report"
    if ! ctest --preset "$preset" "$@" --output-junit "$report"; then
        say "Some of them failed ($name); the other suites are run all the same"
    fi
    results+=("$name=$report")
}

install_packages "${BUILD_PACKAGES[@]}" "${TEST_PACKAGES[@]}" binutils python3
CMAKE_EXTRA=(-DKESTREL_TESTS=ON -DKESTREL_BENCH=OFF)
build_preset native
run_suites native native -j2

if [ "${1:-}" != --native ]; then
    source scripts/windows.sh
    install_packages "${WINDOWS_BUILD_PACKAGES[@]}"
    for preset in win64 win32; do build_preset "$preset"; done
    find_runnable
    trap stop_wine EXIT
    start_wine
    for preset in win64 win32; do
        if can_run "$preset"; then
            # One after the other: all of them live in one prefix. Wine and sanitizers take their own time, so a case
            # that fails there gets a second chance; ctest shows both.
            run_suites "$preset" "$preset" ${RUN_OPTIONS[$preset]:---repeat until-pass:2}
        else
            run_suites "$preset" "$preset" -L files
        fi
    done
    if can_run win32; then
        export KESTREL_COUNTERPART="$PWD/build/win64/bin/kestrel-vprinter.exe"
        run_suites win32-with-64-bit-printer win32 --repeat until-pass:3 -R '^process\.(Settings|Exchange\.A_raw)'
        unset KESTREL_COUNTERPART
    fi
fi

if [ "${1:-}" = --all ]; then
    for preset in asan tsan; do
        build_preset $preset
        run_suites $preset $preset -j2 --repeat until-pass:2
    done
fi

say "All suites"
python3 scripts/summarize.py "${results[@]}"
