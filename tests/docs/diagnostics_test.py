"""Produces every message of the manual page's DIAGNOSTICS and compares it, exactly.

A case says which engine there is, what is run and all that it prints. The page may list no message
that no case produces, and no case may produce one that the page doesn't list.
"""

import concurrent.futures
import contextlib
import os
import re
import subprocess
import typing
import unittest

import raw_peer
import support

PAGE = support.SOURCE / "docs/man/quorlan.1"

REFUSED = "Failed to connect to Vantrel at 127.0.0.1:7777; Connection refused\n"
NO_NETWORK = "Failed to connect to Vantrel at 127.0.0.1:7777; Net Exception\n"
NO_ANSWER = "Vantrel failed to respond in time: 127.0.0.1:7777; Timeout\n"
DEBUG_MODE = "Debug mode is disabled, set debugmode first with -d option\n"
BAD_REPLY = "Failed to parse reply due to "
END_OF_TEXT = BAD_REPLY + "JSON Exception: unexpected end of text\n"
MISSING = BAD_REPLY + "Invalid access: Can not convert empty value.\n"
NO_MODULE = "does not match regular expression [0-9A-Za-z]{1,16}$\n"
NO_MEMORY = "terminate called after throwing an instance of 'std::bad_alloc'\n" \
            "  what():  std::bad_alloc\n"
NO_PATTERN_MEMORY = "Error in regular expression: failed to get memory (at offset 18)\n"
NO_COMMAND = "No command specified\n"
SELF_REFERENCE = "${application.baseName}.link"
CIRCULAR = "Circular reference: Too many property references encountered\n"

# What is no report, although it is on standard output.
ON_OUTPUT = [REFUSED, NO_NETWORK, NO_ANSWER, DEBUG_MODE, NO_COMMAND]

# Like POCO's name of a class: the compiler's.
ARRAY, OBJECT = (f"N4Poco9SharedPtrINS_4JSON{kind}ENS_16ReferenceCounterE"
                 "NS_13ReleasePolicyIS2_EEEE" for kind in ["5Array", "6Object"])

OK = b'{"description":"ok","resultCode":0}'
TITLE = f"Vantrel status\n{'-' * 30}\n"


class Case(typing.NamedTuple):
    engine: typing.Any  # a fault of the simulator, an engine, a reply, or None
    command_line: str
    status: int
    out: str
    err: str


def bad(reply, reason, command_line="--status=valve", out=""):
    """A case of an engine that sends this reply, for the reason that the tool gives."""
    return Case(reply, command_line, 76, out, f"{BAD_REPLY}{reason}\n")


def code(value, reason):
    reply = b'{"description":"ok","resultCode":' + value + b"}"
    return bad(reply, reason, out="ok\n")


CASES = [
    # The engine could not be reached.
    Case(None, "--status=valve", 69, REFUSED, ""),
    Case(None, "--start=valve", 76, REFUSED + DEBUG_MODE, END_OF_TEXT),

    # The faults of the simulator.
    Case("close", "--status=valve", 76, "", END_OF_TEXT),
    Case("silent", "--status=valve", 76, "", END_OF_TEXT),
    Case("stay-open", "--status=valve", 76, "", END_OF_TEXT),
    Case("reset", "--status=valve", 76, "", END_OF_TEXT),
    bad("half", "JSON Exception: unterminated string literal"),
    bad("garbage", "JSON Exception: unexpected byte 'T' in value"),
    bad("wrong-type", f"Bad cast exception: Can not convert {ARRAY} to {OBJECT}."),
    Case("no-result-code", "--status=valve", 76, "valve is stopped\n", MISSING),
    Case("no-result-code", "--start=valve", 0, DEBUG_MODE, ""),
    Case("error-code", "--engine-status", 76, TITLE + "Safe mode:     ", MISSING),
    Case("error-code", "--start=valve", 76, DEBUG_MODE, MISSING),

    # What the engine sends, or leaves out.
    bad(OK[:-1], "JSON Exception: expected ',' or '}' after member value"),
    bad(OK[:14], "JSON Exception: expected ':' after member name"),
    bad(OK.replace(b"ok", b"\xe9t\xe9"), "JSON Exception: invalid UTF-8 text"),
    bad(OK.replace(b"ok", b"\xc0\xaf"), "JSON Exception: invalid UTF-8 character"),
    bad(OK.replace(b"ok", b"\x1b"), "JSON Exception: unescaped control character in string"),
    bad(OK + b"x", "JSON Exception: Excess characters found after JSON end."),
    bad(b"[" * 129, "JSON Exception: Maximum depth exceeded"),
    bad(b'{"x":tru}', "JSON Exception: expected 'e' instead of byte '}'"),
    bad(b'"text"', "JSON Exception: Attempt to set value on an empty stack"),
    bad(b'{"resultCode":0}', "Null pointer", "--list"),
    code(b"[]", "Bad cast exception"),
    code(b'""', "Syntax error: Not a valid integer"),
    code(b'"x"', "Syntax error: Not a valid integer: x"),
    code(b"2147483648", "Out of range: Value too large."),
    code(b"-2147483649", "Out of range: Value too small."),
    bad(b'{"x":99999999999999999999}',
        "Syntax error: Not a valid unsigned integer: 99999999999999999999"),
    bad(b'{"x":1e999}', "Syntax error: Not a valid floating-point number: 1e999"),

    # Nothing was sent.
    Case("", "--start=valve", 0, DEBUG_MODE, ""),
    Case(None, "list", 0, "", ""),

    # The command line is wrong.
    Case(None, "--bogus", 78, "", "Unknown option specified: bogus\n"),
    Case(None, "--st=valve", 78, "", "Ambiguous option specified: st=valve\n"),
    Case(None, "--start", 78, "", "Missing option argument: start requires <module>\n"),
    Case(None, "-d", 78, "", "Missing option argument: debug requires <enable>\n"),
    Case(None, "-el", 78, "", "Unexpected option argument: el\n"),
    Case(None, "--start=no-name", 78, "",
         "Invalid option argument: argument for start " + NO_MODULE),
    Case(None, "--debug=on", 78, "", "Invalid option argument: argument for debug does not match "
                                     "regular expression ^(?i)(true|false)$\n"),
    Case(OK, "--status=valve --pid=valve", 78, "ok\n", "Incompatible options: pid\n"),
    Case(None, "--colors --colors", 78, "", "Option must not be given more than once: colors\n"),
]


class Message(typing.NamedTuple):
    """A message as the page lists it."""
    tag: str
    pattern: str
    stream: str
    statuses: set


def pattern_of(tag):
    """A regular expression for a tag of the page: what is bold is literal, what is italic varies."""
    macro, words = tag.split(" ", 1)
    if words[0] == words[-1] == '"':
        words = words[1:-1]
    fonts = re.split(r"\\f([BIR])", macro[1] + "\\f" + macro[1] + words)[1:]
    pattern = ""
    for font, text in zip(fonts[::2], fonts[1::2]):
        text = text.replace(r"\-", "-").replace(r"\(aq", "'").replace(r"\~", " ")
        pattern += ".+" if font == "I" else re.escape(text)
    return pattern


def statuses_in(text):
    found = re.findall(r"\bStatus (\d+)(?:, or (\d+))?", text)
    return {int(status) for pair in found for status in pair if status}


def listed_messages():
    section = re.search(r"^\.SH DIAGNOSTICS\n(.*?)^\.SH ", PAGE.read_text(), re.M | re.S).group(1)
    for part in section.split("\n.SS ")[1:]:
        intro, *entries = part.split("\n.TP\n")
        stream = re.search(r"On standard (output|error)", intro).group(1)
        prefix = re.search(r'after\n\.RB \\\(lq "(.*)" ', intro)
        for entry in entries:
            tags = re.match(r"(.*(?:\n\.TQ\n.*)*)\n", entry).group(1).split("\n.TQ\n")
            for tag in tags:
                # Italic as a whole, it is no message but describes one that is missing.
                pattern = "" if tag.startswith(".I ") else pattern_of(tag)
                yield Message(tag, re.escape(prefix.group(1) if prefix else "") + pattern, stream,
                              statuses_in(entry) or statuses_in(intro))


@contextlib.contextmanager
def engine_of(case):
    if case.engine is None:
        yield
        return
    engine = case.engine
    if isinstance(engine, str):
        engine = support.Engine(*([f"--fault={engine}"] if engine else []))
    elif isinstance(engine, bytes):
        engine = raw_peer.Peer(engine)
    with engine:
        yield


def outcome(command, **keywords):
    """(status as a shell has it, standard output, standard error)."""
    ended = subprocess.run(command, capture_output=True, timeout=raw_peer.SYSTEM_PATIENCE, check=False,
                           stdin=subprocess.DEVNULL, **keywords)
    status = ended.returncode if ended.returncode >= 0 else 128 - ended.returncode
    return status, ended.stdout.decode(errors="replace"), ended.stderr.decode(errors="replace")


class Diagnostics(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        self.messages = list(listed_messages())
        self.produced = {message.tag: set() for message in self.messages}

    def assert_prints(self, expected, actual):
        self.assertEqual(expected, actual)
        self.note(*actual)

    def note(self, status, out, err):
        """Remembers which messages these are."""
        lines = [(stream, line) for stream, text in [("output", out), ("error", err)]
                 for line in text.split("\n") if line] or [("output", "")]
        for stream, line in lines:
            for message in self.messages:
                if stream == message.stream and re.fullmatch(message.pattern, line):
                    self.produced[message.tag].add(status)
                    break
            else:
                if stream == "error" or line + "\n" in ON_OUTPUT:
                    self.fail(f"the manual page doesn't list: {line}")

    def test_every_message_is_listed_with_its_status_and_every_listed_one_exists(self):
        for case in CASES:
            with self.subTest(engine=case.engine, command_line=case.command_line), engine_of(case):
                self.assert_prints((case.status, case.out, case.err),
                                   outcome([support.QUORLAN, *case.command_line.split()]))
        self.while_nobody_accepts()
        self.without_arguments()
        self.by_an_unusual_name()
        self.without_a_network()
        self.with_little_memory()
        self.with_failing_allocations()
        for message in self.messages:
            with self.subTest(message.tag):
                self.assertEqual(message.statuses, self.produced[message.tag])

    def while_nobody_accepts(self):
        # Both at once, as they may take minutes.
        commands = [[support.QUORLAN, "--status=valve"], [support.QUORLAN, "--start=valve"]]
        raw_peer.shorten_connect_timeout()
        with support.Engine("--fault=no-accept"), concurrent.futures.ThreadPoolExecutor() as pool:
            plain, gated = pool.map(outcome, commands)
        self.assert_prints((69, NO_ANSWER, ""), plain)
        self.assert_prints((76, NO_ANSWER + DEBUG_MODE, END_OF_TEXT), gated)

    def without_arguments(self):
        usage = outcome([support.QUORLAN, "--help"])[1]
        self.assert_prints((64, NO_COMMAND + usage, ""), outcome([support.QUORLAN]))

    def by_an_unusual_name(self):
        def run(name, *arguments, **keywords):
            return outcome([name, *arguments], executable=support.QUORLAN, **keywords)

        self.assert_prints((78, "", "Not found: PATH\n"), run("quorlan", "--list", env={}))
        self.assert_prints((78, "", CIRCULAR), run(SELF_REFERENCE, "--help"))
        self.assert_prints((70, NO_COMMAND, CIRCULAR), run(SELF_REFERENCE))

    def without_a_network(self):
        network = ["unshare", "--map-root-user", "--net"]
        possible = outcome([*network, "true"])[0] == 0
        for command, expected in [("--status=valve", (69, NO_NETWORK, "")),
                                  ("--start=valve", (76, NO_NETWORK + DEBUG_MODE, END_OF_TEXT))]:
            actual = outcome([*network, support.QUORLAN, command]) if possible else expected
            self.assert_prints(expected, actual)

    def with_little_memory(self):
        """Which limit leads to what depends on the machine, so many are tried."""
        expected = {(76, "", BAD_REPLY + "JSON Exception: out of memory\n"), (134, "", NO_MEMORY)}
        seen = set()
        reply = b'{"description":"' + b"x" * (16 << 20) + b'","resultCode":0}'
        # A build with sanitizers doesn't start with a limit.
        if outcome(["prlimit", f"--as={1 << 30}", support.QUORLAN, "--version"])[0] != 0:
            seen = expected
        for mebibytes in range(20, 200, 4):
            if not expected <= seen:
                with raw_peer.Peer(reply):
                    seen.add(outcome(["prlimit", f"--as={mebibytes << 20}", support.QUORLAN,
                                      "--status=valve"]))
        self.assertLessEqual(expected, seen)
        for ended in expected:
            self.note(*ended)

    def with_failing_allocations(self):
        """Which allocation leads to what depends on the machine, so many are tried, one at a time."""
        no_arguments = {(78, "", "std::bad_alloc\n"), (70, NO_COMMAND, "std::bad_alloc\n")}
        checking = {(78, "", NO_PATTERN_MEMORY)}
        library = os.environ["ALLOCATION_FAULTS"]
        for arguments, expected in [([], no_arguments), (["--start=valve"], checking)]:
            seen = set() if library else expected
            for nth in range(350, 1000):  # the earlier ones are made while the program starts
                if expected <= seen:
                    break
                seen.add(outcome([support.QUORLAN, *arguments], env={
                    "HOME": "/", "PATH": "/usr/bin:/bin", "LD_PRELOAD": library,
                    "FAULT_CALL": "malloc", "FAULT_NTH": str(nth), "FAULT_ERRNO": "12"}))
            self.assertLessEqual(expected, seen)
            for ended in expected:
                self.note(*ended)

    def test_every_sentence_of_the_code_is_in_the_manual_page(self):
        page = re.sub(".\b", "", support.run(["mandoc", "-Tutf8", "-Owidth=500", PAGE]).stdout)
        sentences = []
        for file in ["app/Quorlan.cpp", "engine/*.cpp", "commands/*.cpp"]:
            for path in support.SOURCE.glob(file):
                for statement in re.findall(r"std::c(?:out|err)\b[^;]*;", path.read_text()):
                    sentences += re.findall(r'"([^"]* [^"]*)"', statement)
        self.assertGreater(len(sentences), 6)
        for sentence in sentences:
            with self.subTest(sentence):
                self.assertTrue(sentence.strip() in page, "is not in the manual page")


if __name__ == "__main__":
    support.main()
