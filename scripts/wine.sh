#!/bin/sh
# Runs a Windows program under Wine; the environment is that of scripts/windows.sh. A 64-bit program is started by
# its own loader: the general one would put a process in between, which a kill would hit instead.
case $1 in
    */win64/*) exec /usr/lib/wine/wine64 "$@" ;;
    *) exec ${WINE32_LAUNCHER:-} /usr/lib/wine/wine "$@" ;;
esac
