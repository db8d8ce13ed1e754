"""The module for Ansible, run by Ansible itself on this computer."""
import json
import os
import re
import shutil
import subprocess

import pytest
from conftest import BIN, ROOT, kestrel

LIBRARY = ROOT / "fleet/ansible/library"


@pytest.fixture
def play(printers, tmp_path):
    program = shutil.which("ansible-playbook")
    if program is None:
        pytest.fail("NOT TRIED: ansible-playbook is not installed (apt-get install ansible-core)")
    environment = os.environ | {
        "ANSIBLE_LIBRARY": str(LIBRARY), "ANSIBLE_LOCALHOST_WARNING": "0",
        "ANSIBLE_HOME": str(tmp_path / "ansible"), "ANSIBLE_LOCAL_TEMP": str(tmp_path / "local"),
        "ANSIBLE_REMOTE_TEMP": str(tmp_path / "remote"), "ANSIBLE_NOCOLOR": "1", "LC_ALL": "C.UTF-8"}

    def run(task, *words):
        book = tmp_path / "book.yml"
        book.write_text(json.dumps([{
            "hosts": "localhost", "connection": "local", "gather_facts": False,
            "vars": {"ansible_python_interpreter": "/usr/bin/python3"},
            "tasks": [
                {"kestrel_settings": task | {"executable": str(BIN / "kestrel"), "timeout": "500ms"},
                 "register": "outcome", "ignore_errors": True},
                {"copy": {"content": "{{ outcome | to_json }}", "dest": str(tmp_path / "outcome")},
                 "check_mode": False, "diff": False}]}]))
        result = subprocess.run([program, "-vvv", "-i", "localhost,", *words, book], env=environment,
                                capture_output=True, text=True)
        assert result.returncode == 0, result.stdout + result.stderr
        return json.loads((tmp_path / "outcome").read_text()) | {"shown": result.stdout}

    yield run
    kestrel("-p", "Office", "set", "fax.redials", "3")


WANTED = {"settings": {"fax.redials": 5}, "printers": {"Office": {}, "Quick": {"fax.rings": 2, "fax.backup": False}}}


def test_first_changes_then_is_content(play):
    first = play(WANTED, "--check", "--diff")
    assert first["changed"]
    assert first["diff"]["before"].startswith("Office: fax.redials = 3\n")
    assert kestrel("-p", "Office", "get", "fax.redials") == "3\n", "check mode changes nothing"

    done = play(WANTED)
    assert done["changed"]
    assert [printer["printer"] for printer in done["printers"]] == ["Office", "Quick"]
    assert kestrel("-p", "Quick", "get", "fax.redials", "fax.rings") == "fax.redials 5\nfax.rings 2\n"
    assert not play(WANTED)["changed"]
    assert not play(WANTED, "--check")["changed"]


def test_fails_in_the_words_of_the_client_and_takes_back(play, printers):
    wrong = play({"settings": {"fax.redials": 999}, "printers": {"Office": {}}})
    assert wrong["failed"] and "fax.redials cannot be \"999\"" in wrong["msg"]

    printers.change({"USB001": {"faults": [{"match": "DeviceSettings.Fax.Rings=*", "responseNumber": 1001}]}})
    refused = play({"printers": {"Office": {"fax.redials": 7, "fax.rings": 1}}})
    printers.change({"USB001": {"faults": []}})
    assert refused["failed"] and "cannot set fax.rings" in refused["msg"]
    assert kestrel("-p", "Office", "get", "fax.redials") == "3\n"

    dead = play({"settings": {"fax.redials": 5}, "printers": {"Office": {}, "Dead": {}}})
    assert dead["failed"] and dead["msg"].startswith("Dead: ") and dead["changed"]


def test_secrets_are_told_nowhere(play):
    rows = (ROOT / "src/catalogue/settings.def").read_text().splitlines()
    secrets = [re.search(r'"([\w.-]+)"', row)[1] for row in rows if re.search(r"\bSecret,", row)]
    assert len(secrets) == 5
    done = play({"settings": dict.fromkeys(secrets, "open sesame"), "printers": {"Office": {}}}, "--diff")
    assert done["changed"]
    assert kestrel("-p", "Office", "get", secrets[-1]) == "open sesame\n"
    assert "sesame" not in json.dumps(done)
