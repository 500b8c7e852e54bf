"""Presses TAB in the real shells, in a pseudo-terminal, beside engines of every kind.

Usage: completion_test.py Bash|Zsh|Fish
"""

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
CLEAR = "\x15\x0c"  # the line, then the screen
PROMPT = "? "
# Typed after a TAB, it shows up once the shell is done with completing.
DONE = "~"

# A table as the tool prints it, with names that it would refuse as an argument; the last two run
# into the next column.
TABLE_OF_ALL_KINDS = "".join(f"{name:25}{'running':15}{'1.0':15}\\n" for name in [
    "SERVICE NAME", "disk", "not-a-name", "two words", "seventeenletters1", "x" * 25, "y" * 40,
    "sixteenletters16"])


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

    def completed(self, typed):
        """The command line after TAB, and all that the screen shows."""
        self.clear()
        self.process.send(typed + TAB + DONE)
        self.await_screen(lambda: self.line().endswith(DONE), "the end of completion")
        return self.line()[len(PROMPT):-len(DONE)], self.shown()

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

    def assert_left_alone(self, typed):
        line, shown = self.shell.completed(typed)
        self.assertEqual((typed.strip(), PROMPT + typed + DONE), (line.strip(), shown))

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
                          "--colors --start=va"]:
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

    def test_offers_only_names_that_the_tool_takes(self):
        self.put_in_place_of_the_tool(f"printf '{TABLE_OF_ALL_KINDS}'\n")
        shown = self.shell.offered("quorlan --start=", "sixteenletters16")
        self.assertIn("disk", shown)
        for part in ["SERVICE", "not", "two", "seventeen", "xxx", "yyy"]:
            self.assertNotIn(part, shown)

    def test_offers_no_second_command(self):
        for typed in ["--list ", "-l ", "--start=pump1 ", "-s pump1 "]:
            with self.subTest(typed):
                self.assert_left_alone(f"quorlan {typed}--sto")
                self.assert_completes(f"quorlan {typed}--col", f"quorlan {typed}--colors ")

    def test_stays_silent_without_an_engine(self):
        self.assert_offers_no_name_but_the_options()

    def test_stays_silent_beside_an_engine_that_is_silent(self):
        with support.Engine("--fault=silent"):
            self.assert_offers_no_name_but_the_options()

    def test_stays_silent_beside_an_engine_that_sends_garbage(self):
        with support.Engine("--fault=garbage"):
            self.assert_offers_no_name_but_the_options()

    def test_stays_silent_beside_an_engine_that_refuses(self):
        with support.Engine("--fault=error-code"):
            self.assert_offers_no_name_but_the_options()

    def test_takes_no_name_from_a_list_that_failed(self):
        self.put_in_place_of_the_tool(f"printf '{TABLE_OF_ALL_KINDS}'\nexit 76\n")
        self.assert_left_alone("quorlan --start=di")

    def test_comes_back_from_a_tool_that_never_ends(self):
        self.put_in_place_of_the_tool("exec sleep infinity\n")
        self.assert_left_alone("quorlan --start=di")

    def assert_offers_no_name_but_the_options(self):
        self.assert_left_alone("quorlan --start=va")
        self.assert_completes("quorlan --eng", "quorlan --engine-status ")

    def test_is_installed_where_the_shell_looks(self):
        for option, file in [("-DCMAKE_INSTALL_PREFIX=/usr", "usr/share/" + self.FILE),
                             ("-DCMAKE_INSTALL_DATADIR=/data", "data/" + self.FILE)]:
            with self.subTest(option):
                self.assertIn(file, self.installed_with(option))

    def installed_with(self, option):
        """What a build that is configured with the option installs of the completions."""
        source = self.folder / "source"
        source.mkdir(exist_ok=True)
        (source / "CMakeLists.txt").write_text(
            "cmake_minimum_required(VERSION 3.20)\n"
            "project(trial LANGUAGES NONE)\n"
            "set(CMAKE_INSTALL_LIBDIR lib)\n"
            "include(GNUInstallDirs)\n"
            f"add_subdirectory({support.SOURCE}/completions completions)\n")
        with tempfile.TemporaryDirectory() as build, tempfile.TemporaryDirectory() as root:
            for command in [["-G", "Ninja", "-S", source, "-B", build, option],
                            ["--install", build]]:
                done = support.run(["cmake", *command], env={**os.environ, "DESTDIR": root})
                self.assertEqual(0, done.returncode, done.stdout + done.stderr)
            return [str(path.relative_to(root)) for path in pathlib.Path(root).rglob("*")
                    if path.is_file()]


class Bash(Completion, unittest.TestCase):
    FILE = "bash-completion/completions/quorlan"

    @staticmethod
    def make_shell(folder):
        shell = Shell(["bash", "--norc", "--noprofile", "-i"], folder)
        shell.start(f"PS1='{PROMPT}'", "source /usr/share/bash-completion/bash_completion")
        return shell


class Zsh(Completion, unittest.TestCase):
    FILE = "zsh/site-functions/_quorlan"

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

    def test_is_installed_where_the_packager_wants_it(self):
        folder = "share/zsh/vendor-completions"
        self.assertIn(f"usr/local/{folder}/_quorlan",
                      self.installed_with(f"-DQUORLAN_ZSH_COMPLETIONS_DIR={folder}"))


class Fish(Completion, unittest.TestCase):
    FILE = "fish/vendor_completions.d/quorlan.fish"

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
