"""The panel's interface and its safety, against the running program."""
import json
import os
import pathlib
import re
import socket
import subprocess
import threading
import time

import jsonschema
from conftest import BIN, Panel, kestrel, until

ROOT = pathlib.Path(os.environ["SOURCE"])
PRINTER = "/api/printers/USB001"
DOCUMENT = json.loads((ROOT / "docs/vprinter-api.json").read_text())


def schema_of(answer):
    """A described answer's schema as one that knows its components; JSON Schema has no "nullable"."""
    def plain(part):
        if isinstance(part, list):
            return [plain(item) for item in part]
        if not isinstance(part, dict):
            return part
        part = {name: plain(value) for name, value in part.items()}
        return {**part, "type": [part["type"], "null"]} if part.pop("nullable", False) else part

    answer = DOCUMENT["components"]["responses"]["Refused"] if "$ref" in answer else answer
    return {**plain(answer["content"]["application/json"]["schema"]), "components": plain(DOCUMENT["components"])}


def viewer(panel):
    connection = socket.create_connection(panel.host.split(":"), 10)
    connection.sendall(f"GET /api/events HTTP/1.1\r\nHost: {panel.host}\r\n\r\n".encode())
    return connection


def events_of_a_change(panel):
    """What a viewer sees while a client sets the pass phrase."""
    seen = []
    with viewer(panel) as connection, connection.makefile() as lines:
        until(lambda: lines.readline().startswith(":"))
        threading.Thread(target=kestrel, args=("set", "wireless.pass-phrase", "swordfish")).start()
        while "PassPhrase=" not in str(seen):
            if (line := lines.readline()).startswith("data: "):
                seen.append(json.loads(line[6:]))
    return seen


def settings(panel):
    return panel.get(PRINTER + "/settings")["settings"]


def test_values_are_those_of_the_client(panel):
    told = kestrel("list")["settings"]
    assert [{name: row.get(name) for name in entry} for row, entry in zip(settings(panel), told)] == told
    status = {name: value for name, value in kestrel("status").items() if name not in ("version", "command", "exitCode")}
    seen = panel.get(PRINTER)
    assert {name: seen[name] for name in status} == status
    record = {"type": "fax", "name": "Müller & Söhne; Köln", "address": "+49 221 1"}
    assert panel.put(PRINTER + "/addressbook/speed-dial/3", record) == 200
    assert panel.get(PRINTER + "/addressbook")["speed-dial"] == kestrel("addressbook", "show")["speed-dial"] == [
        {"number": 3, **record}]
    assert panel.ask("POST", PRINTER + "/access-points/search")[0] == 200
    until(lambda: len(panel.get(PRINTER + "/access-points")["accessPoints"]) == 4)


def test_a_change_reaches_the_other_side_within_a_second(panel):
    for key, here, there in (("fax.redials", 7, 2), ("fax.backup", False, True), ("photo.quality", "Normal", "Draft"),
                             ("fax.senders-name", "Al & Söhne; A=1?", "Al"),
                             ("ip.static.address", "10.1.2.3", "10.0.0.1")):
        assert panel.put(f"{PRINTER}/settings/{key}", {"value": here}) == 200
        assert kestrel("get", key)["values"] == {key: here}
        kestrel("maintenance", "clean")
        kestrel("set", key, "yes" if there is True else str(there))
        until(lambda: (key, there) in [(row["key"], row.get("value")) for row in settings(panel)])


def test_what_happens_to_a_printer_concerns_it_alone(panel):
    assert panel.put(PRINTER + "/settings/status.error", {"value": "Paper_Jam"}) == 200
    assert panel.put(PRINTER + "/settings/printer.upper-tray-level", {"value": 5}) == 200
    assert kestrel("status")["state"] == "paper-jam"
    assert [printer["state"] for printer in panel.get("/api/printers")["printers"]] == ["paper-jam", "ready"]


def test_a_fault_is_switched_on_and_off(panel):
    rule = {"match": "DeviceSettings.Fax.*", "busy": 60000, "times": 1}
    status, _, told = panel.ask("POST", PRINTER + "/faults", rule)
    assert status == 200
    kestrel("get", "fax.redials", code=5)
    shown = panel.get(PRINTER + "/faults")["faults"][0]
    assert shown["met"] >= 1 and (shown["kind"], shown["match"], shown["source"]) == ("busy", rule["match"], "hand")
    assert panel.ask("DELETE", f"{PRINTER}/faults/{told['name']}")[0] == 200
    kestrel("get", "fax.redials")
    assert panel.ask("DELETE", f"{PRINTER}/faults/{told['name']}")[0] == 404
    assert panel.ask("POST", PRINTER + "/faults", {"match": "*", "delay": 5000, "name": "slow"})[0] == 200
    # What is asked while an answer is delayed does not wait for it.
    with subprocess.Popen([BIN / "kestrel", "--timeout", "500ms", "get", "fax.redials"], stderr=subprocess.DEVNULL):
        until(lambda: panel.get(PRINTER + "/faults")["faults"][0]["met"])
        assert panel.put(PRINTER + "/settings/fax.redials", {"value": 8}) == 200
    assert panel.ask("POST", PRINTER + "/faults", {"match": "*", "cut": -1})[0] == 422


REFUSED = [
    ("/settings/fax.redials", {"value": 200}, 422), ("/settings/fax.redials", {"value": "7"}, 422),
    ("/settings/fax.senders-name", {"value": "a\x1bb"}, 422), ("/settings/fax.senders-name", {"value": "日"}, 422),
    ("/settings/ink.black", {"value": 101}, 422), ("/settings/no.such", {"value": 1}, 404),
    ("/settings/fax.redials", {"other": 1}, 400), ("/settings/fax.redials", b"{", 400), ("/settings/%zz", {}, 400),
    ("/addressbook/speed-dial/60", {"type": "fax", "name": "", "address": ""}, 404),
    ("/addressbook/one-touch/0", {"type": "fax", "name": "x" * 40, "address": ""}, 422),
    ("/addressbook", {}, 405), ("/nothing", {}, 404), ("/../NET2/settings/x", {}, 404)]


def test_what_does_not_fit_is_refused(panel):
    for path, body, status in REFUSED:
        got, _, answer = panel.ask("PUT", PRINTER + path, body)
        assert got == status and answer["error"]["text"] and answer["error"]["advice"], (path, body, answer)


def test_foreign_pages_are_refused(panel):
    change = ("PUT", PRINTER + "/settings/fax.redials", {"value": 9})
    port = panel.host.split(":")[1]
    for fields, status in [({"Host": f"printer.example:{port}"}, 403), ({"Host": "127.0.0.1:1"}, 403), ({"Host": ""}, 403),
                           ({"Host": f"127.0.0.1.example:{port}"}, 403), ({"Origin": "http://evil.example"}, 403),
                           ({"Origin": "null"}, 403), ({"Origin": f"https://{panel.host}"}, 403),
                           ({"Sec_Fetch_Site": "cross-site"}, 403), ({"Content_Type": "text/plain"}, 415),
                           ({"Content_Type": "application/x-www-form-urlencoded"}, 415),
                           ({"Content_Encoding": "gzip"}, 411), ({"Transfer_Encoding": "chunked"}, 411)]:
        assert panel.ask(*change, **fields)[0] == status, fields
    assert panel.ask("GET", PRINTER, Origin="http://evil.example")[0] == 403
    assert kestrel("get", "fax.redials")["values"] == {"fax.redials": 3}
    assert panel.ask(*change, Origin=f"http://{panel.host}", Sec_Fetch_Site="same-origin")[0] == 200
    status, fields, _ = panel.ask("GET", "/")
    assert status == 200 and fields["Content-Security-Policy"].startswith("default-src 'none'; script-src 'self'")
    assert not [name for name in fields if name.startswith("Access-Control")]


def test_sizes_times_and_connections_are_bounded(panel):
    assert panel.ask("PUT", PRINTER + "/settings/device.name", b" " * 70000)[0] == 413
    assert panel.ask("GET", "/" + "x" * 9000)[0] == 414
    assert panel.ask("PUT", PRINTER + "/settings/device.name", b"[" * 60000)[0] == 400
    address = panel.host.split(":")
    begun = time.monotonic()
    slow = [socket.create_connection(address, 20) for _ in range(40)]
    for connection in slow:
        connection.send(b"GET / HTTP/1.1\r\n")

    def drip():
        while time.monotonic() < begun + 7:
            time.sleep(0.5)
            try:
                slow[0].send(b"a")
            except OSError:
                return
    threading.Thread(target=drip).start()
    assert slow[39].recv(100).startswith(b"HTTP/1.1 503")
    slow[0].recv(1000)
    assert 4 < time.monotonic() - begun < 15
    until(lambda: panel.ask("GET", PRINTER)[0] == 200)
    many = socket.create_connection(address, 20)
    many.sendall(b"GET / HTTP/1.1\r\n" + b"a: b\r\n" * 20000)
    assert not many.recv(100).startswith(b"HTTP/1.1 200")


def test_traffic_is_shown_with_its_secrets_hidden(panel):
    seen = events_of_a_change(panel)
    for event in seen:
        jsonschema.validate(event, {**DOCUMENT["components"]["schemas"]["Event"], "components": DOCUMENT["components"]})
    exchanges = [exchange for event in seen for exchange in event["exchanges"]]
    changed = [exchange for exchange in exchanges if "PassPhrase=" in exchange["request"]][0]
    assert changed["decoded"] == [{"key": changed["decoded"][0]["key"], "name": "wireless.pass-phrase", "value": "********"}]
    assert "swordfish" not in json.dumps(seen) and b"swordfish".hex().upper() not in changed["bytes"]
    masked = {row["key"]: row["value"] for row in settings(panel) if row.get("masked")}
    assert masked == dict.fromkeys(["wireless.pass-phrase", *(f"wireless.security-key{i}" for i in range(4))], "********")


def test_too_many_viewers_are_refused(panel):
    viewers = [viewer(panel) for _ in range(9)]  # answered side by side, the last not always as the last
    assert sorted(connection.recv(100).split()[1] for connection in viewers) == [b"200"] * 8 + [b"503"]


def test_every_answer_is_as_the_document_says(panel):
    bodies = {"/settings/{name}": {"value": 4}, "/addressbook/{list}/{number}": {"type": "fax", "name": "A", "address": "1"},
              "/api/session": {"token": "x"}, "/faults": {"match": "*Redials?", "delay": 1, "name": "fax.redials"}}
    for path, methods in DOCUMENT["paths"].items():
        for method, described in methods.items():
            if path == "/api/events":
                continue
            body = next((body for end, body in bodies.items() if path.endswith(end) and method in ("put", "post")), None)
            actual = path
            for name, value in {"port": "USB001", "name": "fax.redials", "list": "one-touch", "number": "2"}.items():
                actual = actual.replace("{%s}" % name, value)
            status, _, answer = panel.ask(method.upper(), actual, body)
            assert status == 200 or path == "/api/session"
            jsonschema.validate(answer, schema_of(described["responses"].get(str(status), {"$ref": ""})))
            if body:
                jsonschema.validate(body, {**described["requestBody"]["content"]["application/json"]["schema"],
                                           "components": DOCUMENT["components"]})
    routes = set(re.findall(r'\{"([A-Z]+)", "(/?[^"]*)", ', (ROOT / "tools/vprinter/api/api.cpp").read_text()))
    shape = {(method.upper(), re.sub(r"\{\w+\}", "*", path.split("{port}")[1]))
             for path, methods in DOCUMENT["paths"].items() if "{port}" in path for method in methods}
    assert routes == shape


def test_a_token_is_asked_for(home, tmp_path):
    token = tmp_path / "token"
    token.write_text("0123456789abcdef\n")
    panel = Panel("--web-token", token)
    try:
        assert panel.ask("GET", PRINTER)[0] == 401 and panel.ask("GET", "/")[0] == 200
        assert panel.ask("GET", PRINTER, Authorization="Bearer 0123456789abcdee")[0] == 401
        assert panel.ask("GET", PRINTER, Authorization="Bearer 0123456789abcdef")[0] == 200
        assert panel.ask("POST", "/api/session", {"token": "wrong"})[0] == 401
        status, fields, _ = panel.ask("POST", "/api/session", {"token": "0123456789abcdef"})
        assert status == 200 and "HttpOnly; SameSite=Strict" in fields["Set-Cookie"]
        assert panel.ask("GET", PRINTER, Cookie=fields["Set-Cookie"].split(";")[0])[0] == 200
    finally:
        panel.stop()
    for options, told in [(["--web", "0.0.0.0:0"], "--web-token"), (["--web", "127.0.0.1"], "127.0.0.1:8631"),
                          (["--web", "127.0.0.1:0", "--web-token", "/dev/null"], "16 characters"),
                          (["--web", "192.0.2.1:8631", "--web-token", token], "--web 192.0.2.1:8631")]:
        result = subprocess.run([BIN / "kestrel-vprinter", "--port", "USB001", *options], capture_output=True, text=True)
        assert result.returncode == 2 and told in result.stderr
