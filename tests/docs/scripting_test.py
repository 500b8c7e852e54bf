"""Runs every recipe of docs/scripting.md, with a healthy engine and with the fault it guards
against.
"""

import fcntl
import json
import os
import pathlib
import re
import shutil
import socket
import subprocess
import tempfile
import threading
import time
import unittest

import support

GUIDE = support.SOURCE / "docs/scripting.md"
RECIPES = dict(re.findall(r"^<!-- recipe: (\S+) -->\n```\w+\n(.*?)^```", GUIDE.read_text(),
                          re.M | re.S))


class DrippingEngine:
    """Answers every request with one space a second and never ends the reply."""

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


class RecipeTest(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)
        self.programs = self.folder / "bin"
        self.programs.mkdir()
        for name, text in RECIPES.items():
            # The lock of this test's own engine, not of the machine's.
            self.put(name, text.replace("/run/lock/", f"{self.folder}/"))
        (self.programs / "quorlan").symlink_to(support.QUORLAN)
        self.environment = {"PATH": f"{self.programs}:/usr/bin:/bin", "LC_ALL": "C.UTF-8",
                            "HOME": str(self.folder)}

    def put(self, name, text):
        (self.programs / name).write_text(text)
        (self.programs / name).chmod(0o755)

    def put_before_quorlan(self, script):
        """Lets a script see the arguments first; what it doesn't end goes on to the real one."""
        (self.programs / "quorlan").unlink()
        self.put("quorlan", f'#!/bin/sh\n{script}\nexec {support.QUORLAN} "$@"\n')

    def spawn(self, *command, **keywords):
        return subprocess.Popen(command, env=self.environment, cwd=self.folder, text=True,
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, **keywords)

    def run_recipe(self, *command, **keywords):
        """(exit status, output)."""
        ended = support.run(command, env=self.environment, cwd=self.folder, **keywords)
        return ended.returncode, ended.stdout + ended.stderr

    def assert_ends(self, expected, *command):
        status, output = self.run_recipe(*command)
        self.assertEqual(expected, status, output)
        return output

    def state(self, module):
        return self.run_recipe("module-state", module)[1].strip()

    def debug_mode(self):
        return re.search(r"Debug mode: +(\w+)", self.run_recipe("quorlan", "-e")[1]).group(1)


class OneDevice(RecipeTest):
    def test_every_recipe_is_run_here(self):
        tests = pathlib.Path(__file__).read_text()
        self.assertEqual([], [name for name in RECIPES if f'"{name}"' not in tests])
        self.assertEqual(len(RECIPES), GUIDE.read_text().count("```") // 2)

    def test_module_state(self):
        with support.Engine():
            for module, state in [("pump1", "running"), ("valve", "stopped"),
                                  ("storage", "running")]:
                self.assertEqual(state, self.assert_ends(0, "module-state", module).strip())
            self.assertIn("no module pump", self.assert_ends(1, "module-state", "pump"))
        self.assertIn("Failed to connect", self.assert_ends(69, "module-state", "pump1"))
        with support.Engine("--fault=half"):
            self.assert_ends(76, "module-state", "pump1")

    def test_start_module(self):
        with support.Engine():
            self.assert_ends(0, "start-module", "valve")
            self.assertEqual("running", self.state("valve"))
            self.assertEqual("disabled", self.debug_mode())
            self.assert_ends(0, "start-module", "valve")
            self.assertIn("cannot be started", self.assert_ends(4, "start-module", "heater"))
            self.assertEqual("disabled", self.debug_mode())
            self.assert_ends(1, "start-module", "unknown")
            self.assertIn("usage", self.assert_ends(78, "start-module"))
        self.assert_ends(69, "start-module", "valve")

    def test_start_module_leaves_debug_mode_on(self):
        with support.Engine():
            self.assert_ends(0, "quorlan", "--debug=true")
            self.assert_ends(0, "start-module", "valve")
            self.assertEqual("enabled", self.debug_mode())

    def test_start_module_notices_a_start_that_was_refused_with_0(self):
        self.put_before_quorlan(f"case $1 in --start=*) {support.QUORLAN} --debug=false;; esac")
        with support.Engine():
            self.assertIn("valve is stopped", self.assert_ends(2, "start-module", "valve"))

    def test_start_module_takes_turns_with_others(self):
        modules = [{"name": f"m{i}", "state": "stopped", "version": "1"} for i in range(4)]
        engine = {"state": "running", "version": "1", "build": "sim", "safeModeEnabled": False,
                  "debugModeEnabled": False}
        state = self.folder / "state.json"
        state.write_text(json.dumps({"engine": engine, "services": [], "modules": modules}))
        # Time enough for another to switch debug mode off or to start the same module.
        self.put_before_quorlan("case $1 in --start=*) sleep 0.2 ;; esac")
        names = ["m0", "m1", "m2", "m3", "m0", "m1"]
        with support.Engine(f"--state={state}"):
            runs = [self.spawn("start-module", name) for name in names]
            for name, run in zip(names, runs):
                output, _ = run.communicate(timeout=support.PATIENCE)
                self.assertEqual(0, run.returncode, f"{name}: {output}")
            self.assertEqual(["running"] * 4, [self.state(m["name"]) for m in modules])
            self.assertEqual("disabled", self.debug_mode())

    def test_start_module_gives_up_a_lock_that_is_not_to_be_had(self):
        recipe = (self.programs / "start-module").read_text()
        lock = self.folder / "quorlan-debug-mode"
        self.assertIn(f"lock={lock}\n", recipe)
        self.assertIn("timeout 60 flock", recipe)
        self.put("start-module", recipe.replace("timeout 60 flock", "timeout 1 flock"))
        with support.Engine(), lock.open("w") as held:
            fcntl.flock(held, fcntl.LOCK_EX)
            self.assertIn("others kept", self.assert_ends(75, "start-module", "valve"))
            self.assert_ends(0, "start-module", "pump1")  # runs already: no need for the lock
            self.assertEqual("stopped", self.state("valve"))
            self.put("start-module", recipe.replace(str(lock), "/nowhere/lock"))
            self.assertIn("/nowhere/lock", self.assert_ends(75, "start-module", "valve"))

    def test_start_module_switches_debug_mode_off_when_interrupted(self):
        # quorlan's parent is timeout, and that one's is the script.
        self.put_before_quorlan("case $1 in --start=*) "
                                "kill -TERM $(cut -d ' ' -f 4 /proc/$PPID/stat) ;; esac")
        with support.Engine():
            self.assert_ends(143, "start-module", "valve")
            self.assertEqual("disabled", self.debug_mode())
            self.assertEqual("running", self.state("valve"))  # it was sent before the end

    def test_restart_stopped(self):
        with support.Engine():
            self.assert_ends(0, "restart-stopped")
            for module in ["valve", "mixer"]:
                self.assertEqual("running", self.state(module))
            self.assertEqual("stopped", self.state("console"))  # a service
        self.assert_ends(69, "restart-stopped")

    def test_restart_stopped_names_what_it_could_not_start(self):
        self.put_before_quorlan("[ $1 != --start=mixer ] || exit 9")
        with support.Engine():
            self.assertIn("not running: mixer\n", self.assert_ends(1, "restart-stopped"))
            self.assertEqual("running", self.state("valve"))

    def test_systemd_unit(self):
        name = "quorlan-start@.service"
        unit = RECIPES[name].replace("/usr/local/bin", str(self.programs))
        (self.folder / name).write_text(unit)
        self.assertEqual("", self.assert_ends(0, "systemd-analyze", "verify", "--man=no",
                                              str(self.folder / name)))
        self.assertIn("\nRestartPreventExitStatus=1 78\n", unit)
        start = re.search(r"^ExecStart=(.*)$", unit, re.M).group(1).replace("%i", "valve")
        with support.Engine():
            self.assert_ends(0, *start.split())
            self.assertEqual("running", self.state("valve"))
        self.assert_ends(69, *start.split())

    def test_cron_job(self):
        path, job = RECIPES["quorlan.cron"].splitlines()[1:]
        self.environment = {"PATH": f"{self.programs}:{path.split('=')[1]}", "SHELL": "/bin/sh"}
        fields = job.split(maxsplit=6)
        self.assertEqual(["*/5", "*", "*", "*", "*", "root"], fields[:6])
        with support.Engine():
            self.assertEqual("", self.assert_ends(0, "sh", "-c", fields[6]))
            self.assertEqual("running", self.state("valve"))
        self.assertIn("Failed to connect", self.assert_ends(69, "sh", "-c", fields[6]))

    def test_monitoring_check(self):
        with support.Engine():
            self.assertEqual("OK - pump1 is running\n", self.assert_ends(0, "check_module", "pump1"))
            self.assertEqual("CRITICAL - valve is stopped\n",
                             self.assert_ends(2, "check_module", "valve"))
            self.assertIn("UNKNOWN - the engine doesn't know",
                          self.assert_ends(3, "check_module", "unknown"))
        self.assertEqual("CRITICAL - the engine is not there\n",
                         self.assert_ends(2, "check_module", "pump1"))
        with support.Engine("--fault=garbage"):
            self.assertEqual("UNKNOWN - could not be asked, status 76\n",
                             self.assert_ends(3, "check_module", "pump1"))


class Waiting(RecipeTest):
    def test_engine_answers(self):
        with support.Engine():
            self.assertEqual("", self.assert_ends(0, "engine-answers"))
        self.assertIn("nothing there", self.assert_ends(69, "engine-answers"))
        with support.Engine("--fault=garbage"):
            self.assertIn("no usable reply", self.assert_ends(76, "engine-answers"))
        with support.Engine("--fault=silent"):
            self.assertIn("no usable reply", self.assert_ends(76, "engine-answers"))

    def test_wait_for_module(self):
        with support.Engine() as engine:
            self.assert_ends(0, "wait-for-module", "pump1", "30")
            self.assert_ends(124, "wait-for-module", "valve", "1")
            waiting = self.spawn("wait-for-module", "valve", str(support.PATIENCE))
            engine.await_request("list")
            self.assert_ends(0, "start-module", "valve")
            output, _ = waiting.communicate(timeout=support.PATIENCE)
            self.assertEqual(0, waiting.returncode, output)
        self.assert_ends(124, "wait-for-module", "pump1", "1")

    def test_quorlan_retry(self):
        with support.Engine():
            self.assertIn("pump1", self.assert_ends(0, "quorlan-retry", "--list"))
        output = self.assert_ends(69, "quorlan-retry", "--list")
        self.assertEqual(3, output.count("Failed to connect"))
        with support.Engine("--fault=garbage"):
            output = self.assert_ends(76, "quorlan-retry", "--update")
        self.assertEqual(1, output.count("Failed to parse"))
        self.assertIn("wrong command line", self.assert_ends(78, "quorlan-retry", "--st=pump1"))

    def test_quorlan_retry_finds_an_engine_that_comes_later(self):
        retry = self.spawn("quorlan-retry", "--list")
        self.assertIn("Failed to connect", retry.stdout.readline())
        with support.Engine():
            output, _ = retry.communicate(timeout=support.PATIENCE)
        self.assertEqual(0, retry.returncode, output)


class EndlessReply(RecipeTest):
    def test_a_dripping_engine_is_cut_off(self):
        commands = [["engine-answers"], ["module-state", "pump1"], ["start-module", "pump1"],
                    ["restart-stopped"], ["quorlan-retry", "--list"]]
        with DrippingEngine():
            runs = [(command, self.spawn(*command)) for command in commands]
            for command, run in runs:
                output, _ = run.communicate(timeout=support.PATIENCE)
                self.assertEqual(124, run.returncode, f"{command}: {output}")


class ManyDevices(RecipeTest):
    def setUp(self):
        super().setUp()
        # Runs the command here, as ssh would there; one device has no engine, one is not there.
        self.put("ssh", '#!/bin/sh\nwhile [ "${1#-}" != "$1" ]; do\n'
                        '    [ "$1" != -o ] || shift\n    shift\ndone\n'
                        'device=$1\nshift\ncase $device in\ngone) exit 255 ;;\n'
                        'idle) exec unshare "$UNSHARE" sh -c "$*" ;;\nesac\nexec sh -c "$*"\n')
        self.environment["UNSHARE"] = "-n" if os.getuid() == 0 else "-rn"

    def test_many_devices_with_ssh(self):
        with support.Engine():
            status, output = self.on_devices("good\nidle\ngone\n")
            self.assertEqual(1, status, output)
            self.assertEqual({"good": "0", "idle": "69", "gone": "255"}, self.results(".status"))
            self.assertIn("pump1", (self.folder / "results/good.out").read_text())
            self.assertEqual((0, ""), self.on_devices("good\n"))

    def test_many_devices_whose_list_has_an_empty_line_and_a_last_one_without_an_end(self):
        with support.Engine():
            status, output = self.on_devices("\ngood\n\n  \nidle")
            self.assertEqual((1, "results/idle.status:69\n"), (status, output))
        self.assertEqual({"good": "0", "idle": "69"}, self.results(".status"))

    def test_many_devices_that_are_none(self):
        for devices in ["", "\n"]:
            self.assertEqual((2, "on-devices: no device is named on standard input\n"),
                             self.on_devices(devices))
        self.assertEqual({}, self.results(".status"))

    def on_devices(self, devices):
        ended = subprocess.run(["on-devices", "--list"], env=self.environment, cwd=self.folder,
                               input=devices, capture_output=True, text=True, check=False,
                               timeout=support.PATIENCE)
        return ended.returncode, ended.stdout + ended.stderr

    def results(self, suffix):
        return {path.name[:len(path.name) - len(suffix)]: path.read_text().split("\n")[0]
                for path in (self.folder / "results").glob("*" + suffix)}

    def test_many_devices_with_ansible(self):
        shutil.copy(self.programs / "modules.yml", self.folder)
        for folder in ["ANSIBLE_LOCAL_TEMP", "ANSIBLE_REMOTE_TEMP"]:  # not the real home's
            self.environment[folder] = f"{self.folder}/ansible"
        (self.folder / "results").mkdir()
        with support.Engine():
            output = self.assert_ends(2, "ansible-playbook", "-i", "good,idle,", "modules.yml")
        self.assertIn("quorlan ended with 69", output)
        self.assertEqual({"good": "0", "idle": "69"}, self.results(""))
        self.assertIn("pump1", (self.folder / "results/good").read_text())


if __name__ == "__main__":
    support.main()
