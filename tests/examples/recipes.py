"""What the tests of the recipes share: copies of the recipes to run, and an engine to run them against.

CTest says in RECIPES_SHELL which shell and tools they get: "debian", or "busybox" for BusyBox's alone.
"""

import json
import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import threading
import unittest

import support

RECIPES = support.INSTALLED / "share/doc/quorlan/examples"
BUSYBOX = os.environ["RECIPES_SHELL"] == "busybox"


class Engine:
    """A simulator that answers while the with-block runs. In a network of its own it stands for a
    device of its own."""

    def __init__(self, *arguments, own_network=False):
        self.arguments = arguments
        self.own_network = own_network
        self.log = []
        self.ended = False
        self.logged = threading.Condition()

    def __enter__(self):
        launcher = [os.environ["IN_PRIVATE_NETWORK"]] if self.own_network else []
        self.process = subprocess.Popen([*launcher, support.VANTREL_SIM, *self.arguments],
                                        stdin=subprocess.PIPE, stdout=subprocess.DEVNULL,
                                        stderr=subprocess.PIPE, text=True)
        self.reader = threading.Thread(target=self._read, daemon=True)
        self.reader.start()
        try:
            self.await_log("listening")
        except AssertionError:
            self.__exit__()
            raise
        return self

    def _read(self):
        for line in self.process.stderr:
            with self.logged:
                self.log.append(line)
                self.logged.notify_all()
        with self.logged:
            self.ended = True
            self.logged.notify_all()

    def await_log(self, text, count=1):
        """Returns once so many lines of the log have had the text."""
        with self.logged:
            def found():
                return sum(text in line for line in self.log) >= count
            self.logged.wait_for(lambda: found() or self.ended, support.PATIENCE)
            if not found():
                raise AssertionError(f"fewer than {count} of {text!r} in {self.log}")

    def await_request(self, command, count=1):
        self.await_log(f'"command":"{command}"', count)

    def requests(self, command):
        """How many there were so far."""
        with self.logged:
            return sum(f'"command":"{command}"' in line for line in self.log)

    def control(self, line):
        with self.logged:
            seen = sum("control: " in entry for entry in self.log)
        self.process.stdin.write(line + "\n")
        self.process.stdin.flush()
        self.await_log("control: ", seen + 1)

    def __exit__(self, *_):
        self.process.terminate()
        self.process.wait(support.PATIENCE)
        self.reader.join(support.PATIENCE)
        self.process.stdin.close()
        self.process.stderr.close()


class RecipeTest(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)
        self.programs = self.folder / "bin"
        self.programs.mkdir()
        tools = "/usr/bin:/bin"
        if BUSYBOX:
            tools = f"{self.folder}/busybox"
            self.install_busybox(pathlib.Path(tools))
        for recipe in RECIPES.iterdir():
            self.put(recipe.name, self.adapt(recipe.read_text()))
        (self.programs / "quorlan").symlink_to(support.QUORLAN)
        # The locks of this test's own engine, not of the machine's.
        self.run_folder = self.folder / "run"
        self.environment = {"PATH": f"{self.programs}:{tools}", "LC_ALL": "C.UTF-8",
                            "HOME": str(self.folder)}

    @staticmethod
    def install_busybox(folder):
        folder.mkdir()
        for applet in support.run(["busybox", "--list"]).stdout.split():
            (folder / applet).symlink_to(shutil.which("busybox"))

    def adapt(self, text):
        """A recipe as it is run here: with folders of its own, and looking more often."""
        if BUSYBOX:
            text = re.sub("^#!/bin/sh", f"#!{self.folder}/busybox/sh", text)
        text = re.sub("^folder=/run/quorlan$", 'folder="$HOME/run"', text, flags=re.M)
        return re.sub(r"^( +)sleep 1$", r"\1sleep 0.2", text, flags=re.M)

    def put(self, name, text):
        (self.programs / name).write_text(text)
        (self.programs / name).chmod(0o755)

    def put_before_quorlan(self, script):
        """Lets a script see the arguments first; what it doesn't end goes on to the real one."""
        (self.programs / "quorlan").unlink(missing_ok=True)
        self.put("quorlan", f'#!/bin/sh\n{script}\nexec {support.QUORLAN} "$@"\n')

    def engine(self, *faults, debug=False, services=None, control=False, own_network=False,
               **modules):
        """An engine with these modules: name="state" or name={"state": ..., "start": ...}."""
        def entries(named):
            return [{"name": name, "version": "1.0",
                     **(entry if isinstance(entry, dict) else {"state": entry})}
                    for name, entry in named.items()]
        state = {"engine": {"state": "running", "version": "1.0", "safeModeEnabled": False,
                            "debugModeEnabled": debug},
                 "services": entries(services or {}), "modules": entries(modules)}
        file, path = tempfile.mkstemp(dir=self.folder, suffix=".json")
        with os.fdopen(file, "w") as stream:
            json.dump(state, stream)
        return Engine(f"--state={path}", *(f"--fault={fault}" for fault in faults),
                      *(["--control"] if control else []), own_network=own_network)

    def spawn(self, *command, **keywords):
        return subprocess.Popen(command, env=self.environment, cwd=self.folder, text=True,
                                stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                stderr=subprocess.STDOUT, **keywords)

    def finish(self, run):
        """The output of a spawned run; its status is run.returncode."""
        return run.communicate(timeout=support.PATIENCE)[0]

    def run_recipe(self, *command):
        """(exit status, output)."""
        run = self.spawn(*command)
        output = self.finish(run)
        return run.returncode, output

    def assert_ends(self, expected, *command):
        status, output = self.run_recipe(*command)
        self.assertEqual(expected, status, f"{command}: {output}")
        return output

    def assert_state(self, expected, module):
        self.assertEqual((0, f"{expected}\n"), self.run_recipe("module-state", module))

    def debug_mode(self):
        return re.search(r"Debug mode: +(\w+)", self.run_recipe("quorlan", "-e")[1]).group(1)

    def assert_left_alone(self):
        """Debug mode is off, the lock free and nothing else left behind."""
        self.assertEqual("disabled", self.debug_mode())
        self.assertEqual([], list(self.run_folder.glob("*")))


class FakeTable(RecipeTest):
    """For tables that the simulator doesn't send."""

    def put_table(self, *rows):
        """Each row is (name, state, the rest), or a line as it is."""
        lines = [row if isinstance(row, str) else f"{row[0]:25}{row[1]:15}{row[2]}" for row in rows]
        (self.folder / "table").write_text("\n".join(lines) + "\n\n", "utf-8")
        (self.programs / "quorlan").unlink()
        self.put("quorlan", '#!/bin/sh\ncat "$HOME/table"\n')


def main():
    support.main()
