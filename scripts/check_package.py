#!/usr/bin/env python3
"""Packs a build and looks into the zip: check_package.py BUILD_FOLDER. What a user needs is there, and nothing that only
tests need."""
import pathlib
import re
import subprocess
import sys
import tempfile
import zipfile

COMMON = {"include/kestrel/sdk.h", "include/kestrel/sdk_settings.hpp", "share/kestrel-sdk/csharp/Printer.cs",
          "share/kestrel-sdk/csharp/Native.cs"}
WINDOWS = COMMON | {"README.md", "docs/kestrel.md", "bin/ZRIJ9900SDK.dll", "bin/ZRIJ9900SDK.dll.debug",
                    "lib/libZRIJ9900SDK.dll.a", "lib/ZRIJ9900SDK.def", "bin/kestrel.exe", "bin/kestrel-vprinter.exe",
                    "bin/ZRIJ9900MUI.exe"}
LINUX = COMMON | {"bin/kestrel", "bin/kestrel-vprinter", "libexec/kestrel-sdk/ZRIJ9900MUI.exe", "libexec/kestrel-sdk/rundll32",
                  "libexec/kestrel-sdk/kestrel-exporter.so",
                  "libexec/kestrel-sdk/kestrel-top.so",
                  "lib/pkgconfig/zrij9900sdk.pc", "share/doc/kestrel-sdk/README.md", "share/doc/kestrel-sdk/LICENSE",
                  "share/doc/kestrel-sdk/kestrel.md"}
LINUX |= {f"lib/lib{name}.so{version}" for name in ("ZRIJ9900SDK", "winport") for version in ("", ".1", ".1.0.0")}
# Folders with whatever belongs there.
OPEN = ("include/kestrel/", "docs/", "share/doc/kestrel-sdk/", "lib/cmake/KestrelSDK/", "share/kestrel-sdk/csharp/",
        "share/man/", "share/bash-completion/", "share/zsh/", "share/fish/", "lib/python3/dist-packages/kestrel_sdk/",
        "python/kestrel_sdk/")


def main():
    build = pathlib.Path(sys.argv[1])
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run(["cpack", "--config", build / "CPackConfig.cmake", "-B", folder], check=True,
                       stdout=subprocess.DEVNULL)
        package = next(pathlib.Path(folder).glob("*.zip"))
        with zipfile.ZipFile(package) as archive:
            files = {name.split("/", 1)[1] for name in archive.namelist() if not name.endswith("/")}
    wanted = WINDOWS if "windows" in package.name else LINUX
    # Libraries on Linux lie below the folder of the machine's kind.
    files = {re.sub("^lib/[a-z0-9_]+-linux-gnu/", "lib/", name) for name in files}
    strangers = {name for name in files - wanted if not name.startswith(OPEN)}
    for name in sorted(wanted - files):
        print(f"{package.name}: {name} is missing", file=sys.stderr)
    for name in sorted(strangers):
        print(f"{package.name}: {name} is nobody's", file=sys.stderr)
    print(f"{package.name}: {len(files)} files")
    return 1 if wanted - files or strangers else 0


if __name__ == "__main__":
    sys.exit(main())
