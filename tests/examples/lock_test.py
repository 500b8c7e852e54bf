"""with-debug-mode: the lock, whoever had it before, and what is left behind."""

import os
import pathlib
import random
import signal
import subprocess
import time

import recipes
from recipes import RecipeTest

ANSWERS = '#!/bin/sh\necho "Debug mode:    enabled"\n'


def process(pid):
    """How the lock names a process."""
    stat = pathlib.Path(f"/proc/{pid}/stat").read_text().rpartition(")")[2].split()
    return f"{pid}.{stat[19]}"


class Lock(RecipeTest):
    def setUp(self):
        super().setUp()
        (self.programs / "quorlan").unlink()
        self.put("quorlan", ANSWERS)
        self.lock = self.run_folder / "debug-mode"
        self.me = process(os.getpid())
        ended = subprocess.Popen(["true"])
        self.ended = process(ended.pid)
        ended.wait()

    def links(self, **texts):
        """Makes the folder, and in it links with these texts; "lock" is the lock."""
        self.run_folder.mkdir(0o700)
        for name, text in texts.items():
            os.symlink(text, self.run_folder / name.replace("lock", "debug-mode"))

    def assert_had(self, *left_over):
        self.assertEqual("done\n", self.assert_ends(0, "with-debug-mode", "0", "echo", "done"))
        self.assertEqual(sorted(left_over), sorted(os.listdir(self.run_folder)))

    def assert_not_had(self, reason):
        self.assertIn(reason, self.assert_ends(75, "with-debug-mode", "0", "echo", "done"))

    def test_free_lock(self):
        self.assert_had()
        self.assertEqual(0o700, self.run_folder.stat().st_mode & 0o777)
        self.assert_had()

    def test_lock_of_a_running_process(self):
        self.links(lock=self.me)
        self.assert_not_had(f"was not free within 0 seconds: {self.me}")
        self.assertEqual(self.me, os.readlink(self.lock))

    def test_lock_that_comes_free_in_time(self):
        self.links(lock=self.me)
        run = self.spawn("with-debug-mode", "30", "true")
        self.lock.unlink()
        output = self.finish(run)
        self.assertEqual(0, run.returncode, output)

    def test_lock_of_a_process_that_has_ended(self):
        self.links(lock=self.ended)
        self.assert_had()

    def test_lock_of_a_process_that_nobody_has_waited_for(self):
        zombie = subprocess.Popen(["true"], stdout=subprocess.PIPE)
        text = process(zombie.pid)
        zombie.stdout.read()
        self.links(lock=text)
        self.assertEqual("done\n", self.assert_ends(0, "with-debug-mode", "5", "echo", "done"))
        zombie.wait()
        zombie.stdout.close()

    def test_lock_of_a_process_whose_number_is_used_again(self):
        self.links(lock=f"{os.getpid()}.1")
        self.assert_had()

    def test_process_with_a_confusing_name(self):
        name = "a) S 1 2 (b"
        self.put(name, '#!/bin/sh\nread -r _\n')
        confusing = subprocess.Popen([self.programs / name], stdin=subprocess.PIPE)
        while f"({name})" not in pathlib.Path(f"/proc/{confusing.pid}/stat").read_text():
            time.sleep(0.01)
        self.links(lock=process(confusing.pid))
        self.assert_not_had("was not free")
        confusing.communicate()

    def test_lock_that_one_who_ended_too_was_taking_over(self):
        self.links(lock=self.ended, **{f"lock.{self.ended}": f"{os.getpid()}.1",
                                       f"lock.{os.getpid()}.1": f"{os.getpid()}.2"})
        self.assert_had()

    def test_lock_that_somebody_is_taking_over(self):
        self.links(lock=self.ended, **{f"lock.{self.ended}": self.me})
        self.assert_not_had("was not free")
        self.assertEqual(self.ended, os.readlink(self.lock))

    def test_links_that_somebody_planted_are_not_followed(self):
        target = self.folder / "target"
        target.mkdir()
        for text in [str(target), f"{target}/file", "../target", "x"]:
            with self.subTest(text):
                self.run_folder.mkdir(0o700, exist_ok=True)
                os.symlink(text, self.lock)
                self.assert_not_had("was not free")
                self.assertEqual([], os.listdir(target))
                self.assertEqual(["debug-mode"], os.listdir(self.run_folder))
                self.lock.unlink()

    def test_folder_that_is_not_for_its_owner_alone(self):
        self.run_folder.mkdir()
        self.run_folder.chmod(0o777)
        self.assert_not_had("is not a folder for its owner alone")
        self.run_folder.rmdir()
        (self.folder / "elsewhere").mkdir(0o700)
        self.run_folder.symlink_to("elsewhere")
        self.assert_not_had("is not a folder for its owner alone")
        self.run_folder.unlink()
        self.run_folder.write_text("")
        self.assert_not_had("is not a folder for its owner alone")

    def test_wrong_command_lines(self):
        for arguments in [[], ["5"], ["x", "true"], ["", "true"], ["-1", "true"]]:
            with self.subTest(arguments):
                self.assertIn("usage: ", self.assert_ends(78, "with-debug-mode", *arguments))


class DebugMode(RecipeTest):
    def test_command_runs_in_debug_mode(self):
        with self.engine():
            output = self.assert_ends(0, "with-debug-mode", "1", "quorlan", "-e")
            self.assertIn("Debug mode:    enabled", output)
            self.assert_left_alone()

    def test_debug_mode_that_is_on_stays_on(self):
        with self.engine(debug=True) as engine:
            self.assert_ends(0, "with-debug-mode", "1", "true")
            self.assertEqual("enabled", self.debug_mode())
            self.assertEqual(0, engine.requests("debug"))

    def test_status_is_that_of_the_command(self):
        with self.engine():
            self.assert_ends(9, "with-debug-mode", "1", "sh", "-c", "exit 9")
            self.assert_ends(127, "with-debug-mode", "1", "no-such-command")
            self.assert_left_alone()

    def test_engine_that_is_away(self):
        self.assertIn("Failed to connect", self.assert_ends(69, "with-debug-mode", "1", "true"))
        self.assertEqual([], os.listdir(self.run_folder))

    def test_engine_that_takes_too_long(self):
        self.put_before_quorlan("exec sleep 600")
        text = (self.programs / "with-debug-mode").read_text()
        self.put("with-debug-mode", text.replace("timeout 10 ", "timeout 1 "))
        self.assert_ends(124, "with-debug-mode", "1", "true")
        self.assertEqual([], os.listdir(self.run_folder))

    def test_signals(self):
        with self.engine() as engine:
            for number in [signal.SIGINT, signal.SIGTERM, signal.SIGHUP]:
                with self.subTest(number):
                    already = engine.requests("debug")
                    run = self.spawn("with-debug-mode", "1", "sleep", "1")
                    engine.await_request("debug", already + 1)
                    run.send_signal(number)
                    output = self.finish(run)
                    self.assertEqual(143, run.returncode, output)
                    self.assert_left_alone()

    def test_signal_before_the_command(self):
        """The first thing that it runs waits until the signal has been sent."""
        self.put_before_quorlan('[ -e "$HOME/sent" ] || read -r _ <"$HOME/fifo"')
        os.mkfifo(self.folder / "fifo")
        with self.engine():
            run = self.spawn("with-debug-mode", "1", "echo", "done")
            with open(self.folder / "fifo", "w"):  # once it is open for reading, too
                run.terminate()
                (self.folder / "sent").write_text("")
            self.assertNotIn("done", self.finish(run))
            self.assertEqual(143, run.returncode)
            self.assert_left_alone()

    def test_second_signal_while_it_ends(self):
        self.put_before_quorlan("case $1 in --debug=false) kill -TERM $(cat $HOME/pid) ;; esac")
        with self.engine():
            self.assert_ends(143, "with-debug-mode", "1", "sh", "-c",
                             'echo $PPID >"$HOME/pid"; kill -TERM $PPID')
            self.put_before_quorlan("")
            self.assert_left_alone()


class Stress(RecipeTest):
    RUNS = int(os.environ.get("STRESS_RUNS", 150))
    AT_ONCE = 6

    def test_never_two_at_once_and_none_stuck_though_some_are_killed(self):
        """Each run writes to a log when it comes in and when it goes out. Between the two nobody else may
        come in, unless the first was killed: then it never writes again."""
        (self.programs / "quorlan").unlink()
        self.put("quorlan", ANSWERS)
        for tool in ["ln", "readlink", "rm"]:  # more time for all that may come in between
            real = self.run_recipe("which", tool)[1].strip()
            self.put(tool, f'#!/bin/sh\nsleep "0.0$(($$ % 4))"\n{real} "$@"\nstatus=$?\n'
                           f'sleep "0.0$(($$ / 2 % 4))"\nexit $status\n')
        critical = 'echo "in $$" >>log; sleep 0.02; echo "out $$" >>log'
        chance = random.Random(os.getpid())
        started, running, killed = 0, {}, 0
        while started < self.RUNS or running:
            while started < self.RUNS and len(running) < self.AT_ONCE:
                run = self.spawn("with-debug-mode", "60", "eval", critical)
                kill_at = time.monotonic() + chance.uniform(0, 1) if chance.random() < 0.5 else None
                running[run] = kill_at
                started += 1
            for run, kill_at in list(running.items()):
                if run.poll() is not None:
                    output = run.stdout.read()
                    run.stdout.close()
                    self.assertIn(run.returncode, [0, -signal.SIGKILL], output)
                    del running[run]
                elif kill_at and time.monotonic() > kill_at:
                    run.kill()
                    killed += 1
                    running[run] = None
            time.sleep(0.01)
        self.assertGreater(killed, 0)

        inside, gone = None, set()
        for line in (self.folder / "log").read_text().splitlines():
            what, pid = line.split()
            self.assertNotIn(pid, gone, "it goes on though another came in")
            if what == "in":
                if inside:
                    gone.add(inside)
                inside = pid
            else:
                inside = None
        self.assertLessEqual(len(gone), killed)
        self.assert_ends(0, "with-debug-mode", "60", "true")
        self.assertFalse(os.path.lexists(self.run_folder / "debug-mode"))


if __name__ == "__main__":
    recipes.main()
