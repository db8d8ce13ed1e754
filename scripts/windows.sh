# Sourced by test.sh and demo.sh after prepare.sh: Wine and the cross compilers, and what of them this machine can
# run. Expects to be sourced from the repository's root.
#
# A Wine prefix is a computer. Each preset has one of its own (CMakePresets.json names it too), so that the suites of
# both word sizes run side by side and know nothing of each other.

WINDOWS_BUILD_PACKAGES=(g++-mingw-w64-i686-posix g++-mingw-w64-x86-64-posix googletest)
export WINEDEBUG=-all LC_ALL=C.UTF-8
export WINEDLLOVERRIDES="mscoree,mshtml=;winedbg.exe=d"
unset DISPLAY

WINE64=/usr/lib/wine/wine64
WINE32=/usr/lib/wine/wine
BINFMT=/proc/sys/fs/binfmt_misc
EMULATION="$PWD/build/emulation"

# The two architectures' package indexes may be out of step: then the release's own versions fit each other.
install_wine() {
    [ -x "$WINE64" ] && [ -e "$WINE32" ] && return 0
    say "Installing Wine"
    as_root dpkg --add-architecture i386
    apt_get update || warn "Some package index could not be fetched; going on with what is there."
    {
        apt_install wine32:i386 wine64 wine || apt_install -t bookworm wine32:i386 wine64 wine || apt_install wine64 wine
    } 2>/dev/null
}

# Sets RUNNABLE to the presets whose programs this machine can run, and says of the others why not.
find_runnable() {
    RUNNABLE=()
    if ! install_wine; then
        warn "WINE CANNOT BE INSTALLED HERE (apt-get refused wine64): the Windows builds are made and their files" \
            "checked, but nothing of them is run."
        return 0
    fi
    RUNNABLE+=(win64)
    if [ ! -e "$WINE32" ]; then
        warn "THERE IS NO 32-BIT WINE HERE (apt-get refused wine32:i386): win32 is built and its files are checked," \
            "but it is not run."
    elif [ ! -e $BINFMT/kestrel-i386 ] && "$WINE32" --version >/dev/null 2>&1; then
        RUNNABLE+=(win32)
    elif emulate_32_bit && "$WINE32" --version >/dev/null 2>&1; then
        warn "This machine's kernel cannot start 32-bit programs: QEMU runs them for it, slowly, and" \
            "not all of them: of the process suite and of the C program that calls everything only a part is run."
        RUNNABLE+=(win32)
    else
        warn "THIS MACHINE CANNOT START 32-BIT PROGRAMS (its kernel refuses $WINE32, and QEMU could not be put in" \
            "its place): win32 is built and its files are checked, but it is not run."
    fi
}

# By preset: what ctest is told besides, and what that leaves out, in words.
declare -A RUN_OPTIONS=() NOT_RUN=()

can_run() { [[ " ${RUNNABLE[*]} " == *" $1 "* ]]; }

# Has the kernel start 32-bit programs with QEMU, until stop_wine.
emulate_32_bit() {
    say "Setting up QEMU for 32-bit programs"
    install_packages qemu-user-static gcc || return 1
    local magic='\x7fELF\x01\x01\x01\x00\x00\x00\x00\x00\x00\x00\x00\x00\x02\x00\x03\x00'
    local mask='\xff\xff\xff\xff\xff\xfe\xfe\xfc\xff\xff\xff\xff\xff\xff\xff\xff\xfe\xff\xff\xff'
    [ -e $BINFMT/register ] || as_root mount -t binfmt_misc none $BINFMT || return 1
    [ -e $BINFMT/kestrel-i386 ] ||
        as_root sh -c "printf '%s' ':kestrel-i386:M::$magic:$mask:/usr/bin/qemu-i386-static:POCF' >$BINFMT/register" ||
        return 1

    # The loader picks the folder of the program's own kind: 64-bit programs get an empty library.
    local low="$EMULATION/lib/i386-linux-gnu" high="$EMULATION/lib/x86_64-linux-gnu"
    mkdir -p "$low" "$high"
    gcc -m32 -O2 -fPIC -fno-stack-protector -nostdlib -shared -o "$low/wine_in_qemu.so" \
        scripts/emulation/wine_in_qemu.c || return 1
    gcc -nostdlib -shared -x c -o "$high/wine_in_qemu.so" /dev/null || return 1
    # A process in which two threads are at work beside the first crashes in the emulator, nearly every time; now and
    # then it fails elsewhere too.
    local process='Settings|Exchange\.A_raw'
    local threads='Work_for_so_many_printers|wakes_all_who_wait|Each_set_of_an_auto_reset|One_thread_at_a_time|Keep_threads_apart|Have_one_owner_at_a_time|Threads_write_side_by_side'
    RUN_OPTIONS[win32]="--repeat until-pass:3 -E $threads
        -R ^(unit|contract|process\.($process)|api\.(header|package|library))"
    NOT_RUN[win32]="most of the process suite, and the cases of several threads at once (${threads//|/, }): \
QEMU cannot run them; a machine that starts 32-bit programs itself can"
    export WINE32_LAUNCHER="taskset -c 0"
    export QEMU_CPU=max QEMU_SET_ENV="LD_PRELOAD=$EMULATION/\$LIB/wine_in_qemu.so"
}

wine_prefix() { echo "$PWD/build/$1/wineprefix"; }

# start_wine: a computer for each of RUNNABLE, its server running. That is started with its output away from here:
# services inherit it, and whoever reads the pipe of a test would wait for them.
start_wine() {
    local preset made=
    for preset in "${RUNNABLE[@]}"; do
        has_prefix "$preset" || make_prefix "$preset" "$made"
        made=$preset
    done
    for preset in "${RUNNABLE[@]}"; do
        in_prefix "$preset" wineserver -p300 || [ $? -eq 2 ]  # it runs already
        in_prefix "$preset" "$WINE64" cmd.exe /c exit >/dev/null 2>&1 </dev/null
    done
}

in_prefix() { env WINEPREFIX="$(wine_prefix "$1")" "${@:2}"; }

# One that was made without 32-bit Wine has no system for 32-bit programs.
has_prefix() {
    [ -e "$(wine_prefix "$1")/system.reg" ] &&
        { ! can_run win32 || [ -e "$(wine_prefix "$1")/drive_c/windows/syswow64/kernel32.dll" ]; }
}

# make_prefix PRESET [OTHER]: a new one, or a copy of the other preset's, whose server stops for it.
make_prefix() {
    local prefix
    prefix=$(wine_prefix "$1")
    rm -rf "$prefix"
    mkdir -p "$(dirname "$prefix")"
    if [ -n "${2:-}" ]; then
        in_prefix "$2" wineserver -k || :
        in_prefix "$2" wineserver -w
        cp -a "$(wine_prefix "$2")" "$prefix"
    else
        say "Making a Wine prefix (10 to 40 s)"
        in_prefix "$1" "$WINE64" wineboot.exe -i >/dev/null 2>&1 </dev/null
        in_prefix "$1" wineserver -w
    fi
}

# A program that still runs would end with exit code 0: never while tests run.
stop_wine() {
    local preset
    for preset in "${RUNNABLE[@]}"; do
        in_prefix "$preset" wineserver -k || :
        in_prefix "$preset" wineserver -w
    done
    [ ! -e $BINFMT/kestrel-i386 ] || as_root sh -c "echo -1 >$BINFMT/kestrel-i386"
}
