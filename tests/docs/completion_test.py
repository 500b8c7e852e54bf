"""Presses TAB in the real shells, in a pseudo-terminal, with engines of every kind.

Usage: completion_test.py Bash|Zsh|Fish
"""

import contextlib
import os
import pathlib
import re
import shutil
import signal
import tempfile
import time
import unittest

import pexpect
import pyte

import support

TAB = "\t"
CLEAR = "\x05\x15\x0c"  # from the end of the line back, then the screen
LEFT = "\x02"
PROMPT = "? "
# Typed after a TAB, it shows up once the shell is done with completing.
DONE = "~"

# A table as the tool prints it, with names that it would refuse as an argument, and with names and
# states that run into the next column.
TABLE_OF_ALL_KINDS = "".join(f"{name:25}{state:15}{'1.0':15}\\n" for name, state in [
    ("SERVICE NAME", "STATE"), ("disk", "running"), ("not-a-name", "running"),
    ("two words", "running"), ("wide" + " " * 9 + "gap", "running"),
    ("seventeenletters1", "running"), ("x" * 25, "running"), ("y" * 40, "running"),
    ("$(touch executed)", "running"), ("`touch executed`", "running"),
    ("fifteen", "f" * 15), ("thirty", "t" * 30), ("stateless", ""),
    ("MODULE NAME", "STATE"), ("disk", "running"), ("sixteenletters16", "running")])


class Shell:
    """An interactive shell whose screen can be read."""

    def __init__(self, command, folder):
        environment = {"PATH": f"{folder}:/usr/bin:/bin", "HOME": str(folder), "TERM": "xterm",
                       "XDG_DATA_DIRS": f"{support.INSTALLED}/share:/usr/share",
                       "INPUTRC": str(folder / "inputrc"), "LC_ALL": "C.UTF-8"}
        self.screen = pyte.Screen(100, 50)
        self.stream = pyte.ByteStream(self.screen)
        self.process = pexpect.spawn(command[0], command[1:], env=environment, cwd=str(folder),
                                     dimensions=(50, 100), timeout=support.PATIENCE)
        self.process.delaybeforesend = None

    def row(self, number):
        # As in Screen.display, which looks at all cells of the screen and takes its time for it.
        cells = self.screen.buffer[number]
        return "".join(cells[x].data for x in range(max(cells, default=-1) + 1)).rstrip()

    def shown(self):
        return "\n".join(map(self.row, range(self.screen.lines))).strip()

    def line(self):
        return self.row(self.screen.cursor.y)

    def await_screen(self, condition, what):
        end = time.monotonic() + support.PATIENCE
        while not condition():
            if time.monotonic() > end:
                raise AssertionError(f"waited in vain for {what} on the screen:\n{self.shown()}")
            try:
                self.stream.feed(self.process.read_nonblocking(65536, timeout=1))
            except pexpect.TIMEOUT:
                pass

    def start(self, *setup):
        for command in setup:
            self.process.send(command + "\r")
        self.process.send("echo rea''dy\r")
        self.await_screen(lambda: "\nready\n" in self.shown() and self.line() == PROMPT.strip(),
                          "a prompt")

    def clear(self):
        self.process.send(CLEAR)
        self.await_screen(lambda: self.shown() == PROMPT.strip(), "an empty prompt")

    def completed(self, typed, after=""):
        """Presses TAB between what was typed and what is after it. Returns the command line then,
        and all that the screen shows."""
        self.clear()
        self.process.send(typed + after + LEFT * len(after) + TAB + DONE)
        self.await_screen(lambda: DONE in self.line() and
                          self.line().endswith(after.strip() or DONE), "the end of completion")
        return self.line()[len(PROMPT):].removesuffix(DONE), self.shown()

    def offered(self, typed, last):
        """What the screen shows after TAB, from when it shows last."""
        self.clear()
        self.process.send(typed + TAB)
        self.await_screen(lambda: last in self.shown(), last)
        return self.shown()

    def kill(self):
        os.kill(self.process.pid, signal.SIGKILL)
        self.process.wait()


class Completion:
    """The tests, the same for every shell."""

    # What the shell says when there are no names to offer.
    NO_NAMES = ""

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        (self.folder / "inputrc").write_text("set show-all-if-ambiguous on\n"
                                             "set completion-query-items 0\n"
                                             "set enable-bracketed-paste off\n"
                                             "set bell-style none\n")
        (self.folder / "quorlan").symlink_to(support.QUORLAN)
        self.shell = self.make_shell(self.folder)

    def tearDown(self):
        self.shell.kill()
        shutil.rmtree(self.folder, ignore_errors=True)

    def put_in_place_of_the_tool(self, script):
        (self.folder / "quorlan").unlink()
        (self.folder / "quorlan").write_text("#!/bin/sh\n" + script)
        (self.folder / "quorlan").chmod(0o755)

    def assert_completes(self, typed, expected):
        # A machine too busy to list within the second that a completion allows gets another try.
        for _ in range(5):
            line, shown = self.shell.completed(typed)
            if line == expected:
                return
        self.fail(f"{typed!r} became {line!r}, not {expected!r}; the screen:\n{shown}")

    def assert_left_alone(self, typed, message=""):
        line, shown = self.shell.completed(typed)
        expected = f"{PROMPT}{typed}{DONE}\n{message}".strip()
        self.assertEqual((typed.strip(), expected), (line.strip(), shown))

    def test_offers_the_options_of_the_help_screen_and_no_others(self):
        shown = self.shell.offered("quorlan --", "--monitor")
        self.assertEqual(sorted(self.help_screen_options()),
                         sorted(set(re.findall(r"--[a-z][a-z-]*", shown))))

    def test_completes_every_option(self):
        for option in self.help_screen_options():
            with self.subTest(option):
                line, shown = self.shell.completed(f"quorlan {option}")
                if option == "--update":  # also the beginning of another
                    self.assertEqual("quorlan --update", line[:16], shown)
                else:
                    self.assertIn(line, [f"quorlan {option} ", f"quorlan {option}="], shown)

    @staticmethod
    def help_screen_options():
        return re.findall(r"--[a-z-]+", support.run([support.QUORLAN, "--help"]).stdout)

    def test_completes_names_in_every_way_an_argument_can_be_written(self):
        with support.Engine():
            for typed in ["--start=va", "--start va", "-s va", "-sva", "--stop=va", "-p va",
                          "--restart=va", "-r va", "--reconfigure=va", "-cva", "--status=va",
                          "-u va", "--pid=va", "-i va", "--monitor=va", "-m va", "--mon va",
                          "--MONITOR va", "--colors --start=va", ">log --start va"]:
                with self.subTest(typed):
                    self.assert_completes("quorlan " + typed, f"quorlan {typed}lve ")

    def test_completes_true_and_false(self):
        for typed in ["--debug=t", "--debug t", "-d t", "-dt", "--deb t"]:
            with self.subTest(typed):
                self.assert_completes("quorlan " + typed, f"quorlan {typed}rue ")
        self.assert_completes("quorlan --debug=f", "quorlan --debug=false ")

    def test_offers_the_services_and_modules(self):
        with support.Engine():
            shown = self.shell.offered("quorlan --start=", "valve")
        for name in ["storage", "network", "pump1", "pump2", "heater"]:
            self.assertIn(name, shown)

    def test_offers_every_name_that_the_tool_takes_once_and_executes_none(self):
        self.put_in_place_of_the_tool(f"printf '{TABLE_OF_ALL_KINDS}'\n")
        shown = self.shell.offered("quorlan --start=", "sixteenletters16")
        for name in ["disk", "fifteen", "thirty", "stateless"]:
            self.assertEqual(1, shown.count(name), shown)
        for part in ["NAME", "not", "two", "wide", "seventeen", "xxx", "yyy", "touch"]:
            self.assertNotIn(part, shown)
        self.assert_completes("quorlan --start=di", "quorlan --start=disk ")
        self.assertFalse((self.folder / "executed").exists())

    def test_completes_files_after_a_redirection_only(self):
        (self.folder / "output.txt").touch()
        for typed in ["--list >outp", "--list > outp", "--list >>outp", "--list 2>outp",
                      "--list 2> outp", "<outp", "--help > outp"]:
            with self.subTest(typed):
                self.assert_completes("quorlan " + typed, f"quorlan {typed}ut.txt ")
        self.assert_left_alone("quorlan --list outp")

    def test_completes_in_the_middle_of_a_line(self):
        for typed, word in [("--eng", "--engine-status"), ("--debug=t", "--debug=true"),
                            ("-d f", "-d false")]:
            with self.subTest(typed):
                line, shown = self.shell.completed(f"quorlan {typed}", after=" --colors")
                # The shells differ in the spaces around the cursor.
                self.assertEqual(f"quorlan {word} --colors".split(),
                                 line.replace(DONE, " ").split(), shown)

    def test_offers_no_second_command(self):
        for typed in ["--list ", "-l ", "--start=pump1 ", "--start:pump1 ", "-s pump1 ",
                      "-spump1 ", "--lis ", "--LIST ", "--mon pump1 ", "--Mon=pump1 "]:
            with self.subTest(typed):
                self.assert_left_alone(f"quorlan {typed}--sto")
                self.assert_completes(f"quorlan {typed}--col", f"quorlan {typed}--colors ")

    def test_offers_a_command_after_what_is_none(self):
        for typed in ["--colors ", "--COL ", "--update ", "--update-status "]:
            with self.subTest(typed):
                line, shown = self.shell.completed(f"quorlan {typed}--eng")
                self.assertEqual(f"quorlan {typed}--engine-status ", line, shown)

    def test_offers_no_option_for_a_value(self):
        for typed in ["--list=--sto", "--colors=--sto", "--nonsense=--sto", "--debug=--sto"]:
            with self.subTest(typed):
                self.assert_left_alone("quorlan " + typed)

    def test_offers_nothing_where_the_tool_ignores_the_rest(self):
        for end in ["--help", "--hel", "--HELP", "-h", "--version", "-v", "--"]:
            for typed in ["--col", "--sto", "--debug=t", "--deb t"]:
                with self.subTest(end=end, typed=typed):
                    self.assert_left_alone(f"quorlan {end} {typed}")

    def test_offers_no_name_without_a_list(self):
        for fault in ["silent", "garbage", "error-code", None]:
            engine = support.Engine(f"--fault={fault}") if fault else contextlib.nullcontext()
            with self.subTest(fault), engine:
                self.assert_left_alone("quorlan --start=va", self.NO_NAMES)
                self.assert_completes("quorlan --eng", "quorlan --engine-status ")

    def test_takes_no_name_from_a_list_that_failed_or_never_ends(self):
        for end in ["exit 76", "exec sleep infinity"]:
            with self.subTest(end):
                self.put_in_place_of_the_tool(f"printf '{TABLE_OF_ALL_KINDS}'\n{end}\n")
                self.assert_left_alone("quorlan --start=di", self.NO_NAMES)


class Bash(Completion, unittest.TestCase):
    @staticmethod
    def make_shell(folder):
        shell = Shell(["bash", "--norc", "--noprofile", "-i"], folder)
        shell.start(f"PS1='{PROMPT}'", "source /usr/share/bash-completion/bash_completion")
        return shell

    def test_completes_the_part_of_a_word_before_the_cursor(self):
        line, shown = self.shell.completed("quorlan --mon", after="valve")
        self.assertEqual(f"quorlan --monitor={DONE}valve", line, shown)

    def test_completes_where_the_user_has_words_broken_at_spaces_only(self):
        self.shell.start("COMP_WORDBREAKS=${COMP_WORDBREAKS//[:=]}")
        for typed, expected in [("--debug=t", "--debug=true "), ("--deb=t", "--deb=true "),
                                ("--debug t", "--debug true "), ("--sto", "--stop="),
                                ("--start=pump1 --sto", "--start=pump1 --sto"),
                                ("--start:pump1 --sto", "--start:pump1 --sto"),
                                ("--start=pump1 --col", "--start=pump1 --colors ")]:
            with self.subTest(typed):
                line, shown = self.shell.completed(f"quorlan {typed}")
                self.assertEqual(f"quorlan {expected}", line, shown)

    def test_goes_through_the_newer_function_of_bash_completion_where_there_is_one(self):
        # As from 2.12 on: another name, and another variable for what was split at "=".
        (self.folder / "newer").write_text(
            'eval "older() $(declare -f _init_completion | tail -n +2)"\n'
            "unset -f _init_completion\n"
            "_comp_initialize() { local split; older -s && was_split=${split/false/}; }\n")
        self.shell.start("type _comp_initialize >/dev/null 2>&1 || source ./newer")
        for typed, expected in [("--debug=t", "--debug=true "), ("--debug t", "--debug true "),
                                ("--list --col", "--list --colors "),
                                ("--help --col", "--help --col")]:
            with self.subTest(typed):
                line, shown = self.shell.completed(f"quorlan {typed}")
                self.assertEqual(f"quorlan {expected}", line, shown)


class Zsh(Completion, unittest.TestCase):
    NO_NAMES = "no names from the engine"

    @classmethod
    def setUpClass(cls):
        # Looking through all the functions of zsh takes it longer than a test.
        cls.dump = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.dump.cleanup)

    @classmethod
    def make_shell(cls, folder):
        shell = Shell(["zsh", "-f", "-i"], folder)
        shell.start(f"PS1='{PROMPT}' LISTMAX=1000", "unsetopt zle_bracketed_paste beep",
                    f"fpath=({support.INSTALLED}/share/zsh/site-functions $fpath)",
                    f"autoload -Uz compinit; compinit -u -d {cls.dump.name}/zcompdump")
        return shell

    def test_takes_the_names_from_the_command_of_the_users_style(self):
        (self.folder / "table").write_text(f"{'disk':25}{'running':15}{'1.0':15}\n")
        self.shell.start("zstyle ':completion:*:modules' command cat table")
        self.assert_completes("quorlan --start=di", "quorlan --start=disk ")

    def test_says_nothing_where_the_engine_answers_with_other_names(self):
        self.shell.start("zstyle ':completion:*:modules' command echo")
        self.assert_left_alone("quorlan --start=di")


class Fish(Completion, unittest.TestCase):
    @staticmethod
    def make_shell(folder):
        # Its absence would make fish read every manual page of the machine.
        (folder / ".local/share/fish/generated_completions").mkdir(parents=True)
        shell = Shell(["fish", "--private", "-i"], folder)
        shell.start(f"function fish_prompt; echo -n '{PROMPT}'; end; set -g fish_greeting",
                    "set -g fish_autosuggestion_enabled 0")
        return shell


if __name__ == "__main__":
    support.main()
