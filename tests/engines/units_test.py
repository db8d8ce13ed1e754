"""The units of systemd: how much they leave open, and that the programs work with what they leave."""
import errno
import mmap
import re
import shutil
import signal
import socket
import subprocess

import pytest
import seccomp
from conftest import BIN, ROOT, Exporter, Printers, kestrel, until

UNITS = {"kestrel-exporter.service": ROOT / "debian/kestrel-tools.kestrel-exporter.service",
         "kestrel-vprinter@USB001.service": ROOT / "debian/kestrel-tools.kestrel-vprinter@.service",
         "kestrel-metrics.service": ROOT / "fleet/textfile/kestrel-metrics.service"}
MOST_EXPOSED = 20  # tenths
LAST_FAMILY = 46


def values(unit, name):
    return re.findall(rf"^{name}=(.*)$", UNITS[unit].read_text(), re.M)


@pytest.mark.parametrize("unit", UNITS)
def test_a_unit_leaves_little_open(unit, tmp_path):
    placed = tmp_path / unit
    shutil.copy(UNITS[unit], placed)
    result = subprocess.run(["systemd-analyze", "security", "--offline=true", f"--threshold={MOST_EXPOSED}", "--no-pager",
                             placed], capture_output=True, text=True)
    assert result.returncode == 0, result.stdout + result.stderr
    assert "Overall exposure level" in result.stdout


def named_calls(name):
    """Of "@system-service" or a call: the system calls."""
    if not name.startswith("@"):
        return {name}
    listed = subprocess.run(["systemd-analyze", "syscall-filter", name], capture_output=True, text=True, check=True)
    words = re.findall(r"^    (@?[a-z0-9_-]+)$", listed.stdout, re.M)
    assert words, name
    return set().union(*map(named_calls, words))


def allowed_calls(unit):
    """As systemd does it: the first line decides that there is an allow list, later ones add or take away."""
    allowed = named_calls("@default")
    for line in values(unit, "SystemCallFilter"):
        change = set().union(*map(named_calls, line.removeprefix("~").split()))
        allowed = allowed - change if line.startswith("~") else allowed | change
    return allowed


def limits(unit):
    """Loads, in a child before it becomes the program, what the unit forbids: of the filters the strictest counts, and a
    call that is not allowed ends the process, as under systemd."""
    calls = seccomp.SyscallFilter(seccomp.KILL_PROCESS)
    for call in sorted(allowed_calls(unit)):
        try:
            calls.add_rule(seccomp.ALLOW, call)
        except (RuntimeError, ValueError, OSError):
            pass  # of another kind of machine
    arguments = seccomp.SyscallFilter(seccomp.ALLOW)
    refuse = seccomp.ERRNO(errno.EPERM)
    assert values(unit, "MemoryDenyWriteExecute") == values(unit, "RestrictRealtime") == ["yes"]
    write_and_execute = mmap.PROT_WRITE | mmap.PROT_EXEC
    arguments.add_rule(refuse, "mmap", seccomp.Arg(2, seccomp.MASKED_EQ, write_and_execute, write_and_execute))
    arguments.add_rule(refuse, "mprotect", seccomp.Arg(2, seccomp.MASKED_EQ, mmap.PROT_EXEC, mmap.PROT_EXEC))
    families = {getattr(socket, name) for line in values(unit, "RestrictAddressFamilies") for name in line.split()
                if name != "none"}
    for family in set(range(LAST_FAMILY)) - families:
        arguments.add_rule(refuse, "socket", seccomp.Arg(0, seccomp.EQ, int(family)))

    def load():
        arguments.load()
        calls.load()
    return load


def test_the_programs_work_within_the_limits_of_their_units(home, tmp_path):
    assert values("kestrel-vprinter@USB001.service", "ExecStart")[0].split()[1:3] == ["--port", "%I"]
    printers = Printers(("USB001",), tmp_path, "--state", tmp_path / "state.json",
                        preexec_fn=limits("kestrel-vprinter@USB001.service"))
    exporter = Exporter("--timeout", "1s", preexec_fn=limits("kestrel-exporter.service"))
    until(lambda: ("kestrel_last_error_info", "Dead", "0xE0000002") in exporter.scrape())
    assert exporter.scrape()["kestrel_up", "Office"] == 1
    assert kestrel("-p", "Office", "set", "fax.redials", "4") == ""
    textfile = tmp_path / "kestrel.prom"
    subprocess.run([BIN / "kestrel", "metrics", "--timeout", "1s", "--output", textfile], check=True,
                   preexec_fn=limits("kestrel-metrics.service"))
    assert "kestrel_up" in textfile.read_text()
    assert exporter.stop() == 0
    assert printers.stop() == 0


def test_the_limits_bite(tmp_path):
    for call, code in (("import os; os.setpriority(os.PRIO_PROCESS, 0, 1)", -signal.SIGSYS),
                       ("import socket; socket.socket(socket.AF_UNIX)", 1),
                       ("import mmap; mmap.mmap(-1, 4096, prot=7)", 1),
                       ("import socket; socket.socket(socket.AF_INET)", 0)):
        result = subprocess.run(["/usr/bin/python3", "-c", call], preexec_fn=limits("kestrel-exporter.service"),
                                capture_output=True)
        assert result.returncode == code, (call, result)
