"""Checks docs/protocol.md and its schemas against the simulator and the tool."""

import json
import re
import socket
import subprocess
import threading
import unittest

import jsonschema

import support

GUIDE = support.SOURCE / "docs/protocol.md"
SCHEMAS = {path.stem: json.loads(path.read_text())
           for path in (support.SOURCE / "docs/schemas").glob("*.json")}
ADDRESS = ("127.0.0.1", 7777)

MODULE_COMMANDS = ["start", "stop", "restart", "reconfigure", "monitor", "status", "pid"]
PLAIN_COMMANDS = ["list", "engine-status", "update", "update-status"]


def validator(name):
    return jsonschema.Draft202012Validator(SCHEMAS[name])


def reply_schema(command):
    return f"{command if command in ('list', 'engine-status') else 'command'}-reply"


def ask(request):
    with socket.create_connection(ADDRESS, timeout=support.PATIENCE) as connection:
        connection.sendall(request.encode())
        return json.loads(b"".join(iter(lambda: connection.recv(65536), b"")))


def requests_of_the_tool(*arguments):
    """The requests, as sent, of a run with an engine that says yes to everything."""
    return run_with_reply({"debugModeEnabled": True, "resultCode": 0}, *arguments)[0]


def run_with_reply(reply, *arguments):
    """The requests, as sent, and the finished run with an engine that always replies this."""
    with socket.create_server(ADDRESS) as listener:
        requests = []

        def serve():
            while True:
                with listener.accept()[0] as connection:
                    request = connection.recv(65536).decode()
                    if not request:
                        return
                    requests.append(request)
                    connection.sendall(json.dumps(reply).encode())

        server = threading.Thread(target=serve)
        server.start()
        ended = support.run([support.QUORLAN, *arguments])
        socket.create_connection(ADDRESS).close()
        server.join(support.PATIENCE)
        return requests, ended


class Protocol(unittest.TestCase):
    def test_the_schemas_are_schemas(self):
        self.assertEqual(["command-reply", "engine-status-reply", "list-reply", "request"],
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

    def test_the_requests_of_the_tool_fit_their_schema(self):
        for arguments, count in [*(([f"--{c}=valve"], None) for c in MODULE_COMMANDS),
                                 *(([f"--{c}"], 1) for c in PLAIN_COMMANDS),
                                 (["--debug=True"], 1)]:
            with self.subTest(arguments):
                requests = requests_of_the_tool(*arguments)
                self.assertEqual(count or len(requests), len(requests))
                self.assertIn(json.loads(requests[-1])["command"], arguments[0])
                for request in requests:
                    validator("request").validate(json.loads(request))

    def test_the_gated_commands_and_no_others_check_debug_mode(self):
        said = re.search(r"^Before (.*?) the client sends `engine-status`",
                         GUIDE.read_text(), re.M | re.S).group(1)
        checking = [command for command in MODULE_COMMANDS
                    if len(requests_of_the_tool(f"--{command}=valve")) == 2]
        self.assertEqual(sorted(re.findall(r"`(\w+)`", said)), sorted(checking))

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

    def test_each_fault_ends_as_the_table_says(self):
        rows = re.findall(r"^\|[^|]+\| (`[\w-]+`)? *\| ([^|]+) \| ([^|]+) \|$", GUIDE.read_text(),
                          re.M)
        rows = [row for row in rows if row[0] and row[0] != "`--fault`"]
        self.assertGreater(len(rows), 7)
        for fault, plain, gated in rows:
            with self.subTest(fault), support.Engine(f"--fault={fault.strip('`')}"):
                if plain.startswith("the code"):
                    plain = str(ask('{"command":"list"}')["resultCode"])
                expected = [int(re.match(r"\d+", status).group()) for status in (plain, gated)]
                runs = [subprocess.Popen([support.QUORLAN, option], stdout=subprocess.DEVNULL,
                                         stderr=subprocess.DEVNULL)
                        for option in ["--status=valve", "--start=valve"]]
                self.assertEqual(expected, [run.wait(support.PATIENCE) for run in runs])


if __name__ == "__main__":
    support.main()
