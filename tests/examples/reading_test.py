"""The recipes that only ask: module-state, module-metrics, check_module, engine-answers and
quorlan-retry.
"""

import socket
import threading
import time
import unittest

import recipes
from recipes import BUSYBOX, FakeTable, RecipeTest
from support import Engine


class DrippingEngine:
    """Answers every request with one space a second, and never comes to an end."""

    def __enter__(self):
        self.listener = socket.create_server(("127.0.0.1", 7777))
        threading.Thread(target=self.accept, daemon=True).start()

    def __exit__(self, *_):
        self.listener.shutdown(socket.SHUT_RDWR)
        self.listener.close()

    def accept(self):
        try:
            while True:
                threading.Thread(target=self.drip, args=[self.listener.accept()[0]],
                                 daemon=True).start()
        except OSError:
            pass  # closed: the test is over

    @staticmethod
    def drip(connection):
        with connection:
            try:
                while True:
                    connection.sendall(b" ")
                    time.sleep(1)
            except OSError:
                pass  # the client has given up


class ModuleState(RecipeTest):
    def test_of_a_module_or_service(self):
        with self.engine(services={"storage": "running"}, pump="running", valve="stopped"):
            for name, state in [("pump", "running"), ("valve", "stopped"), ("storage", "running")]:
                self.assert_state(state, name)

    def test_of_all(self):
        with self.engine(services={"storage": "running"}, pump="failed", valve="stopped"):
            self.assertEqual("service storage running\nmodule pump failed\nmodule valve stopped\n",
                             self.assert_ends(0, "module-state"))

    def test_of_none(self):
        with self.engine():
            self.assertEqual("", self.assert_ends(0, "module-state"))

    def test_of_an_unknown_module(self):
        with self.engine(pump1="running"):
            for name in ["pump", "1", "pump11", "None", "NAME", "STATE"]:
                self.assertEqual(f"module-state: the engine doesn't know {name}\n",
                                 self.assert_ends(1, "module-state", name))

    def test_names_are_text(self):
        with self.engine(**{"10": "running", "1e1": "stopped", "010": "failed"}):
            for name, state in [("10", "running"), ("1e1", "stopped"), ("010", "failed")]:
                self.assert_state(state, name)

    def test_when_it_cannot_be_asked(self):
        self.assertIn("Failed to connect", self.assert_ends(69, "module-state", "pump"))
        for fault, status in [("half", 76), ("error-code", 6), ("close", 76)]:
            with self.subTest(fault), self.engine(fault, pump="running"):
                self.assert_ends(status, "module-state", "pump")

    def test_of_modules_whose_names_are_control_characters(self):
        with Engine("--fault=control-characters"):
            self.assertEqual("", self.assert_ends(0, "module-state"))

    def test_wrong_command_lines(self):
        for arguments in [[""], ["a-b"], ["a b"], ["a\\n"], ["*"], ["a", "b"]]:
            with self.subTest(arguments):
                self.assertEqual("usage: module-state [NAME]\n",
                                 self.assert_ends(78, "module-state", *arguments))


class Tables(FakeTable):
    """How the tables are read, in the one place that does."""

    SERVICES = ("SERVICE NAME", "STATE", "VERSION")
    MODULES = ("MODULE NAME", "STATE", "VERSION")

    def read(self, *rows):
        self.put_table(*rows)
        return self.assert_ends(0, "module-state")

    def test_state_as_wide_as_its_column_or_wider(self):
        rows = [("a", "fourteen-chars", "1.0"), ("b", "fifteen--chars-", "1.0"),
                ("c", "sixteen---chars--", "yes            1.0"), ("d", "x" * 40, "1.0")]
        self.assertEqual("service a fourteen-chars\nservice b fifteen--chars-\n"
                         "service c sixteen---chars\nservice d " + "x" * 15 + "\n",
                         self.read(self.SERVICES, *rows))

    def test_state_with_spaces_or_none(self):
        self.assertEqual("service a not  yet\nservice b \n",
                         self.read(self.SERVICES, ("a", "not  yet", "1"), ("b", "", "1")))

    def test_state_that_is_not_printable_ascii(self):
        # Widths are bytes: the two of "ü" make the column one character narrower.
        rows = ["a" + " " * 24 + "l\xfcft" + " " * 10 + "1.0", ("b", "\x1b[31mred\t\\n", "1")]
        self.assertEqual("service a l??ft\nservice b ?[31mred?\\n\n",
                         self.read(self.SERVICES, *rows))

    def test_names_that_quorlan_does_not_take_are_left_out(self):
        names = ["a-b", "a b", "\x1b[1m", "seventeenletters1", "x" * 25, "x" * 30, ""]
        self.assertEqual("service sixteenletters12 running\n",
                         self.read(self.SERVICES, *((name, "running", "1") for name in names),
                                   ("sixteenletters12", "running", "1")))

    def test_module_comes_before_a_service_of_the_same_name(self):
        rows = [self.SERVICES, ("a", "stopped", "1"), ("b", "failed", "1"), "", self.MODULES,
                ("a", "running", "1")]
        self.assertEqual("service a stopped\nservice b failed\nmodule a running\n",
                         self.read(*rows))
        self.assert_state("running", "a")
        self.assert_state("failed", "b")

    def test_first_of_two_modules_of_the_same_name_counts(self):
        self.assertEqual("module a running\n", self.read(self.MODULES, ("a", "running", "1"),
                                                         ("a", "stopped", "1")))
        self.assert_state("running", "a")


class Metrics(RecipeTest):
    def setUp(self):
        super().setUp()
        self.target = self.folder / "quorlan.prom"

    def samples(self):
        return [line for line in self.target.read_text().splitlines() if line[0] != "#"]

    def test_states(self):
        with self.engine(services={"storage": "running"}, pump='a "b\\c'):
            self.assertEqual("", self.assert_ends(0, "module-metrics", str(self.target)))
        self.assertEqual([
            "quorlan_up 1", "quorlan_exit_status 0",
            'quorlan_module_state{kind="service",name="storage",state="running"} 1',
            r'quorlan_module_state{kind="module",name="pump",state="a \"b\\c"} 1'], self.samples())

    def test_engine_that_cannot_be_asked(self):
        self.assertEqual("", self.assert_ends(0, "module-metrics", str(self.target)))
        self.assertEqual(["quorlan_up 0", "quorlan_exit_status 69"], self.samples())
        with self.engine("garbage:list", pump="running"):
            self.assert_ends(0, "module-metrics", str(self.target))
        self.assertEqual(["quorlan_up 0", "quorlan_exit_status 76"], self.samples())

    def test_file_is_replaced_in_one_step(self):
        self.target.write_text("old\n")
        with self.target.open() as old, self.engine(pump="running"):
            self.assert_ends(0, "module-metrics", str(self.target))
            self.assertEqual("old\n", old.read())
        self.assertEqual(0o644, self.target.stat().st_mode & 0o777)
        self.assertEqual([self.target], list(self.folder.glob("quorlan.prom*")))

    @unittest.skipIf(BUSYBOX, "its shell takes its own mv")
    def test_file_that_cannot_be_replaced(self):
        self.put("mv", "#!/bin/sh\nexit 1\n")
        self.assert_ends(1, "module-metrics", str(self.target))
        self.assertEqual([], list(self.folder.glob("quorlan.prom*")))

    def test_file_that_cannot_be_written(self):
        status, output = self.run_recipe("module-metrics", str(self.folder / "none/quorlan.prom"))
        self.assertNotIn(status, [0, 78], output)
        self.assertIn("usage: ", self.assert_ends(78, "module-metrics"))


class Checks(RecipeTest):
    def test_check_module(self):
        with self.engine(a="running", b="stopped", c="starting"):
            self.assertEqual("OK - a is running\n", self.assert_ends(0, "check_module", "a"))
            self.assertEqual("CRITICAL - b is stopped\n", self.assert_ends(2, "check_module", "b"))
            self.assertEqual("WARNING - c is starting\n", self.assert_ends(1, "check_module", "c"))
            self.assertEqual("UNKNOWN - the engine doesn't know d\n",
                             self.assert_ends(3, "check_module", "d"))
            self.assertIn("usage", self.assert_ends(3, "check_module"))
        self.assertEqual("CRITICAL - the engine is not there\n",
                         self.assert_ends(2, "check_module", "a"))
        with self.engine("garbage", a="running"):
            self.assertEqual("UNKNOWN - could not be asked, status 76\n",
                             self.assert_ends(3, "check_module", "a"))

    def test_engine_answers(self):
        with self.engine():
            self.assertEqual("", self.assert_ends(0, "engine-answers"))
        self.assertIn("nothing there: Failed", self.assert_ends(69, "engine-answers"))
        for fault, status, text in [("garbage", 76, "no usable reply: Failed"),
                                    ("error-code", 76, "no usable reply"),
                                    ("refused-status", 6, "reports failure 6")]:
            with self.subTest(fault), self.engine(fault):
                self.assertIn(text, self.assert_ends(status, "engine-answers"))

    def test_quorlan_retry(self):
        with self.engine(pump="running"):
            self.assertIn("pump", self.assert_ends(0, "quorlan-retry", "--list"))
        output = self.assert_ends(69, "quorlan-retry", "--list")
        self.assertEqual(3, output.count("Failed to connect"))
        with self.engine("garbage"):
            output = self.assert_ends(76, "quorlan-retry", "--update")
        self.assertEqual(1, output.count("Failed to parse"))
        self.assertIn("wrong command line", self.assert_ends(78, "quorlan-retry", "--st=pump"))

    def test_quorlan_retry_finds_an_engine_that_comes_later(self):
        self.put_before_quorlan('[ ! -e "$HOME/tried" ] || '
                                'until [ -e "$HOME/listens" ]; do sleep 0.1; done\n'
                                ': >"$HOME/tried"')
        retry = self.spawn("quorlan-retry", "--list")
        self.assertIn("Failed to connect", retry.stdout.readline())
        with self.engine():
            (self.folder / "listens").touch()
            output = self.finish(retry)
        self.assertEqual(0, retry.returncode, output)


class EndlessReply(RecipeTest):
    COMMANDS = {"engine-answers": 124, "module-state": 124, "start-module pump": 124,
                "restart-failed": 124, "cron-restart-failed": 124, "check_module pump": 3,
                "with-debug-mode 1 true": 124, "quorlan-retry --list": 124,
                "module-settles pump 0": 124, "wait-for-module pump 0": 124}

    def test_replies_without_an_end_are_cut_off(self):
        with DrippingEngine():
            runs = {command: self.spawn(*command.split()) for command in self.COMMANDS}
            for command, status in self.COMMANDS.items():
                with self.subTest(command):
                    output = self.finish(runs[command])
                    self.assertEqual(status, runs[command].returncode, output)


class NoReply(RecipeTest):
    def check(self, fault, status, text):
        with Engine(f"--fault={fault}"):
            runs = {recipe: self.spawn(recipe) for recipe in ["engine-answers", "module-state"]}
            for recipe, run in runs.items():
                self.assertIn(text, self.finish(run))
                self.assertEqual(status, run.returncode, recipe)

    def test_silent_engine(self):
        self.check("silent", 76, "Failed to parse")

    def test_engine_that_accepts_nobody(self):
        self.check("no-accept", 124, "no complete reply within 10 seconds")


if __name__ == "__main__":
    recipes.main()
