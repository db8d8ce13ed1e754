"""A wheel is made of the staged folder without a network, and works where it is installed. PACKAGE: that folder."""
import os
import pathlib
import shutil
import subprocess
import sys
import zipfile

PACKAGE = pathlib.Path(os.environ["PACKAGE"])
PROGRAM = """if True:
    import kestrel_sdk, sys
    assert kestrel_sdk.__file__.startswith(sys.argv[1]), kestrel_sdk.__file__
    with kestrel_sdk.Printer("Office") as printer:
        printer["fax.redials"] = 5
        print(printer["fax.redials"])"""


def pip(verb, *arguments):
    subprocess.run([sys.executable, "-m", "pip", verb, *arguments, "--no-index", "--no-deps", "--quiet",
                    "--disable-pip-version-check"], check=True,
                   env={**os.environ, "PIP_ROOT_USER_ACTION": "ignore"})


def test_a_wheel_is_built_installed_and_used(virtual, tmp_path):
    stage, target = tmp_path / "stage", tmp_path / "target"
    shutil.copytree(PACKAGE, stage)  # the build leaves things beside the sources
    pip("wheel", "--no-build-isolation", "-w", tmp_path, stage)
    (wheel,) = tmp_path.glob("kestrel_sdk-*-py3-none-any.whl")
    sources = {f"kestrel_sdk/{path.name}" for path in (PACKAGE / "kestrel_sdk").iterdir() if path.is_file()}
    with zipfile.ZipFile(wheel) as archive:
        packed = {name for name in archive.namelist() if ".dist-info/" not in name}
    assert packed == sources and {"kestrel_sdk/py.typed", "kestrel_sdk/_access.pyi"} <= packed
    pip("install", "--target", target, wheel)
    said = subprocess.run([sys.executable, "-c", PROGRAM, target], cwd=tmp_path, check=True, text=True,
                          stdout=subprocess.PIPE, env={**os.environ, "PYTHONPATH": str(target)}).stdout
    assert said == "5\n"
