"""Presses TAB after vantrel-sim in the real shells.

Usage: simulator_completion_test.py Bash|Zsh|Fish
"""

import pathlib
import re
import shutil
import sys
import tempfile
import unittest

import completion_test
import support

SHELLS = {"Bash": completion_test.Bash, "Zsh": completion_test.Zsh, "Fish": completion_test.Fish}

HELP = support.run([support.VANTREL_SIM, "--help"]).stdout
FAULTS = re.findall(r"^  (\S+) +(?:yes|no) ", HELP, re.M)
COMMANDS = ["debug", "update", "update-status", "engine-status", "list", "start", "stop", "restart",
            "reconfigure", "monitor", "status", "pid"]


class Completion(unittest.TestCase):
    kind = None  # of the shell

    @classmethod
    def setUpClass(cls):
        cls.kind.setUpClass()
        cls.addClassCleanup(cls.kind.doClassCleanups)

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        (self.folder / "inputrc").write_text("set show-all-if-ambiguous on\n"
                                             "set completion-query-items 0\n"
                                             "set enable-bracketed-paste off\n"
                                             "set bell-style none\n")
        (self.folder / "vantrel-sim").symlink_to(support.VANTREL_SIM)
        (self.folder / "quorlan").symlink_to(support.QUORLAN)
        (self.folder / "state.json").touch()
        self.shell = self.kind.make_shell(self.folder)

    def tearDown(self):
        self.shell.kill()
        shutil.rmtree(self.folder, ignore_errors=True)

    def assert_completes(self, rows):
        for typed, expected in rows:
            with self.subTest(typed):
                line, shown = self.shell.completed("vantrel-sim " + typed)
                self.assertEqual("vantrel-sim " + expected, line, shown)

    def test_offers_the_options_of_the_help_screen_and_no_others(self):
        shown = self.shell.offered("vantrel-sim --", "--isolated")
        self.assertEqual(sorted(set(re.findall(r"^(?:-.*)?(--[a-z-]+)", HELP, re.M))),
                         sorted(set(re.findall(r"--[a-z][a-z-]*", shown))))

    def test_completes_options_and_what_they_take(self):
        self.assert_completes([("--isol", "--isolated "), ("--contr", "--control "),
                               ("--vers", "--version "), ("--log-format=j", "--log-format=json "),
                               ("--log-format t", "--log-format text "),
                               ("--state=sta", "--state=state.json "),
                               ("-s sta", "-s state.json "), ("--log sta", "--log state.json ")])

    def test_completes_every_fault(self):
        for option in ["--fault=", "--fault ", "-f "]:
            self.assert_completes([(option + fault, f"{option}{fault} ") for fault in FAULTS])
        self.assert_completes([("--fault=half --fault=garb", "--fault=half --fault=garbage ")])

    def test_offers_the_faults(self):
        shown = self.shell.offered("vantrel-sim --fault=", "wrong-type")
        for fault in FAULTS:
            self.assertIn(fault, shown)

    def test_completes_the_command_that_a_fault_is_for(self):
        self.assert_completes([("--fault=half:sto", "--fault=half:stop "),
                               ("--fault half:eng", "--fault half:engine-status "),
                               ("-f close:mon", "-f close:monitor ")])
        shown = self.shell.offered("vantrel-sim --fault=half:", "reconfigure")
        for command in COMMANDS:
            self.assertIn(command, shown)

    def test_completes_the_command_that_is_run(self):
        self.assert_completes([("-- quorl", "-- quorlan "),
                               ("--isolated --fault=half:start -- quorl",
                                "--isolated --fault=half:start -- quorlan "),
                               ("-- quorlan --eng", "-- quorlan --engine-status "),
                               ("-- quorlan --isol", "-- quorlan --isol")])

    def test_offers_nothing_after_help(self):
        self.assert_completes([("--help --isol", "--help --isol"), ("-v --isol", "-v --isol")])


if __name__ == "__main__":
    Completion.kind = SHELLS[sys.argv.pop()]
    unittest.main(verbosity=2)
