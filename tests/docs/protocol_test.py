"""Checks docs/protocol.md and its schemas against the simulator and the tool."""

import contextlib
import json
import re
import socket
import subprocess
import unittest

import jsonschema

import raw_peer
import support

GUIDE = support.SOURCE / "docs/protocol.md"
SCHEMAS = {path.stem: json.loads(path.read_text())
           for path in (support.SOURCE / "docs/schemas").glob("*.json")}

# {command: other member of its request}, from the guide's table.
COMMANDS = dict(re.findall(r"^\| `([\w-]+)` \|(?: `(module|boolean)`)? \| [^|]+ \|$",
                           GUIDE.read_text(), re.M))
MODULE_COMMANDS = [command for command, member in COMMANDS.items() if member == "module"]
PLAIN_COMMANDS = [command for command, member in COMMANDS.items() if not member]


def validator(name):
    return jsonschema.Draft202012Validator(SCHEMAS[name])


def reply_schema(command):
    return f"{command if command in ('list', 'engine-status') else 'command'}-reply"


def ask(request):
    with socket.create_connection(raw_peer.ADDRESS, timeout=support.PATIENCE) as connection:
        connection.sendall(request.encode())
        return json.loads(b"".join(iter(lambda: connection.recv(65536), b"")))


def requests_of_the_tool(*arguments):
    """The requests, as sent, of a run with an engine that says yes to everything."""
    return run_with_reply({"debugModeEnabled": True, "resultCode": 0}, *arguments)[0]


def run_with_reply(reply, *arguments):
    """The requests, as sent, and the finished run with an engine that always replies this."""
    with raw_peer.Peer(json.dumps(reply).encode()) as engine:
        ended = support.run([support.QUORLAN, *arguments])
    return engine.requests, ended


# What no fault of the simulator shows, in the words of the guide's table.
OTHER_ENGINES = {
    "nothing listens, or the connection is refused": contextlib.nullcontext(),
    "another member that the report needs is missing or null": raw_peer.Peer(b'{"resultCode":0}'),
}


def failures(title):
    """The rows of the table below a heading: what happens, the faults that show it, the status."""
    part = re.search(rf"^### {title}.*?(?=^###|^<!--)", GUIDE.read_text(), re.M | re.S).group()
    return [(case, re.findall(r"`([\w-]+)`", faults), status) for case, faults, status
            in re.findall(r"^\| ([^|]+) \|([^|]*)\| (\d+|the code) \|$", part, re.M)]


class Protocol(unittest.TestCase):
    def test_the_schemas_are_schemas(self):
        self.assertEqual(["command-reply", "engine-status-reply", "list-reply", "log-entry",
                          "request"],
                         sorted(SCHEMAS))
        for schema in SCHEMAS.values():
            jsonschema.Draft202012Validator.check_schema(schema)

    def test_the_example_conversation_takes_place(self):
        form = r"^<!-- (request|reply: [\w-]+) -->\n```json\n(.*?)^```"
        examples = re.findall(form, GUIDE.read_text(), re.M | re.S)
        self.assertEqual(GUIDE.read_text().count("```json"), len(examples))
        self.assertGreater(len(examples), 0)
        with support.Engine():
            for (kind, request), (reply_kind, reply) in zip(examples[::2], examples[1::2]):
                with self.subTest(request):
                    self.assertEqual(("request", "reply"), (kind, reply_kind[:5]))
                    validator("request").validate(json.loads(request))
                    validator(reply_kind[7:] + "-reply").validate(json.loads(reply))
                    self.assertEqual(json.loads(reply), ask(request.strip()))

    def test_the_table_of_commands_is_that_of_the_schema(self):
        said = {command: {"command"} | ({member} if member else set())
                for command, member in COMMANDS.items()}
        self.assertEqual(12, len(said))
        for command, members in said.items():
            for other in [set(), {"module"}, {"boolean"}]:
                request = {"command": command,
                           **{name: {"module": "valve", "boolean": "true"}[name] for name in other}}
                with self.subTest(request):
                    self.assertEqual(set(request) == members,
                                     validator("request").is_valid(request))

    def test_the_requests_of_the_tool_fit_their_schema_after_a_check_where_the_guide_says_so(self):
        said = re.search(r"^Before (.*?) the client sends `engine-status`",
                         GUIDE.read_text(), re.M | re.S).group(1)
        gated = re.findall(r"`(\w+)`", said)
        self.assertLess(set(gated), set(MODULE_COMMANDS))
        for arguments, count in [*(([f"--{c}=valve"], 1 + (c in gated)) for c in MODULE_COMMANDS),
                                 *(([f"--{c}"], 1) for c in PLAIN_COMMANDS),
                                 (["--debug=True"], 1)]:
            with self.subTest(arguments):
                requests = requests_of_the_tool(*arguments)
                self.assertEqual(count, len(requests))
                self.assertIn(json.loads(requests[-1])["command"], arguments[0])
                for request in requests:
                    validator("request").validate(json.loads(request))

    def test_the_replies_of_the_simulator_fit_their_schemas(self):
        with support.Engine():
            for command in PLAIN_COMMANDS:
                validator(reply_schema(command)).validate(ask(json.dumps({"command": command})))
            for debug in ["true", "false"]:
                validator("command-reply").validate(
                    ask(json.dumps({"command": "debug", "boolean": debug})))
                for command in MODULE_COMMANDS:
                    for module in ["valve", "pump1", "unknown"]:
                        request = json.dumps({"command": command, "module": module})
                        validator("command-reply").validate(ask(request))

    def test_a_refused_list_fits_its_schema(self):
        with support.Engine("--fault=error-code"):
            validator("list-reply").validate(ask('{"command":"list"}'))

    def test_a_refused_engine_status_ends_with_its_code_if_it_fits_its_schema(self):
        refusal = {"resultCode": 6, "description": "Not now"}
        status = {"safeModeEnabled": False, "debugModeEnabled": True, "state": "running",
                  "version": "1"}
        for reply, expected in [(refusal, 76), ({**refusal, **status}, 6)]:
            with self.subTest(reply):
                self.assertEqual(expected == 6, validator("engine-status-reply").is_valid(reply))
                ended = run_with_reply(reply, "--engine-status")[1]
                self.assertEqual(expected, ended.returncode)
                self.assertNotIn("Not now", ended.stdout + ended.stderr)
                # The check of debug mode ignores the code.
                requests = run_with_reply(reply, "--start=valve")[0]
                gated = [json.loads(request)["command"] for request in requests]
                self.assertEqual(["engine-status", "start"][:1 + (expected == 6)], gated)

    def test_the_schemas_refuse_what_the_guide_rules_out(self):
        entry = {"name": "a", "state": "running", "version": "1"}
        status = {"resultCode": 0, "safeModeEnabled": False, "debugModeEnabled": True,
                  "state": "running", "version": "1"}
        for schema, value in [
                ("request", {}),
                ("request", {"command": "start"}),
                ("request", {"command": "start", "module": "not-a-name"}),
                ("request", {"command": "debug", "boolean": True}),
                ("request", {"command": "list", "module": "a"}),
                ("command-reply", {"resultCode": 0}),
                ("command-reply", {"resultCode": "0", "description": ""}),
                ("command-reply", {"resultCode": 2**31, "description": ""}),
                ("engine-status-reply", {**status, "debugModeEnabled": None}),
                ("engine-status-reply", {k: v for k, v in status.items() if k != "version"}),
                ("list-reply", {"resultCode": 0, "services": []}),
                ("list-reply", {"resultCode": 3}),
                ("list-reply", {"resultCode": 0, "services": [], "modules": [{"name": "a"}]}),
                ("list-reply", {"resultCode": 0, "services": [],
                                "modules": [entry, {**entry, "monitored": True}]}),
        ]:
            with self.subTest(schema=schema, value=value):
                self.assertFalse(validator(schema).is_valid(value))
        validator("engine-status-reply").validate(status)

    def test_each_fault_ends_as_the_tables_say(self):
        raw_peer.shorten_connect_timeout()
        replies = failures("A command and its reply")
        checks = {fault: status for _, faults, status in failures("The check of debug mode")
                  for fault in faults}
        self.assertEqual(set(OTHER_ENGINES), {case for case, faults, _ in replies if not faults})
        self.assertEqual(set(checks), {fault for _, faults, _ in replies for fault in faults})
        for case, faults, plain in replies:
            engine = support.Engine(f"--fault={faults[0]}") if faults else OTHER_ENGINES[case]
            gated = checks[faults[0]] if faults else 76
            with self.subTest(case), engine:
                if plain == "the code":
                    plain = ask('{"command":"list"}')["resultCode"]
                runs = [subprocess.Popen([support.QUORLAN, option], stdout=subprocess.DEVNULL,
                                         stderr=subprocess.DEVNULL)
                        for option in ["--status=valve", "--start=valve"]]
                self.assertEqual([int(plain), int(gated)],
                                 [run.wait(raw_peer.SYSTEM_PATIENCE) for run in runs])


if __name__ == "__main__":
    support.main()
