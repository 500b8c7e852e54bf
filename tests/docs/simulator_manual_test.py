"""Checks the simulator's manual page against the program: options, faults, statuses, examples."""

import os
import pathlib
import re
import tempfile
import unittest

import documents_test
import manual_test
import support

PAGE = support.SOURCE / "docs/man/vantrel-sim.1"
# What the page says is read by the functions for the tool's page.
manual_test.PAGE = documents_test.MANUAL = PAGE


def help_screen():
    return support.run([support.VANTREL_SIM, "--help"]).stdout


class ManualPage(unittest.TestCase):
    maxDiff = None

    def test_names_the_options_of_the_help_screen_and_no_others(self):
        listed = re.findall(r"^(-\S+(?: --\S+)?)", help_screen(), re.M)
        self.assertEqual(sorted(map(manual_test.option, listed), key=str),
                         sorted(map(manual_test.option, manual_test.tags("OPTIONS")), key=str))

    def test_has_the_faults_of_the_help_screen(self):
        listed = re.findall(r"^  (\S+) +(yes|no) +(.*)$", help_screen(), re.M)
        said = [(name.replace("\\-", "-"), carried_out,
                 re.sub(r"\\fI(\w+)\\fR", r"<\1>", text).replace("\\-", "-"))
                for name, carried_out, text in re.findall(r"^(\S+)\t(yes|no)\tT{\n(.*)\nT}$",
                                                          manual_test.section("FAULTS"), re.M)]
        self.assertGreater(len(listed), 10)
        self.assertEqual(listed, said)

    def test_names_the_control_commands_that_there_are(self):
        listed = re.search(r'^const Control::Command.*?^};',
                           (support.SOURCE / "sim/Control.cpp").read_text(), re.M | re.S).group()
        said = {tag.split()[0] for tag in manual_test.tags("CONTROL")}
        self.assertEqual(set(re.findall(r'{"([\w-]+)"', listed)), said)

    def test_names_every_exit_status_that_the_code_can_produce(self):
        names = {"EXIT_SOFTWARE"}
        for file in (support.SOURCE / "sim").glob("*.cpp"):
            names.update(re.findall(r"\bEXIT_[A-Z]+\b", file.read_text()))
        header = pathlib.Path(os.environ["POCO_INCLUDES"], "Poco/Util/Application.h").read_text()
        values = dict(re.findall(r"\b(EXIT_[A-Z]+)\s*=\s*(\d+)", header))
        named = manual_test.tags("EXIT STATUS")
        self.assertEqual({values[name] for name in names} | {"126", "127"}, set(named))

    def test_examples_show_what_happens(self):
        blocks = list(documents_test.blocks(PAGE, "console"))
        self.assertGreater(len(blocks), 2)
        for block in blocks:
            with self.subTest(line=block.line), tempfile.TemporaryDirectory() as folder:
                commands = list(block.commands())
                outputs = self.execute([command for command, _ in commands], folder)
                self.assertEqual([(command, "\n".join(expected).strip())
                                  for command, expected in commands],
                                 [(command, output.strip())
                                  for (command, _), output in zip(commands, outputs)])

    @staticmethod
    def execute(commands, folder):
        for program in [support.QUORLAN, support.VANTREL_SIM]:
            pathlib.Path(folder, pathlib.Path(program).name).symlink_to(program)
        script = "".join(f"{command}\n{{ __status=$?; printf '\\001'; (exit $__status); }}\n"
                         for command in commands)
        ended = support.run(["bash", "-c", "exec 2>&1\n" + script], cwd=folder,
                            env={"PATH": f"{folder}:/usr/bin:/bin", "LC_ALL": "C.UTF-8"})
        return ended.stdout.split("\1")

    def test_is_installed_with_the_simulator(self):
        for name, source in [("share/man/man1/vantrel-sim.1", PAGE),
                             ("share/doc/vantrel-sim/log-entry.json",
                              support.SOURCE / "docs/schemas/log-entry.json")]:
            with self.subTest(name):
                self.assertEqual(source.read_text(), (support.INSTALLED / name).read_text())
        self.assertTrue((support.INSTALLED / "bin/vantrel-sim").exists())
        self.assertFalse((support.INSTALLED / "share/doc/quorlan/schemas/log-entry.json").exists())

    def test_is_clean_for_mandoc_and_groff(self):
        for command in [["mandoc", "-Tlint", "-Wwarning", PAGE],
                        ["groff", "-t", "-ww", "-man", "-Tutf8", "-z", PAGE]]:
            with self.subTest(command):
                ended = support.run(command)
                self.assertEqual((0, "", ""), (ended.returncode, ended.stdout, ended.stderr))


if __name__ == "__main__":
    support.main()
