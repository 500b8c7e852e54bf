"""start-module, change-module, module-settles and wait-for-module, against modules that take time and
engines that fail before, between and after.
"""

import os
import signal

import recipes
from recipes import RecipeTest


def stopped(seconds=0, **start):
    return {"state": "stopped", "start": {"seconds": seconds, **start}}


class StartModule(RecipeTest):
    """With an engine that is well."""

    def test_module_that_starts_at_once(self):
        with self.engine(valve="stopped"):
            self.assertEqual("valve was started\n", self.assert_ends(0, "start-module", "valve"))
            self.assert_state("running", "valve")
            self.assert_left_alone()

    def test_module_that_runs_already(self):
        with self.engine(valve="running") as engine:
            self.assertEqual("", self.assert_ends(0, "start-module", "valve"))
            self.assertEqual(0, engine.requests("debug"))

    def test_module_that_takes_time(self):
        with self.engine(valve=stopped(1.5)):
            self.assert_ends(0, "start-module", "valve")
            self.assert_state("running", "valve")
            self.assert_left_alone()

    def test_module_that_never_arrives(self):
        with self.engine(valve=stopped(600)):
            output = self.assert_ends(124, "start-module", "valve", "1")
            self.assertIn("valve is starting after", output)
            self.assert_left_alone()

    def test_module_that_ends_failed(self):
        with self.engine(valve=stopped(0.5, end="failed")):
            self.assertIn("valve is failed\n", self.assert_ends(2, "start-module", "valve"))
            self.assert_left_alone()

    def test_module_that_fails_at_once(self):
        with self.engine(valve={"state": "failed", "start": {"end": "failed"}}):
            self.assertIn("valve is failed\n", self.assert_ends(2, "start-module", "valve"))

    def test_module_that_somebody_else_has_started(self):
        with self.engine(debug=True, valve=stopped(1.5)) as engine:
            self.assert_ends(0, "quorlan", "--start=valve")
            self.assert_ends(0, "start-module", "valve")
            self.assert_state("running", "valve")
            self.assertEqual(1, engine.requests("start"))

    def test_module_that_somebody_else_has_started_in_vain(self):
        with self.engine(debug=True, valve=stopped(0.5, end="failed")) as engine:
            self.assert_ends(0, "quorlan", "--start=valve")
            self.assert_ends(2, "start-module", "valve")
            self.assertEqual(2, engine.requests("start"))  # an attempt of its own

    def test_module_that_starts_already_and_never_arrives(self):
        with self.engine(valve="starting") as engine:
            self.assert_ends(124, "start-module", "valve", "1")
            self.assertEqual(0, engine.requests("start"))

    def test_module_that_is_being_stopped(self):
        with self.engine(debug=True, valve={"state": "running", "stop": {"seconds": 1}}):
            self.assert_ends(0, "quorlan", "--stop=valve")
            self.assert_ends(0, "start-module", "valve")
            self.assert_state("running", "valve")

    def test_module_that_is_being_reconfigured(self):
        valve = {"state": "running", "reconfigure": {"seconds": 1}}
        with self.engine(debug=True, valve=valve) as engine:
            self.assert_ends(0, "quorlan", "--reconfigure=valve")
            self.assert_ends(0, "start-module", "valve")
            self.assertEqual(0, engine.requests("start"))

    def test_module_that_is_unknown(self):
        with self.engine(valve="stopped") as engine:
            self.assertIn("doesn't know valves", self.assert_ends(1, "start-module", "valves"))
            self.assertEqual(0, engine.requests("debug"))

    def test_wrong_command_lines(self):
        for arguments in [[], ["valve", "x"], ["valve", ""], ["a-b"], [""], ["valve", "1", "2"]]:
            with self.subTest(arguments):
                self.assertIn("usage: ", self.assert_ends(78, "start-module", *arguments))
        self.assertIn("usage: ", self.assert_ends(78, "change-module", "stop", "valve"))

    def test_debug_mode_that_is_on_stays_on(self):
        with self.engine(debug=True, valve="stopped"):
            self.assert_ends(0, "start-module", "valve")
            self.assertEqual("enabled", self.debug_mode())

    def test_two_at_once(self):
        with self.engine(valve=stopped(1)):
            runs = [self.spawn("start-module", "valve") for _ in range(2)]
            for run in runs:
                output = self.finish(run)
                self.assertEqual(0, run.returncode, output)
            self.assert_state("running", "valve")
            self.assert_left_alone()

    def test_several_modules_at_once(self):
        # Time enough for another to switch debug mode off, or to start the same module.
        self.put_before_quorlan("case $1 in --start=*) sleep 0.2 ;; esac")
        with self.engine(a=stopped(1), b=stopped(1), c=stopped(), d=stopped()):
            runs = [self.spawn("start-module", name) for name in "abcdab"]
            for run in runs:
                output = self.finish(run)
                self.assertEqual(0, run.returncode, output)
            for name in "abcd":
                self.assert_state("running", name)
            self.assert_left_alone()

    def test_others_need_not_wait_while_a_module_starts(self):
        with self.engine(valve=stopped(600), pump="stopped") as engine:
            slow = self.spawn("start-module", "valve")
            engine.await_request("debug", count=2)
            self.assert_ends(0, "start-module", "pump", "5")
            slow.kill()
            self.finish(slow)


class DebugModeInBetween(RecipeTest):
    def put_somebody_else(self, guard=""):
        """Switches debug mode off right before a command is sent."""
        self.put_before_quorlan(
            f"case $1 in --*start=*) {guard} {recipes.support.QUORLAN} --debug=false ;; esac")

    def test_start_module_tries_again(self):
        self.put_somebody_else('mkdir "$HOME/once" 2>/dev/null &&')
        with self.engine(valve=stopped(1)):
            self.assert_ends(0, "start-module", "valve")
            self.assert_state("running", "valve")
            self.assert_left_alone()

    def test_start_module_leaves_it_off_as_somebody_else_wanted(self):
        self.put_somebody_else('mkdir "$HOME/once" 2>/dev/null &&')
        with self.engine(debug=True, valve="stopped"):
            self.assert_ends(0, "start-module", "valve")
            self.assert_left_alone()

    def test_start_module_gives_up(self):
        self.put_somebody_else()
        with self.engine(valve="stopped") as engine:
            output = self.assert_ends(2, "start-module", "valve")
            self.assertIn("valve is stopped: somebody else switched debug mode off", output)
            self.assertEqual(0, engine.requests("start"))
            self.assert_left_alone()

    def test_change_module_does_not_take_a_running_module_for_a_restarted_one(self):
        self.put_somebody_else()
        with self.engine(valve="running"):
            self.assertIn("valve is running: somebody else",
                          self.assert_ends(2, "change-module", "restart", "valve"))


class EngineFails(RecipeTest):
    """start-module with an engine that fails at one of its requests, or is away for a time."""

    def test_away_before(self):
        self.assertIn("Failed to connect", self.assert_ends(69, "start-module", "valve"))

    def test_away_after_the_start_for_a_time(self):
        with self.engine(control=True, valve=stopped(0.5)) as engine:
            run = self.spawn("start-module", "valve")
            engine.await_request("debug", count=2)
            engine.control("down 1")
            output = self.finish(run)
            self.assertEqual(0, run.returncode, output)
            self.assert_state("running", "valve")

    def test_away_after_the_start_from_then_on(self):
        with self.engine(valve=stopped(600)) as engine:
            run = self.spawn("start-module", "valve", "3")
            engine.await_request("debug", count=2)
        # The engine may go in the middle of a reply, too.
        self.assertRegex(self.finish(run), "Failed to (connect|parse)")
        self.assertIn(run.returncode, [69, 76])

    def test_restarted_while_it_waits(self):
        with self.engine(valve=stopped(600)) as engine:
            run = self.spawn("start-module", "valve")
            engine.await_request("debug", count=2)
        with self.engine(valve="running"):
            output = self.finish(run)
        self.assertEqual(0, run.returncode, output)

    # (fault, status, what it says, state afterwards). After the others it is away in between.
    FAULTS = {
        "close:list@1": (76, "Failed to parse", "stopped"),
        "close:list@2": (0, "", "running"),  # one look among others
        "close:engine-status@1": (76, "Failed to parse", "stopped"),
        "error-code:engine-status@1": (76, "Failed to parse", "stopped"),
        "refused-status:engine-status@1": (6, "Vantrel status", "stopped"),
        "close:debug@1": (76, "Failed to parse", "stopped"),
        "error-code:debug@1": (6, "Refused on purpose", "stopped"),
        "close:engine-status@2": (76, "Failed to parse", "stopped"),
        "error-code:start": (6, "Refused on purpose", "stopped"),
        "half:start@1": (0, "Failed to parse", "running"),
        "reset:start@1": (0, "Failed to parse", "running"),
        "garbage:start@1": (0, "Failed to parse", "running"),
    }

    def test_faults(self):
        for fault, (status, text, state) in self.FAULTS.items():
            with self.subTest(f"start-module, {fault}"), self.engine(fault, valve=stopped(0.5)):
                self.assertIn(text, self.assert_ends(status, "start-module", "valve"))
                self.assert_state(state, "valve")
                self.assert_left_alone()

    def test_debug_mode_that_cannot_be_switched_off_is_left_to_the_next_run(self):
        with self.engine("close:debug@2", valve="stopped", pump="stopped"):
            self.assertIn("debug mode may still be on", self.assert_ends(0, "start-module", "valve"))
            self.assert_ends(0, "start-module", "pump")
            self.assertEqual("disabled", self.debug_mode())


class EngineIsSilent(RecipeTest):
    """The same, where the tool waits for its five seconds."""

    FAULTS = {
        "silent:start@1": (0, "Failed to parse", "running"),
        "stay-open:start@1": (0, "Failed to parse", "running"),
        "silent:list@1": (76, "Failed to parse", "stopped"),
        "silent:engine-status@1": (76, "Failed to parse", "stopped"),
    }

    def test_faults(self):
        for fault, (status, text, state) in self.FAULTS.items():
            with self.subTest(f"start-module, {fault}"), self.engine(fault, valve=stopped(0.5)):
                self.assertIn(text, self.assert_ends(status, "start-module", "valve"))
                self.assert_state(state, "valve")
                self.assert_left_alone()


class RestartModule(RecipeTest):
    def test_module_that_runs(self):
        with self.engine(valve={"state": "running", "restart": {"seconds": 1}}) as engine:
            self.assert_ends(0, "change-module", "restart", "valve")
            self.assert_state("running", "valve")
            self.assertEqual(1, engine.requests("restart"))
            self.assert_left_alone()

    def test_module_on_its_way_arrives_first(self):
        valve = {"state": "running", "reconfigure": {"seconds": 1}, "restart": {"end": "failed"}}
        with self.engine(debug=True, valve=valve):
            self.assert_ends(0, "quorlan", "--reconfigure=valve")
            self.assertIn("valve is failed",
                          self.assert_ends(2, "change-module", "restart", "valve"))

    def test_unusable_reply_while_the_module_runs(self):
        with self.engine("half:restart@1", valve="running"):
            self.assertIn("Failed to parse",
                          self.assert_ends(76, "change-module", "restart", "valve"))

    def test_unusable_reply_while_the_module_is_on_its_way(self):
        valve = {"state": "running", "restart": {"seconds": 5}}  # longer than until the first look
        with self.engine("half:restart@1", valve=valve):
            self.assert_ends(0, "change-module", "restart", "valve")


class Interrupted(RecipeTest):
    def test_start_module_leaves_debug_mode_as_it_was(self):
        """Everything gets the signal, as from a terminal or from systemd."""
        signals = {"a": signal.SIGINT, "b": signal.SIGTERM, "c": signal.SIGHUP}
        with self.engine(**{name: "stopped" for name in signals}) as engine:
            for name, number in signals.items():
                with self.subTest(number):
                    already = engine.requests("debug")
                    run = self.spawn("start-module", name, start_new_session=True)
                    engine.await_request("debug", already + 1)
                    os.killpg(run.pid, number)
                    self.finish(run)
                    self.assertNotEqual(0, run.returncode)
                    self.assert_ends(0, "with-debug-mode", "30", "true")  # its turn comes
                    self.assert_left_alone()

    def test_killed_start_module_has_debug_mode_switched_off_by_the_next(self):
        self.put_before_quorlan("case $1 in --start=a) sleep 600 ;; esac")
        with self.engine(a="stopped", b="stopped") as engine:
            run = self.spawn("start-module", "a", start_new_session=True)
            engine.await_request("debug")
            os.killpg(run.pid, signal.SIGKILL)
            run.wait()
            run.stdout.close()
            self.assertEqual("enabled", self.debug_mode())
            self.assert_ends(0, "start-module", "b", "5")
            self.assert_left_alone()


class Waiting(RecipeTest):
    def test_wait_for_module_until_somebody_starts_it(self):
        with self.engine(valve=stopped(0.5)) as engine:
            run = self.spawn("wait-for-module", "valve", "30")
            engine.await_request("list")
            self.assert_ends(0, "start-module", "valve")
            self.assertEqual("", self.finish(run))
            self.assertEqual(0, run.returncode)

    def test_wait_for_module_while_the_engine_is_away(self):
        run = self.spawn("wait-for-module", "valve", "30")
        with self.engine(valve="running"):
            output = self.finish(run)
        self.assertEqual(0, run.returncode, output)

    def test_wait_for_module_in_vain(self):
        with self.engine(valve="stopped"):
            self.assertIn("doesn't run after 1 seconds: stopped",
                          self.assert_ends(124, "wait-for-module", "valve", "1"))
        self.assertIn("Failed to connect", self.assert_ends(124, "wait-for-module", "valve", "1"))

    def test_module_settles(self):
        with self.engine(a="running", b="stopped", c="starting"):
            self.assert_ends(0, "module-settles", "a", "0")
            self.assertIn("b is stopped", self.assert_ends(2, "module-settles", "b", "5"))
            self.assertIn("c is starting", self.assert_ends(124, "module-settles", "c", "1"))
            self.assertIn("doesn't know d", self.assert_ends(1, "module-settles", "d", "1"))
        self.assert_ends(69, "module-settles", "a", "1")

    def test_module_settles_only_where_it_stays(self):
        """A restart may pass through "stopped"."""
        with self.engine(control=True, valve="stopped") as engine:
            run = self.spawn("module-settles", "valve", "30")
            engine.await_request("list")
            engine.control("state valve starting")
            engine.await_request("list", 3)
            engine.control("state valve running")
            output = self.finish(run)
            self.assertEqual(0, run.returncode, output)

    def test_wrong_command_lines(self):
        for recipe in ["wait-for-module", "module-settles"]:
            for arguments in [[], ["valve"], ["valve", "x"], ["valve", ""], ["a-b", "600"]]:
                with self.subTest([recipe, *arguments]):
                    self.assertIn("usage: ", self.assert_ends(78, recipe, *arguments))


if __name__ == "__main__":
    recipes.main()
