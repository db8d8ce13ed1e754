#!/usr/bin/env bash
# Builds and runs the tests. Everything that it needs is installed first.
#   ./test.sh            quick: the Linux build, without its slow cases
#   ./test.sh --windows  besides, both Windows builds under Wine
#   ./test.sh --all      besides, the slow cases, and the Linux suites under sanitizers: addresses and undefined
#                        behaviour, threads
#   ./test.sh --arm64    quick, and the Linux build for another processor, in QEMU (ten minutes)
set -euo pipefail
cd "$(dirname "$0")"
source scripts/prepare.sh

case "${1:-}" in
    "") form=quick ;;
    --windows) form=windows ;;
    --arm64) form=arm64 ;;
    --all) form=all ;;
    *) echo "usage: ./test.sh [--windows | --arm64 | --all]" >&2; exit 2 ;;
esac

results=() left_out=()
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

# Of a preset whose programs cannot be run: the checks of its files. ctest would ask the other suites' programs for their
# cases before it runs anything, so it is started in the folder of these.
run_file_checks() {
    local report="$PWD/build/$1/$1.xml"
    say "Checking the files ($1)"
    rm -f "$report"
    ctest --test-dir "build/$1/tests/api" --output-on-failure -L files --output-junit "$report" ||
        say "Some of them failed ($1); the other suites are run all the same"
    results+=("$1=$report")
}

# Under Wine, which takes its own time, a case that fails gets a second chance; ctest shows both. Each word size has a
# computer of its own, so both run side by side; what the one prints appears when the other is through.
run_windows_suites() {
    local preset
    for preset in win64 win32; do
        can_run "$preset" && continue
        run_file_checks "$preset"
        left_out+=("the programs of $preset: this machine cannot run them (see above)")
    done
    can_run win64 || return 0
    run_suites win64 win64 --repeat until-pass:2 >build/win64.log 2>&1 &
    local win64=$!
    if can_run win32; then
        run_suites win32 win32 ${RUN_OPTIONS[win32]:---repeat until-pass:2}
        [ -z "${NOT_RUN[win32]:-}" ] || left_out+=("win32: ${NOT_RUN[win32]}")
        KESTREL_COUNTERPART="$PWD/build/win64/bin/kestrel-vprinter.exe" run_suites win32-with-64-bit-printer win32 \
            --repeat until-pass:3 -R '^process\.(Settings|Exchange\.A_raw)'
    fi
    wait $win64
    cat build/win64.log
    results+=("win64=$PWD/build/win64/win64.xml")
}

# Takes little more than what the suites under Wine leave of the processors: these mostly wait.
build_meanwhile() {
    (
        renice --priority 19 $BASHPID >/dev/null
        for preset in asan tsan; do build_preset "$preset"; done
        run_suites recipes native -L builds
    ) >build/meanwhile.log 2>&1 &
    meanwhile=$!
}

install_packages "${BUILD_PACKAGES[@]}" "${TEST_PACKAGES[@]}" binutils python3
CMAKE_EXTRA=(-DKESTREL_TESTS=ON -DKESTREL_BENCH=OFF)
build_preset native
if [ $form = all ]; then
    install_packages "${SLOW_TEST_PACKAGES[@]}"
    run_suites native native -j2 -LE builds
else
    run_suites native native -j2 -LE slow
    slow=$(ctest --preset native -N -L slow | sed -n 's/^Total Tests: //p')
    left_out+=("$slow slow cases, and the suites under sanitizers: ./test.sh --all")
fi

at_end=() arm64_runs=false
trap 'for what in "${at_end[@]}"; do "$what"; done' EXIT
if [ $form = arm64 ]; then
    source scripts/arm64.sh
    at_end+=(stop_arm64)
    find_arm64
    $arm64_runs || left_out+=("the build for arm64: this machine cannot have it (see above)")
else
    left_out+=("the build for arm64, in QEMU: ./test.sh --arm64")
fi

if [ $form = quick ] || [ $form = arm64 ]; then
    left_out+=("the Windows builds, 64 and 32 bits, under Wine: ./test.sh --windows")
else
    source scripts/windows.sh
    install_packages "${WINDOWS_BUILD_PACKAGES[@]}"
    for preset in win64 win32; do build_preset "$preset"; done
    find_runnable
    at_end+=(stop_wine)
    start_wine
    [ $form != all ] || build_meanwhile
    run_windows_suites
fi

if [ $form = all ]; then
    say "Building what the sanitizers watch, and a tree with one more setting"
    wait $meanwhile || { cat build/meanwhile.log; exit 1; }
    results+=("recipes=$PWD/build/native/recipes.xml")
    for preset in asan tsan; do run_suites $preset $preset -j2; done
fi

if $arm64_runs; then
    build_arm64
    run_arm64_suites
fi

say "All suites"
for what in "${left_out[@]}"; do echo "not run  $what"; done
python3 scripts/summarize.py "${results[@]}"
