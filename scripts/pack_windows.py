#!/usr/bin/python3
"""Packs what was installed of both Windows builds: pack_windows.py TARGET_FOLDER X86_FOLDER X64_FOLDER. Makes a zip for
each word size with the checksums of its files, and a package for NuGet. The same input gives the same bytes; the time of
all files is $SOURCE_DATE_EPOCH."""
import hashlib
import os
import pathlib
import sys
import time
import zipfile

sys.dont_write_bytecode = True
from project import PRODUCT, ROOT, VERSION

# Zips know no time before 1980.
WHEN = time.gmtime(max(int(os.environ["SOURCE_DATE_EPOCH"]), 315532800))[:6]

CONTENT_TYPES = {"rels": "application/vnd.openxmlformats-package.relationships+xml",
                 "psmdcp": "application/vnd.openxmlformats-package.core-properties+xml"}
RELATIONSHIPS = """<?xml version="1.0" encoding="utf-8"?>
<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">
  <Relationship Type="http://schemas.microsoft.com/packaging/2010/07/manifest" Target="/KestrelSDK.nuspec" Id="R1" />
  <Relationship Type="http://schemas.openxmlformats.org/package/2006/relationships/metadata/core-properties" \
Target="/package/services/metadata/core-properties/kestrel.psmdcp" Id="R2" />
</Relationships>
"""
PROPERTIES = f"""<?xml version="1.0" encoding="utf-8"?>
<coreProperties xmlns:dc="http://purl.org/dc/elements/1.1/" \
xmlns="http://schemas.openxmlformats.org/package/2006/metadata/core-properties">
  <dc:creator>the Kestrel SDK authors</dc:creator>
  <dc:identifier>KestrelSDK</dc:identifier>
  <version>{VERSION}</version>
</coreProperties>
"""


def files_below(folder):
    return {path.relative_to(folder).as_posix(): path.read_bytes() for path in folder.rglob("*") if path.is_file()}


def write_zip(path, files):
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as archive:
        for name in sorted(files):
            entry = zipfile.ZipInfo(name, WHEN)
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.external_attr = 0o100644 << 16
            archive.writestr(entry, files[name])


def checksums(files):
    return "".join(f"{hashlib.sha256(files[name]).hexdigest()}  {name}\n" for name in sorted(files)).encode()


def content_types(names):
    """Every kind of file must be named; those without an extension one by one."""
    endings = {name.rsplit(".", 1)[1] for name in names if "." in name.rsplit("/", 1)[-1]}
    plain = [name for name in names if "." not in name.rsplit("/", 1)[-1]]
    octets = "application/octet"
    lines = [f'  <Default Extension="{ending}" ContentType="{CONTENT_TYPES.get(ending, octets)}" />'
             for ending in sorted(endings)]
    lines += [f'  <Override PartName="/{name}" ContentType="{octets}" />' for name in sorted(plain)]
    head = """<?xml version="1.0" encoding="utf-8"?>
<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types">
"""
    return head + "\n".join(lines) + "\n</Types>\n"


def nuget_files(trees):
    """Headers and import libraries for C and C++, libraries where .NET looks for a system's own, and the C# sources."""
    places = {"README.md": "README.md", "LICENSE": "LICENSE", "include/": "build/native/include/",
              "share/kestrel-sdk/csharp/": "contentFiles/cs/any/KestrelSDK/"}
    files = {}
    for name, content in trees["x64"].items():
        for source, target in places.items():
            if name.startswith(source):
                files[target + name.removeprefix(source)] = content
    for word_size, tree in trees.items():
        files[f"build/native/lib/win-{word_size}/{PRODUCT}SDK.lib"] = tree[f"lib/{PRODUCT}SDK.lib"]
        for ending in ("", ".debug"):
            library = f"{PRODUCT}SDK.dll{ending}"
            files[f"runtimes/win-{word_size}/native/{library}"] = tree[f"bin/{library}"]
    for name in ("KestrelSDK.nuspec", "build/native/KestrelSDK.targets"):
        text = (ROOT / "packaging/nuget" / pathlib.Path(name).name).read_text()
        files[name] = text.replace("@VERSION@", VERSION).replace("@PRODUCT@", PRODUCT)
    files["_rels/.rels"] = RELATIONSHIPS
    files["package/services/metadata/core-properties/kestrel.psmdcp"] = PROPERTIES
    files["[Content_Types].xml"] = content_types(files)
    return files


def main():
    target, *folders = map(pathlib.Path, sys.argv[1:])
    trees = {word_size: files_below(folder) for word_size, folder in zip(("x86", "x64"), folders, strict=True)}
    packages = {}
    for word_size, tree in trees.items():
        packages[f"kestrel-sdk-{VERSION}-windows-{word_size}.zip"] = tree | {"SHA256SUMS": checksums(tree)}
    packages[f"KestrelSDK.{VERSION}.nupkg"] = nuget_files(trees)
    for name, files in packages.items():
        write_zip(target / name, files)
        print(f"{name}: {len(files)} files")
    (target / "SHA256SUMS").write_bytes(checksums({name: (target / name).read_bytes() for name in packages}))


if __name__ == "__main__":
    main()
