"""An installed product for tests: its programs and libraries below a prefix, and one printer in a process of its own."""
import os
import pathlib
import subprocess
import tempfile

PRINTER = "Office"
PATIENCE = 60  # seconds for a program that ends by itself


def run(*command, cwd=None, env=None):
    """The program's output; a failure shows all that it said."""
    done = subprocess.run([str(word) for word in command], cwd=cwd, env=env, timeout=PATIENCE, text=True,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    if done.returncode != 0:
        raise AssertionError(f"{' '.join(map(str, command))} ended with {done.returncode}:\n{done.stdout}")
    return done.stdout


class Installed:
    """Where the parts lie below `prefix`, and an environment in which programs find them as on a computer of its own."""

    def __init__(self, prefix):
        self.prefix = pathlib.Path(prefix)
        self.libraries = next(self.prefix.glob("lib*/**/libwinport.so")).parent
        # Nothing of the build: what is installed must find its parts by itself. Programs made outside need the path,
        # as for any library in a prefix of its own.
        self.environment = {"PREFIX": str(self.prefix), "PATH": f"{self.prefix}/bin:/usr/bin:/bin", "LANG": "C.UTF-8",
                            "PYTHONPATH": f"{self.prefix}/lib/python3/dist-packages", "PYTHONDONTWRITEBYTECODE": "1",
                            "CMAKE_GENERATOR": "Ninja",  # there may be no make
                            "PKG_CONFIG_PATH": f"{self.libraries}/pkgconfig", "CMAKE_PREFIX_PATH": str(self.prefix)}

    def __enter__(self):
        """A fresh home, in it the product and one printer, which is ready."""
        self.home = tempfile.TemporaryDirectory(prefix="kestrel-install-")
        self.environment["WINPORT_HOME"] = self.home.name
        self.printer = subprocess.Popen(["kestrel-vprinter", "--port", "USB001", "--control", self.path("control.json")],
                                        env=self.environment, text=True, stdout=subprocess.PIPE)
        ready = self.printer.stdout.readline()
        assert ready.startswith("ready"), f"the virtual printer said {ready!r}"
        self.run("kestrel", "setup")
        self.run("kestrel", "printers", "add", PRINTER, "--port", "USB001")
        return self

    def __exit__(self, *_):
        for monitor in pathlib.Path(self.home.name).rglob("*MUI.exe"):
            subprocess.run([monitor, "--stop"], env=self.environment, timeout=PATIENCE, stdout=subprocess.DEVNULL)
        self.printer.terminate()
        self.printer.communicate(timeout=PATIENCE)
        self.home.cleanup()

    def path(self, name):
        return os.path.join(self.home.name, name)

    def write(self, name, text):
        pathlib.Path(self.path(name)).write_text(text)
        return self.path(name)

    def run(self, *command, cwd=None):
        """Of a program that was linked outside: with the libraries' path."""
        outside = {"LD_LIBRARY_PATH": str(self.libraries)} if os.path.isabs(str(command[0])) else {}
        return run(*command, cwd=cwd, env=self.environment | outside)
