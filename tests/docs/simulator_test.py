"""Checks what the simulator's C++ tests can't well: its log as JSON, and its terminal."""

import datetime
import json
import socket
import subprocess
import threading
import unittest

import jsonschema
import pexpect

import support

SCHEMA = json.loads((support.SOURCE / "docs/schemas/log-entry.json").read_text())
VALIDATOR = jsonschema.Draft202012Validator(SCHEMA)
LIST = b'{"command":"list"}'


def ask(request):
    with socket.create_connection(("127.0.0.1", 7777), timeout=support.PATIENCE) as connection:
        connection.sendall(request)
        connection.shutdown(socket.SHUT_WR)
        return b"".join(iter(lambda: connection.recv(65536), b""))


class JsonLog(unittest.TestCase):
    maxDiff = None

    def entries(self, requests, *options, control=""):
        """What is logged of a run with these requests, and their replies."""
        with subprocess.Popen([support.VANTREL_SIM, "--log-format=json", "--control", *options],
                              stdin=subprocess.PIPE, stderr=subprocess.PIPE) as simulator:
            lines = [simulator.stderr.readline()]
            simulator.stdin.write(control.encode())
            simulator.stdin.close()
            lines += [simulator.stderr.readline() for _ in control.splitlines()]
            # At the same time, as the simulator waits where the pipe is full.
            rest = []
            reader = threading.Thread(target=lambda: rest.extend(simulator.stderr))
            reader.start()
            replies = [ask(request) for request in requests]
            simulator.terminate()
            reader.join()
        return [json.loads(line) for line in lines + rest], replies

    def assert_logged(self, request, options, expected, logged_request=None):
        (_, entry), (reply,) = self.entries([request], *options)
        VALIDATOR.validate(entry)
        del entry["time"]
        self.assertEqual({"connection": 1, "request": logged_request or request.decode(),
                          "reply": reply.decode(), **expected}, entry)

    def test_has_an_entry_of_its_schema_for_everything(self):
        jsonschema.Draft202012Validator.check_schema(SCHEMA)
        begin = datetime.datetime.now(datetime.timezone.utc)
        entries, _ = self.entries([LIST, b"", b"no JSON"], "--fault=half@2",
                                  control="debug on\ndance\n")
        for entry in entries:
            VALIDATOR.validate(entry)
        self.assertEqual(["listening on 127.0.0.1:7777", "control: debug mode is on",
                          'control: not understood: "dance" ("help" lists the commands)'],
                         [entry["message"] for entry in entries[:3]])
        self.assertEqual([1, 2, 3], [entry["connection"] for entry in entries[3:]])
        time = datetime.datetime.fromisoformat(entries[0]["time"].replace("Z", "+00:00"))
        self.assertLess(abs(time - begin), datetime.timedelta(hours=1))

    def test_has_request_and_reply_in_full(self):
        self.assert_logged(LIST, [], {"fault": None, "carriedOut": True})
        self.assert_logged(b'{"command":"' + b"x" * 60000 + b'"}', [],
                           {"fault": None, "carriedOut": False})

    def test_is_whole_for_a_reply_that_no_pipe_can_hold(self):
        (_, entry), (reply,) = self.entries([LIST], "--fault=huge")
        self.assertGreater(len(reply), 2**22)
        self.assertTrue(reply.decode() == entry["reply"])

    def test_says_the_fault_and_whether_the_command_was_carried_out(self):
        for fault, carried_out in [("half", True), ("garbage", True), ("error-code", False),
                                   ("refused-status", True)]:
            with self.subTest(fault):
                self.assert_logged(LIST, [f"--fault={fault}"],
                                   {"fault": fault, "carriedOut": carried_out})
        self.assert_logged(LIST, ["--fault=close"],
                           {"request": "", "fault": "close", "carriedOut": False})
        self.assert_logged(LIST, ["--fault=close:list"], {"fault": "close", "carriedOut": False})
        self.assert_logged(LIST, ["--fault=half:pid"], {"fault": None, "carriedOut": True})
        self.assert_logged(b'{"command":"engine-status"}', ["--fault=refused-status"],
                           {"fault": "refused-status", "carriedOut": False})

    def test_is_json_whatever_the_request_is(self):
        for request, logged in [(b'{"\xff\xc3\xa4\xe2\x82":1}', '{"\ufffd\u00e4\ufffd\ufffd":1}'),
                                (b'{"\x00\x01\x1b\x7f\n":1}', '{"\x00\x01\x1b\x7f\n":1}')]:
            with self.subTest(request):
                self.assert_logged(request, [], {"fault": None, "carriedOut": False}, logged)


class Terminal(unittest.TestCase):
    def test_sends_an_interrupt_to_the_command_once(self):
        script = "trap 'echo interrupted; n=$((n + 1))' INT; n=0; echo ready; " \
                 "while [ $n -eq 0 ]; do sleep 0.1; done; sleep 1; exit $n"
        simulator = pexpect.spawn(support.VANTREL_SIM, ["--", "sh", "-c", script],
                                  timeout=support.PATIENCE)
        simulator.expect("ready")
        simulator.sendintr()
        simulator.expect(pexpect.EOF)
        simulator.close()
        self.assertEqual(1, simulator.exitstatus, simulator.before)


if __name__ == "__main__":
    support.main()
