#!/usr/bin/env bash
# Shows the main job: a virtual printer in a process of its own is installed, selected, read and changed.
# Everything it makes lies in a temporary folder that is gone at the end; only build/ stays.
set -euo pipefail
cd "$(dirname "$0")"
source scripts/prepare.sh

install_packages "${BUILD_PACKAGES[@]}"
CMAKE_EXTRA=(-DKESTREL_TESTS=OFF -DKESTREL_BENCH=OFF)
[ -f build/native/CMakeCache.txt ] && CMAKE_EXTRA=()
build_preset native kestrel_sdk kestrel kestrel-vprinter

work=$(mktemp -d)
export WINPORT_HOME="$work/home"
mkdir -m 700 "$WINPORT_HOME"
export PATH="$PWD/build/native/bin:$PATH"
export KESTREL_PRINTER="Demo Printer"
printer_process=

finish() {
    local code=$?
    if [ -n "$printer_process" ]; then
        kill "$printer_process" 2>/dev/null || :
        wait "$printer_process" 2>/dev/null || :
    fi
    rm -rf "$work"
    [ $code -eq 0 ] || echo "The demo failed with exit code $code." >&2
}
trap finish EXIT
trap 'exit 130' INT TERM

show() {
    local word line='$'
    for word in "$@"; do
        case $word in
            *[!A-Za-z0-9._/=-]*) line+=" '$word'" ;;
            *) line+=" $word" ;;
        esac
    done
    printf '\n%s\n' "$line"
    "$@"
}

say "Starting the virtual printer in a process of its own"
kestrel-vprinter --port USB001 --trace text --trace-file "$work/trace.txt" >"$work/ready" 2>&1 &
printer_process=$!
for _ in $(seq 100); do
    grep -q '^ready' "$work/ready" && break
    kill -0 "$printer_process" 2>/dev/null || { cat "$work/ready" >&2; exit 1; }
    sleep 0.1
done
cat "$work/ready"

say "Installing the product's configuration and driver, and one printer on that port"
show kestrel setup
show kestrel printers add "Demo Printer" --port USB001
show kestrel printers

say "All settings as the printer has them"
show kestrel list

say "Changing one of each type, and reading it back"
show kestrel set --verify fax.error-correction no
show kestrel set --verify fax.redials 7
show kestrel set --verify photo.quality Presentation
show kestrel set --verify fax.senders-name 'Smith & Sons; Accounts'
show kestrel set --verify ip.static.address 192.168.0.77
show kestrel get fax.error-correction fax.redials photo.quality fax.senders-name ip.static.address

say "A word that the setting does not have is refused before it is sent"
if show kestrel set photo.quality Splendid; then
    echo "it was accepted" >&2
    exit 1
fi
say "A number that the printer does not take is refused by the printer"
if show kestrel set fax.redials 200; then
    echo "it was accepted" >&2
    exit 1
fi

say "What the virtual printer saw last"
tail -n 5 "$work/trace.txt"

say "Ending the virtual printer"
kill "$printer_process"
wait "$printer_process"
printer_process=
echo "Done: nothing is left running, and $work is removed."
