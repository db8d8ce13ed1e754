#!/usr/bin/python3
"""Ansible module: a printer's settings as they shall be, by `kestrel apply`."""

DOCUMENTATION = """
module: kestrel_settings
short_description: Brings settings of printers to a wanted state
description:
  - Reads the settings first, changes only what differs and reads that back, all by C(kestrel apply).
  - Supports check mode and diff mode.
options:
  settings:
    description: Settings by their keys, such as C(fax.redials), for all printers that are named.
    type: dict
    default: {}
  printers:
    description:
      - Names of installed printers, or patterns with C(*) and C(?), each with settings of its own that count more
        than I(settings); an empty one only names the printer.
      - None means the printer that the library picks.
    type: dict
    default: {}
  all:
    description: I(settings) are for every installed printer of the product.
    type: bool
    default: false
  rollback:
    description: When a printer refuses a value, put back what was changed before.
    type: bool
    default: true
  timeout:
    description: Time for each exchange with a printer, such as C(500ms) or C(5s).
    type: str
    default: 5s
  executable:
    description: The client.
    type: str
    default: kestrel
"""

EXAMPLES = """
- name: Fax redials everywhere, and two rings in the offices
  kestrel_settings:
    all: true
    settings:
      fax.redials: 5
    printers:
      "Office*":
        fax.rings: 2
"""

RETURN = """
printers:
  description: For each printer its C(changes) (C(key), C(old), C(new); secrets are masked) and C(same), the number of
    settings that were as wanted.
  returned: always
  type: list
"""

import json
import os
import re
import tempfile

from ansible.module_utils.basic import AnsibleModule

WOULD_CHANGE = 9
SECRET = re.compile(r"security.?key|pass.?phrase", re.IGNORECASE)  # of a setting's key


def client(module, wanted, check):
    """What `kestrel apply` says. The wanted state goes by a file: a command line can be read by every account."""
    options = module.params
    words = [module.get_bin_path(options["executable"], required=True), "--json", "--timeout", options["timeout"]]
    for printer in options["printers"]:
        words += ["--printer", printer]
    if options["all"]:
        words.append("--all")
    file, path = tempfile.mkstemp(dir=module.tmpdir, suffix=".json")
    with os.fdopen(file, "w", encoding="utf-8") as out:
        json.dump(wanted, out)
    words += ["apply", path]
    if check:
        words.append("--dry-run")
    elif options["rollback"]:
        words.append("--rollback")
    code, out, errors = module.run_command(words, environ_update={"KESTREL_PRINTER": ""})
    try:
        return json.loads(out)
    except ValueError:
        module.fail_json(msg=f"{words[0]} ended with {code}: {errors or out}")


def failure_of(printer, document):
    error = document.get("error")
    if not error:
        return ""
    name = printer.get("printer", "")
    return (f"{name}: " if name else "") + error["text"] + (f" ({error['advice']})" if error.get("advice") else "")


def state(printers, which):
    """For --diff: the settings that differ, as lines."""
    lines = []
    for printer in printers:
        prefix = f"{printer['printer']}: " if printer.get("printer") else ""
        lines += [f"{prefix}{change['key']} = {change[which]}\n" for change in printer.get("changes", [])]
    return "".join(lines)


def main():
    module = AnsibleModule(
        argument_spec={
            "settings": {"type": "dict", "default": {}},
            "printers": {"type": "dict", "default": {}},
            "all": {"type": "bool", "default": False},
            "rollback": {"type": "bool", "default": True},
            "timeout": {"type": "str", "default": "5s"},
            "executable": {"type": "str", "default": "kestrel"},
        },
        supports_check_mode=True)
    for settings in (module.params["settings"], *module.params["printers"].values()):
        module.no_log_values.update(str(value) for key, value in (settings or {}).items() if SECRET.search(key))
    own = {name: settings for name, settings in module.params["printers"].items() if settings}
    wanted = {"settings": module.params["settings"], "printers": own}
    document = client(module, wanted, module.check_mode)
    printers = document.get("printers") or [document]
    changed = any(printer.get("changes") and not printer.get("putBack") for printer in printers)
    told = [{name: printer[name] for name in ("printer", "changes", "same", "putBack") if name in printer}
            for printer in printers]
    result = {"changed": changed, "printers": told,
              "diff": {"before": state(printers, "old"), "after": state(printers, "new")}}
    failures = [text for text in (failure_of(printer, printer) for printer in printers) if text]
    if failures:
        module.fail_json(msg="; ".join(dict.fromkeys(failures)), **result)
    if document["exitCode"] not in (0, WOULD_CHANGE):
        module.fail_json(msg=f"the client ended with {document['exitCode']}", **result)
    module.exit_json(**result)


if __name__ == "__main__":
    main()
