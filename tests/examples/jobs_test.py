"""What runs without anybody looking: restart-failed, the cron job and the systemd unit. And that the
examples are complete, and say which tools they need."""

import os
import pathlib
import re
import shutil
import unittest

import recipes
from recipes import BUSYBOX, RECIPES, RecipeTest
from support import SOURCE


class RestartFailed(RecipeTest):
    MODULES = {"good": "running", "idle": "stopped", "broken": "failed", "gone": "terminated",
               "new": "starting"}

    def assert_states(self, **expected):
        for module, state in {**self.MODULES, **expected}.items():
            self.assert_state(state, module)

    def test_starts_what_failed_or_terminated_and_nothing_else(self):
        with self.engine(services={"dead": "failed"}, **self.MODULES):
            self.assert_ends(0, "restart-failed")
            self.assert_states(broken="running", gone="running", dead="failed")

    def test_starts_those_that_are_named(self):
        with self.engine(**self.MODULES):
            self.assert_ends(0, "restart-failed", "idle", "good")
            self.assert_states(idle="running")

    def test_names_those_that_do_not_run(self):
        modules = {**self.MODULES, "broken": {"state": "failed", "start": {"end": "failed"}}}
        with self.engine(**modules):
            self.assertIn("not running: broken\n", self.assert_ends(1, "restart-failed"))
            self.assert_states(gone="running")
            self.assertIn("not running: none\n", self.assert_ends(1, "restart-failed", "none"))

    def test_nothing_to_do(self):
        with self.engine(good="running") as engine:
            self.assertEqual("", self.assert_ends(0, "restart-failed"))
            self.assertEqual(1, sum("request" in line or "command" in line for line in engine.log))

    def test_engine_that_cannot_be_asked(self):
        self.assertIn("Failed to connect", self.assert_ends(69, "restart-failed"))
        with self.engine("half:list@1", **self.MODULES):
            self.assert_ends(76, "restart-failed")


class CronJob(RecipeTest):
    def setUp(self):
        super().setUp()
        *settings, job = [line for line in (RECIPES / "quorlan.cron").read_text().splitlines()
                          if not line.startswith("#")]
        fields = job.split(maxsplit=6)
        self.assertEqual(["*/5", "*", "*", "*", "*", "root"], fields[:6])
        self.assertEqual(1, len(settings))
        self.command = ["sh", "-c", fields[6]]
        path = settings[0].removeprefix("PATH=") if not BUSYBOX else f"{self.folder}/busybox"
        self.environment = {"PATH": f"{self.programs}:{path}", "SHELL": "/bin/sh",
                            "HOME": str(self.folder)}

    def test_is_silent_while_all_goes_well(self):
        with self.engine(valve="failed", pump="stopped"):
            self.assertEqual("", self.assert_ends(0, *self.command))
            self.assert_state("running", "valve")
            self.assert_state("stopped", "pump")

    def test_says_once_that_the_engine_is_away(self):
        for _ in range(2):
            self.assertIn("nothing there", self.assert_ends(69, *self.command))
            self.assertEqual("", self.assert_ends(69, *self.command))
            with self.engine("garbage"):
                self.assertEqual("", self.assert_ends(76, *self.command))
            self.assertEqual(0o700, self.run_folder.stat().st_mode & 0o777)
            with self.engine():
                self.assertEqual("", self.assert_ends(0, *self.command))
            self.assertEqual([], os.listdir(self.run_folder))

    def test_says_so_every_time_where_it_cannot_remember(self):
        self.run_folder.write_text("")
        for _ in range(2):
            self.assertIn("nothing there", self.assert_ends(69, *self.command))

    def test_says_what_could_not_be_started(self):
        with self.engine(valve={"state": "failed", "start": {"end": "failed"}}):
            self.assertIn("not running: valve\n", self.assert_ends(1, *self.command))


class SystemdUnit(RecipeTest):
    NAME = "quorlan-start@.service"

    def setUp(self):
        super().setUp()
        self.unit = (RECIPES / self.NAME).read_text().replace("/usr/local/bin", str(self.programs))
        self.start = re.search("^ExecStart=(.*)$", self.unit, re.M).group(1).replace("%i", "valve")

    def test_is_sound(self):
        (self.folder / self.NAME).write_text(self.unit)
        self.assertEqual("", self.assert_ends(0, "systemd-analyze", "verify", "--man=no",
                                              str(self.folder / self.NAME)))

    def test_tries_again_unless_the_command_line_is_wrong(self):
        self.assertIn("\nRestart=on-failure\n", self.unit)
        self.assertIn("\nRestartPreventExitStatus=78\n", self.unit)

    def test_starts_a_slow_module_in_one_go(self):
        with self.engine(valve={"state": "stopped", "start": {"seconds": 1.5}}) as engine:
            self.assert_ends(0, *self.start.split())
            self.assert_state("running", "valve")
            self.assertEqual(1, engine.requests("start"))

    def test_fails_without_an_engine(self):
        self.assert_ends(69, *self.start.split())


class Tools(RecipeTest):
    """With Debian's shell, as BusyBox's finds its own tools without PATH."""

    ARGUMENTS = {"change-module": ["restart", "pump"], "check_module": ["pump"],
                 "module-metrics": ["metrics"], "module-settles": ["pump", "9"],
                 "module-state": ["pump"], "on-devices": ["--list"], "quorlan-retry": ["--list"],
                 "restart-failed": ["pump"], "start-module": ["valve"],
                 "wait-for-module": ["pump", "9"],
                 "with-debug-mode": ["9", "quorlan", "--stop=pump"]}

    def setUp(self):
        super().setUp()
        self.put("ssh", "#!/bin/sh\n")
        self.tools = self.folder / "tools"
        self.environment["PATH"] = str(self.tools)
        self.recipes = [recipe for recipe in RECIPES.iterdir()
                        if recipe.read_text().startswith("#!") and recipe.name != "recipe-needs"]

    def offer(self, *tools):
        """Leaves only these, and the recipes."""
        shutil.rmtree(self.tools, ignore_errors=True)
        self.tools.mkdir()
        for recipe in RECIPES.iterdir():
            (self.tools / recipe.name).symlink_to(self.programs / recipe.name)
        for tool in tools:
            path = shutil.which(tool, path=f"{self.programs}:/usr/bin:/bin")
            (self.tools / tool).symlink_to(path)

    @staticmethod
    def needed(recipe):
        """What it asks for, itself or in the recipe that it becomes."""
        text = recipe.read_text()
        asked = re.search(r"\brecipe-needs ([a-z ]+[a-z])", text)
        if asked:
            return asked.group(1).split()
        return Tools.needed(RECIPES / re.search(r"^exec ([\w-]+)", text, re.M).group(1))

    def test_each_recipe_works_with_what_it_asks_for(self):
        for recipe in self.recipes:
            if recipe.name == "on-devices":
                continue  # reads names of devices; fleet_test.py runs it
            with self.subTest(recipe.name), self.engine(pump="running", valve="stopped"):
                self.offer(*self.needed(recipe))
                output = self.assert_ends(0, str(self.programs / recipe.name),
                                          *self.ARGUMENTS.get(recipe.name, []))
                self.assertNotIn("not found", output)

    def test_each_recipe_says_at_once_what_is_missing(self):
        self.offer()
        for recipe in self.recipes:
            with self.subTest(recipe.name):
                missing = f"recipe-needs: not found: {' '.join(self.needed(recipe))}\n"
                expected = (3, f"UNKNOWN - {missing}") if recipe.name == "check_module" \
                    else (127, missing)
                self.assertEqual(expected, self.run_recipe(str(self.programs / recipe.name),
                                                           *self.ARGUMENTS.get(recipe.name, [])))

    def test_the_guide_lists_what_a_device_needs(self):
        guide = (RECIPES.parent / "scripting.md").read_text()
        listed = re.search(r"BusyBox needs these\sapplets: (.*?)\.$", guide, re.M | re.S).group(1)
        needed = {tool for recipe in self.recipes if recipe.name != "on-devices"
                  for tool in self.needed(recipe)}
        self.assertEqual(sorted(needed - {"quorlan"}), re.findall("`([a-z]+)`", listed))


class Examples(unittest.TestCase):
    def test_all_are_installed_as_they_are(self):
        for source in sorted((SOURCE / "examples").iterdir()):
            installed = RECIPES / source.name
            self.assertEqual(source.read_text(), installed.read_text())
            self.assertEqual(source.read_text().startswith("#!"), os.access(installed, os.X_OK))

    def test_scripts_say_how_they_are_called_and_how_they_end(self):
        for recipe in RECIPES.iterdir():
            text = recipe.read_text()
            if text.startswith("#!"):
                with self.subTest(recipe.name):
                    self.assertRegex(text, f"^#!/bin/sh\n# {recipe.name}[ :]")
                    self.assertIn("\n# Exit status:", text)

    def test_all_are_tested(self):
        tests = "".join(path.read_text() for path in pathlib.Path(__file__).parent.glob("*_test.py"))
        self.assertEqual([], [recipe.name for recipe in RECIPES.iterdir()
                              if not re.search(rf"""["/ ']{re.escape(recipe.name)}[" ']""", tests)])

    def test_all_are_in_the_guide(self):
        """As it is installed, where its links lead elsewhere than in the repository."""
        guide = (RECIPES.parent / "scripting.md").read_text()
        self.assertEqual(sorted(recipe.name for recipe in RECIPES.iterdir()),
                         sorted(re.findall(r"\]\(examples/([^)]+)\)", guide)))


if __name__ == "__main__":
    recipes.main()
