#!/usr/bin/env python3
"""Reads and changes settings of a printer: python.py [PRINTER]"""
import sys

from kestrel_sdk import KestrelError, Printer

try:
    with Printer(sys.argv[1] if len(sys.argv) > 1 else None) as printer:
        printer["fax.redials"] = 5
        printer["fax.mode"] = "Fine_Color"
        for name, value in printer.settings("fax.*").items():
            print(f"{name:22} {value!s:12} {printer.describe(name).about}")
        print(printer.status().text)
except KestrelError as error:
    sys.exit(str(error))
