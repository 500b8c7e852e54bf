"""Checks the manual page against the tool: its options, its exit statuses, its form."""

import os
import pathlib
import re
import shlex
import unittest

import support

PAGE = support.SOURCE / "docs/man/quorlan.1"


def plain(roff):
    """A line of the page without its macro, fonts and escapes."""
    roff = re.sub(r"\\f[BIR]", "", roff).replace("\\-", "-")
    macro, _, words = roff.partition(" ")
    return "".join(shlex.split(words)) if macro.startswith(".") else roff


def section(title):
    text = PAGE.read_text()
    found = re.search(rf'^\.SH "?{title}"?\n(.*?)(?=^\.SH |\Z)', text, re.M | re.S)
    return found.group(1)


def tags(title):
    """The texts that head the paragraphs of a section."""
    return [plain(tag) for tag in re.findall(r"^\.TP\n(.*)$", section(title), re.M)]


def option(text):
    """(short, long, argument) of "-s<module>, --start=<module>" and of the page's own form."""
    form = r"(?:-(\w)(?: ?<?(\w+)>?)?, )?--([\w-]+)(?:=<?(\w+)>?)?$"
    short, argument, full, same_argument = re.match(form, text).groups()
    assert short is None or argument == same_argument, text
    return short, full, same_argument


class ManualPage(unittest.TestCase):
    def test_names_the_options_of_the_help_screen_and_no_others(self):
        help_screen = support.run([support.QUORLAN, "--help"]).stdout
        listed = re.findall(r"^(-[^\s,]+(?:, --\S+)?)", help_screen, re.M)
        self.assertEqual(sorted(map(option, listed), key=str),
                         sorted(map(option, tags("OPTIONS")), key=str))

    def test_names_every_exit_status_that_the_code_can_produce(self):
        self.assertEqual(statuses_in_the_code(), {int(t) for t in tags("EXIT STATUS")
                                                  if t.isdigit()})

    def test_says_the_statuses_that_the_tool_ends_with(self):
        named = tags("EXIT STATUS")
        for expected, engine, arguments in [
                ("0", ["--fault=none"], ["--list"]),
                ("0", None, ["--help"]),
                ("0", None, ["stray"]),
                ("64", None, []),
                ("69", None, ["--list"]),
                ("76", None, ["--start=pump1"]),
                ("76", ["--fault=garbage"], ["--list"]),
                ("78", None, ["--st=pump1"]),
        ]:
            with self.subTest(engine=engine, arguments=arguments):
                if engine is None:
                    ended = support.run([support.QUORLAN, *arguments])
                else:
                    with support.Engine(*[a for a in engine if a != "--fault=none"]):
                        ended = support.run([support.QUORLAN, *arguments])
                self.assertEqual(expected, str(ended.returncode), ended.stdout + ended.stderr)
                self.assertIn(expected, named)

    def test_is_clean_for_mandoc(self):
        self.assert_silent(["mandoc", "-Tlint", PAGE])

    def test_is_clean_for_groff(self):
        self.assert_silent(["groff", "-ww", "-man", "-Tutf8", "-z", PAGE])

    def test_is_installed_where_man_looks(self):
        installed = support.INSTALLED / "share/man/man1/quorlan.1"
        self.assertEqual(PAGE.read_text(), installed.read_text())

    def assert_silent(self, command):
        ended = support.run(command)
        self.assertEqual((0, "", ""), (ended.returncode, ended.stdout, ended.stderr))


def statuses_in_the_code():
    """The values of the EXIT_ names that the sources use, and what POCO's run() adds."""
    names = {"EXIT_SOFTWARE"}
    for folder in ["app", "engine", "commands", "term"]:
        for file in (support.SOURCE / folder).glob("*.cpp"):
            names.update(re.findall(r"\bEXIT_[A-Z]+\b", file.read_text()))
    header = pathlib.Path(os.environ["POCO_INCLUDES"], "Poco/Util/Application.h").read_text()
    values = dict(re.findall(r"\b(EXIT_[A-Z]+)\s*=\s*(\d+)", header))
    return {int(values[name]) for name in names}


if __name__ == "__main__":
    support.main()
