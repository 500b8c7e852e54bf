"""Checks the manual page against the tool: its options, its exit statuses, its form.

diagnostics_test.py checks the messages, documents_test.py the examples.
"""

import json
import os
import pathlib
import re
import shlex
import unittest

import documents_test
import raw_peer
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


def run_in_debug_mode(*words):
    """(command words that the engine received, the finished run)."""
    status = {"safeModeEnabled": False, "debugModeEnabled": True, "state": "s", "version": "v"}
    reply = {"resultCode": 0, "description": "ok", "services": [], "modules": [], **status}
    with raw_peer.Peer(json.dumps(reply).encode()) as engine:
        ended = support.run([support.QUORLAN, *words])
    return [json.loads(request) for request in engine.requests], ended


def effect_of_a_single_dash(name, *argument):
    """What the page has to say of "-name argument"."""
    requests, ended = run_in_debug_mode(f"-{name}", *argument)
    meant_requests, meant = run_in_debug_mode(f"--{name}", *argument)
    if ended.returncode != 0:
        assert not requests
        return f"rejected, exit status {ended.returncode}"
    if (requests, ended.stdout) == (meant_requests, meant.stdout):
        return f"--{name}"
    return f"--{requests[-1]['command']}={requests[-1]['module']}"


class ManualPage(unittest.TestCase):
    maxDiff = None

    def test_names_the_options_of_the_help_screen_and_no_others(self):
        help_screen = support.run([support.QUORLAN, "--help"]).stdout
        listed = re.findall(r"^(?:-\w.*, )?--\S+", help_screen, re.M)
        self.assertEqual(sorted(map(option, listed), key=str),
                         sorted(map(option, tags("OPTIONS")), key=str))

    def test_says_what_a_long_name_after_a_single_dash_does(self):
        table = re.search(r"^written\t.*\n_\n(.*?)^\.TE", section("CAVEATS"), re.M | re.S).group(1)
        table = table.replace("\\-", "-")
        effects = {}
        for _, name, argument in map(option, tags("OPTIONS")):
            words = [name, *{"module": ["valve"], "enable": ["true"]}.get(argument, [])]
            effects["-" + " ".join(words)] = effect_of_a_single_dash(*words)
        self.assertEqual(effects, dict(line.split("\t") for line in table.splitlines()))

    def test_says_how_a_long_name_after_a_single_dash_gets_its_argument(self):
        for word, command in [("-start=valve", "start"), ("-star=valve", "start"),
                              ("-sta=valve", "start"), ("-re=valve", "restart")]:
            with self.subTest(word):
                self.assertEqual({"command": command, "module": "valve"},
                                 run_in_debug_mode(word)[0][-1])
        for word in ["-start", "-star"]:
            with self.subTest(word):
                requests, ended = run_in_debug_mode(word, "valve")
                self.assertEqual(([], 78), (requests, ended.returncode))

    def test_says_which_commands_need_debug_mode(self):
        said, checking = [], []
        for entry in section("OPTIONS").split("\n.TP\n")[1:]:
            _, name, argument = option(plain(entry.split("\n")[0]))
            if argument == "module":
                said += [name] if "Needs debug mode." in entry else []
                checking += [name] if len(run_in_debug_mode(f"--{name}=valve")[0]) == 2 else []
        self.assertEqual(checking, said)

    def test_has_the_sections_in_their_usual_order(self):
        self.assertEqual(["NAME", "SYNOPSIS", "DESCRIPTION", "CONCEPTS", "OPTIONS", "EXIT STATUS",
                          "DIAGNOSTICS", "ENVIRONMENT", "NOTES", "CAVEATS", "EXAMPLES", "SEE ALSO"],
                         re.findall(r'^\.SH "?([^"\n]+)', PAGE.read_text(), re.M))

    def test_names_every_exit_status_that_the_code_can_produce(self):
        self.assertEqual(statuses_in_the_code(), {int(t) for t in tags("EXIT STATUS")
                                                  if t.isdigit()})

    def test_has_a_script_that_prints_a_state_or_why_there_is_no_list(self):
        [script] = [block.text for block in documents_test.blocks(PAGE, "") if block.is_script()]
        path = f"{pathlib.Path(support.QUORLAN).parent}:/usr/bin:/bin"

        def outcome():
            ended = support.run(["sh", "-c", script], env={"PATH": path})
            return ended.returncode, ended.stdout, ended.stderr

        def listing(*states):
            modules = [{"name": name, "state": state, "version": "1"} for name, state in states]
            return raw_peer.Peer(
                json.dumps({"resultCode": 0, "services": [], "modules": modules}).encode())

        with support.Engine():
            self.assertEqual((0, "running\n", ""), outcome())
        with listing(("pump1x", "stopped"), ("pump1", "fifteen--chars-"), ("pump", "failed")):
            self.assertEqual((0, "fifteen--chars-\n", ""), outcome())
        with listing(("pump1", "not  yet"), ("x" * 30, "stopped")):
            self.assertEqual((0, "not  yet\n", ""), outcome())
        with support.Engine("--fault=error-code"):
            self.assertEqual((6, "", "Refused on purpose\n"), outcome())
        self.assertEqual((69, "", "Failed to connect to Vantrel at 127.0.0.1:7777; "
                                  "Connection refused\n"), outcome())

    def test_is_clean_for_mandoc(self):
        self.assert_silent(["mandoc", "-Tlint", "-Wwarning", PAGE])

    def test_is_clean_for_groff(self):
        self.assert_silent(["groff", "-t", "-ww", "-man", "-Tutf8", "-z", PAGE])

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
