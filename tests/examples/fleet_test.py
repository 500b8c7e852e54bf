"""The recipes for many devices, on ten that are simulated: each is an engine in a network of its own. One
has a module that takes time, one a module that fails, one is away.
"""

import os
import shutil
import subprocess
import unittest

import recipes
import support
from recipes import RecipeTest

# In place of ssh: enters the device's network and runs the command there, as the device's shell would.
SSH = '''#!/bin/sh
while [ "${1#-}" != "$1" ]; do
    case $1 in
    --) shift && break ;;
    -o) shift ;;
    esac
    shift
done
device=$1
shift
[ -d "$DEVICES/$device" ] || exit 255
export HOME="$DEVICES/$device"
exec /usr/bin/nsenter --preserve-credentials $ENTER -n -t "$(cat "$HOME/pid")" sh -c "$*"
'''

RUNS = {"state": "running", "restart": {"seconds": 0.1}}
SLOW = {"state": "running", "restart": {"seconds": 2}}
FAILS = {"state": "running", "restart": {"seconds": 0.1, "end": "failed"}}

# Each needs a network of its own, which the kernel may refuse.
UNSHARE = ["unshare", "-n" if os.getuid() == 0 else "-rn", "true"]
ALONE = "QUORLAN_TESTS_SHARE_LOOPBACK" in os.environ or support.run(UNSHARE).returncode != 0


@unittest.skipIf(ALONE, "no network namespaces")
class TenDevices(RecipeTest):
    def setUp(self):
        super().setUp()
        self.put("ssh", SSH)
        self.devices = self.folder / "devices"
        self.results = self.folder / "results"
        self.environment |= {"DEVICES": str(self.devices), "ENTER": "-U" if os.getuid() else "",
                             "ANSIBLE_LOCAL_TEMP": f"{self.folder}/ansible",
                             "ANSIBLE_REMOTE_TEMP": f"{self.folder}/ansible"}
        self.engines = {}
        for name, pump in {"d0": RUNS, "slow": SLOW, "d2": RUNS, "d3": RUNS, "d4": RUNS,
                           "failing": FAILS, "d6": RUNS, "d7": RUNS, "broken": RUNS}.items():
            faults = ["garbage"] if name == "broken" else []
            engine = self.enterContext(self.engine(*faults, own_network=True, pump=pump))
            (self.devices / name).mkdir(parents=True)
            (self.devices / name / "pid").write_text(str(engine.process.pid))
            self.engines[name] = engine
        self.names = [*self.engines, "away"]
        self.expected = {**{name: "0" for name in self.engines}, "broken": "76", "away": "255"}

    def statuses(self, suffix=""):
        return {path.name.removesuffix(suffix): path.read_text().split("\n")[0]
                for path in self.results.glob("*" + suffix)}

    def restarted(self):
        return [name for name, engine in self.engines.items() if engine.requests("restart")]

    def play(self, expected, book, names, *arguments):
        shutil.copy(self.programs / book, self.folder)
        return self.assert_ends(expected, "ansible-playbook", "-i", ",".join([*names, ""]),
                                *arguments, book)

    def on_devices(self, *arguments, devices):
        ended = subprocess.run(["on-devices", *arguments], env=self.environment, cwd=self.folder,
                               input=devices, capture_output=True, text=True, check=False,
                               timeout=support.PATIENCE)
        return ended.returncode, ended.stdout + ended.stderr


class OnDevices(TenDevices):
    def test_ten_devices(self):
        self.assertEqual((1, "results/away.status:255\nresults/broken.status:76\n"),
                         self.on_devices("--list", devices="\n".join(self.names)))
        self.assertEqual(self.expected, self.statuses(".status"))
        self.assertIn("pump", (self.results / "slow.out").read_text())
        self.assertIn("Failed to parse", (self.results / "broken.out").read_text())

    def test_list_with_an_empty_line_and_a_last_one_without_an_end(self):
        self.assertEqual((0, ""), self.on_devices("--list", devices="\nd0\n\n  \nd2"))
        self.assertEqual({"d0": "0", "d2": "0"}, self.statuses(".status"))

    def test_list_that_names_none(self):
        for devices in ["", "\n"]:
            self.assertEqual((2, "on-devices: no device is named on standard input\n"),
                             self.on_devices("--list", devices=devices))
        self.assertEqual({}, self.statuses(".status"))


class ModulesPlay(TenDevices):
    def test_ten_devices(self):
        output = self.play(2, "modules.yml", self.names)
        self.assertIn("ended with 255", output)
        self.assertIn("ended with 76", output)
        self.assertEqual(self.expected, self.statuses())
        self.assertIn("pump", (self.results / "slow").read_text())
        self.assertIn("Failed to parse", (self.results / "broken").read_text())


class RestartPlay(TenDevices):
    def test_all_run(self):
        self.play(0, "restart-everywhere.yml", ["d0", "slow", "d2"], "-e", "module=pump",
                  "-e", "batch=2")
        self.assertEqual({"d0": "0", "slow": "0", "d2": "0"}, self.statuses())
        self.assertEqual(["d0", "slow", "d2"], self.restarted())

    def test_stops_after_the_batch_with_one_that_fails(self):
        self.results.mkdir()
        (self.results / "from-an-earlier-run").write_text("0")
        self.play(2, "restart-everywhere.yml", self.names, "-e", "module=pump", "-e", "batch=4")
        self.assertEqual({"d0": "0", "slow": "0", "d2": "0", "d3": "0",
                          "d4": "0", "failing": "2", "d6": "0", "d7": "0"}, self.statuses())
        self.assertIn("pump is failed", (self.results / "failing").read_text())

    def test_stops_after_the_batch_with_one_that_is_away(self):
        self.play(2, "restart-everywhere.yml", ["d0", "away", "d2"], "-e", "module=pump",
                  "-e", "batch=2")
        self.assertEqual({"d0": "0", "away": "255"}, self.statuses())
        self.assertEqual(["d0"], self.restarted())


if __name__ == "__main__":
    recipes.main()
