#!/bin/sh
# Runs a Windows program under Wine as every test and demo here does; the prefix is that of WINEPREFIX.
export WINEDEBUG="${WINEDEBUG:--all}" LC_ALL="${LC_ALL:-C.UTF-8}"
# No debugger window after a crash, no offers to install anything; a winspool.drv beside the program goes first.
export WINEDLLOVERRIDES="${WINEDLLOVERRIDES:-mscoree,mshtml=;winedbg.exe=d;winspool.drv=n,b}"
unset DISPLAY
exec wine "$@"
