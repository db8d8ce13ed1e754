#!/usr/bin/env bash
# A tour of what the library does, against a virtual printer in a process of its own. Every command is shown
# before it runs, and one that must fail has to fail as announced. Everything made lies in a temporary folder
# that is gone at the end; only build/ stays.
#   ./demo.sh            the Linux library
#   ./demo.sh --web      the same, and at its end a panel for the browser, until Ctrl-C
#   ./demo.sh --windows  the Windows DLL, under Wine
set -euo pipefail
cd "$(dirname "$0")"
source scripts/prepare.sh

case "${1:-}" in
    "") world=linux ;;
    --web) world=linux ;;
    --windows) world=windows ;;
    *) echo "usage: ./demo.sh [--web | --windows]" >&2; exit 2 ;;
esac

status_monitor=ZRIJ9900MUI
programs=(kestrel kestrel-vprinter)
install_packages "${BUILD_PACKAGES[@]}"

work=$(mktemp -d)
mkdir "$work/bin"
export PATH="$work/bin:$PATH"
if [ $world = linux ]; then
    build_programs native kestrel_sdk "${programs[@]}" kestrel_statusmon rundll32
    for program in "${programs[@]}" $status_monitor.exe; do ln -s "$PWD/build/native/bin/$program" "$work/bin"; done
    export WINPORT_HOME="$work/home"
    mkdir -m 700 "$WINPORT_HOME"
    monitor_log="$WINPORT_HOME/state/$status_monitor.log"
else
    source scripts/windows.sh
    install_packages "${WINDOWS_BUILD_PACKAGES[@]}"
    find_runnable
    [ ${#RUNNABLE[@]} -gt 0 ] || exit 1
    preset=${RUNNABLE[-1]}
    build_programs "$preset" kestrel_sdk "${programs[@]}" kestrel_statusmon
    start_wine
    export WINEPREFIX
    WINEPREFIX=$(wine_prefix "$preset")
    for program in "${programs[@]}" $status_monitor; do
        printf '#!/bin/sh\nexec "%s" "%s" "$@"\n' "$PWD/scripts/wine.sh" "$PWD/build/$preset/bin/$program.exe" \
            >"$work/bin/$program"
    done
    mv "$work/bin/$status_monitor" "$work/bin/$status_monitor.exe"
    chmod +x "$work"/bin/*
    monitor_log=("$WINEPREFIX"/drive_c/users/*/AppData/Local)
    monitor_log="${monitor_log[0]}/$status_monitor.log"
fi
export KESTREL_PRINTER="Demo Printer"
declare -A printer_processes=()  # by port

# end_process ID: asks it to end, and waits for it.
end_process() {
    kill "$1" 2>/dev/null || :
    wait "$1" 2>/dev/null || :
}

finish() {
    local code=$? process
    for process in $(jobs -p); do end_process "$process"; done
    # The library started it, so it is no child of ours; 3 says that none runs.
    "$status_monitor.exe" --stop >/dev/null 2>&1 || :
    if [ $world = windows ]; then
        kestrel printers remove "$KESTREL_PRINTER" >/dev/null 2>&1 || :
        stop_wine
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

# must_fail CODE COMMAND...
must_fail() {
    local wanted=$1 code=0
    shift
    show "$@" || code=$?
    [ "$code" -eq "$wanted" ] && return
    echo "expected the exit code $wanted, not $code" >&2
    exit 1
}

# wait_for TEXT FILE: until the file has it.
wait_for() {
    for _ in $(seq 100); do
        grep -q "$1" "$2" 2>/dev/null && return
        sleep 0.1
    done
    echo "\"$1\" did not come within 10 s:" >&2
    cat "$2" >&2
    exit 1
}

# start_printer PORT: until it is ready.
start_printer() {
    kestrel-vprinter --port "$1" --control "$work/control.json" \
        --trace text --trace-file "$work/trace.txt" >"$work/$1.ready" 2>&1 &
    printer_processes[$1]=$!
    wait_for '^ready' "$work/$1.ready"
    cat "$work/$1.ready"
}

end_printer() {
    end_process "${printer_processes[$1]}"
    unset "printer_processes[$1]"
}

# happens JSON: what befalls the printers, as somebody who stands before them would cause it.
happens() {
    printf '\n(to the printer: %s)\n' "$1"
    echo "{\"*\": $1}" >"$work/control.new"
    mv "$work/control.new" "$work/control.json"
}

tour_setup() {
    say "A virtual printer in a process of its own"
    start_printer USB001
    say "The product's configuration, status monitor and driver, and one printer on that port"
    show kestrel setup
    show kestrel printers add "Demo Printer" --port USB001
    show kestrel printers
}

tour_settings() {
    say "Settings: one of each type is changed and read back"
    show kestrel set --verify fax.error-correction no
    show kestrel set --verify fax.redials 7
    show kestrel set --verify photo.quality Presentation
    show kestrel set --verify fax.senders-name 'Smith & Sons; Accounts'
    show kestrel set --verify ip.static.address 192.168.0.77
    show kestrel get fax.error-correction fax.redials photo.quality fax.senders-name ip.static.address
    show kestrel list 'fax.*'
    say "A word that the setting does not have is refused before it is sent"
    must_fail 6 kestrel set photo.quality Splendid
    say "A number that the printer does not take is refused by the printer"
    must_fail 1 kestrel set fax.redials 200
}

tour_status() {
    say "The status: the library starts the status monitor first"
    show kestrel status
    happens '{"ink.black": 5, "status.error": "Paper_Jam"}'
    show kestrel status
    happens '{"ink.black": 75, "status.error": "None"}'
    say "The status monitor shows its windows when it is asked"
    show kestrel monitor show
    show kestrel monitor maintenance
    show kestrel monitor about
    show kestrel monitor mode off
    show kestrel monitor mode
}

tour_lock() {
    say "One program keeps the printer for three seconds; another is refused meanwhile"
    show kestrel lock --hold 3s &
    local holder=$!
    wait_for LockPrinter "$work/trace.txt"
    must_fail 5 kestrel set fax.redials 3
    wait "$holder"
    show kestrel set fax.redials 3
    show kestrel cache off
    show kestrel cache on
}

tour_address_book() {
    say "The address book, in and out as a table"
    cat >"$work/book.csv" <<'CSV'
number,type,name,address
0,fax,"Smith, John",+1 555 0100
7,email,"The ""Old"" Office",office@example.com
CSV
    show kestrel addressbook import "$work/book.csv"
    show kestrel addressbook show
    show kestrel addressbook set 2 fax "Head office" 0301234567
    show kestrel addressbook export
}

tour_network() {
    say "Wireless networks in reach, a ping by the printer, and what it found by itself"
    show kestrel wifi scan
    show kestrel wifi show
    show kestrel ping 192.168.0.1
    show kestrel hosts
}

tour_device() {
    say "The printer's clock"
    show kestrel clock set '2020-02-29 12:00'
    show kestrel clock show
    show kestrel clock sync
    show kestrel clock show
    say "What the printer is and can"
    show kestrel identity
    show kestrel capabilities
    say "New firmware"
    show kestrel firmware show
    echo 'ZRFW 1 9900.2210.420' >"$work/new.fw"
    happens '{"upgrade.seconds": 3}'
    show kestrel firmware upgrade "$work/new.fw"
    show kestrel status --watch --interval 1s --for 5s
    show kestrel firmware show
}

tour_installation() {
    say "A printer on the network: port, driver and printer as a set-up program installs them"
    cat >"$work/printers.inf" <<'INF'
[Version]
Signature = "$Windows NT$"
Class     = Printer

[Manufacturer]
"Kestrel" = Models, NTamd64, NTarm64

[Models]
"ZRIJ9900 Series" = Driver

[Driver]
DriverFile      = ZRIJ9900DRV.DLL
DataFile        = ZRIJ9900.INI
ConfigFile      = ZRIJ9900UI.DLL
LanguageMonitor = "ZRIJ9900 Monitor,ZRIJ9900MON.DLL"
INF
    if [ $world = windows ]; then
        echo "Wine has no monitor of network ports and its installer of printers does nothing: left out."
        return
    fi
    show kestrel install port 127.0.0.1
    show kestrel install driver "$work/printers.inf" "ZRIJ9900 Series"
    show kestrel install printer "Network Printer" "$work/printers.inf" "ZRIJ9900 Series" ZRIJT_127.0.0.1
    show kestrel printers
    start_printer ZRIJT_127.0.0.1
    show kestrel -p "Network Printer" get fax.redials
    end_printer ZRIJT_127.0.0.1
}

tour_supplies() {
    say "Supplies are ordered by the printer"
    show kestrel supplies order
    say "The printer's process ends: now the status monitor orders them"
    end_printer USB001
    show kestrel supplies order
    show tail -n 1 "$monitor_log"
    say "Without it the settings are out of reach"
    must_fail 4 kestrel --timeout 1s get fax.redials
}

# What the tour is over for: the printers in a browser, beside whatever one types in another terminal.
tour_panel() {
    say "The printers in a browser; Ctrl-C ends the demo"
    echo "In another terminal: export WINPORT_HOME=$WINPORT_HOME PATH=$work/bin:\$PATH; kestrel set fax.redials 5"
    kestrel-vprinter --port USB001 --port ZRIJT_127.0.0.1 --web 127.0.0.1:0 --quiet &
    printer_processes[panel]=$!
    trap 'echo' INT
    wait "${printer_processes[panel]}" || [ $? -gt 128 ]
    trap 'exit 130' INT
    end_printer panel
}

tour_setup
tour_settings
tour_status
tour_lock
tour_address_book
tour_network
tour_device
tour_installation
tour_supplies

[ "${1:-}" != --web ] || tour_panel
say "What the virtual printer and the status monitor saw last"
tail -n 5 "$work/trace.txt"
tail -n 5 "$monitor_log"

say "Ending the status monitor"
show "$status_monitor.exe" --stop
echo "Done: nothing is left running, and $work is removed."
