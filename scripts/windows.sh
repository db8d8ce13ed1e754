# Sourced by test.sh and demo.sh after prepare.sh: Wine and the cross compilers, and what of them this machine can
# run. Expects to be sourced from the repository's root.

WINDOWS_BUILD_PACKAGES=(g++-mingw-w64-i686-posix g++-mingw-w64-x86-64-posix googletest binutils)
export WINEPREFIX="$PWD/build/wineprefix" WINEDEBUG=-all LC_ALL=C.UTF-8
export WINEDLLOVERRIDES="mscoree,mshtml=;winedbg.exe=d;winspool.drv=n,b"
unset DISPLAY

WINE64=/usr/lib/wine/wine64
WINE32=/usr/lib/wine/wine

warn() { printf '\n!! %s\n' "$*" >&2; }

apt_install() {
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "$@" >/dev/null 2>&1
}

# The two architectures' package indexes may be out of step: then the release's own versions fit each other.
install_wine() {
    [ -x "$WINE64" ] && [ -e "$WINE32" ] && return 0
    say "Installing Wine"
    as_root dpkg --add-architecture i386
    as_root apt-get update -qq || warn "Some package index could not be fetched; going on with what is there."
    apt_install wine32:i386 wine64 wine || apt_install -t bookworm wine32:i386 wine64 wine || apt_install wine64 wine ||
        return 1
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
    elif ! "$WINE32" --version >/dev/null 2>&1; then
        warn "THIS MACHINE CANNOT START 32-BIT PROGRAMS (its kernel refuses $WINE32): win32 is built and its files" \
            "are checked, but it is not run."
    else
        RUNNABLE+=(win32)
    fi
}

# A prefix is a computer. Its server is started with its output away from here: services inherit it, and whoever
# reads the pipe of a test would wait for them.
start_wine() {
    if [ ! -e "$WINEPREFIX/system.reg" ]; then
        say "Making the Wine prefix (about 10 s)"
        mkdir -p "$(dirname "$WINEPREFIX")"
        "$WINE64" wineboot.exe -i >/dev/null 2>&1 </dev/null
        wineserver -w
    fi
    wineserver -p300
    "$WINE64" cmd.exe /c exit >/dev/null 2>&1 </dev/null
}

# A program that still runs would end with exit code 0: never while tests run.
stop_wine() {
    wineserver -k || :
    wineserver -w
}
