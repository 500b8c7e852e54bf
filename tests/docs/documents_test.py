"""Executes what the documents show and compares the output.

In Markdown, every block fenced as "console" is executed; in the manual page, every block between
.EX and .EE. A line that begins with "$ " is a command, "> " continues it, and the lines up to the
next command are its output, both streams as a terminal shows them. A block is one shell, so "$?"
and variables last from one command to the next. It has a fresh simulator of its own to talk to.

Comments directly before a block, "<!-- ... -->" or '.\\" ...', change that:

    engine: --fault=silent    the simulator's arguments; "none" for no engine
    varying: 0.1.1 | Mar 14   texts in the block that may differ, word by word

Every character of the output is compared, also spaces at the ends of lines and empty lines. As nobody
sees such spaces, they have to be followed by "\\&" in the manual page, which stands for nothing; in
Markdown, show the output through "cat -e". Blocks fenced as "sh" are not run; the tests check their
syntax and that the scripts they name exist. manual_test.py runs the manual page's script, a block
that begins with "#!".
"""

import contextlib
import pathlib
import re
import tempfile
import unittest

import support

MANUAL = support.SOURCE / "docs/man/quorlan.1"
MARKDOWN = sorted([*support.SOURCE.glob("*.md"), *support.SOURCE.glob("docs/**/*.md"),
                   support.SOURCE / "tests/README.md"])

MARKER = "\x01"


class Block:
    def __init__(self, comments, text, line):
        self.comments = dict(re.findall(r"(engine|varying): (.*?) *(?:-->|$)", comments, re.M))
        self.text = text
        self.line = line

    def commands(self):
        """(command, expected output) in their order."""
        for part in re.split(r"^\$ ", self.text, flags=re.M)[1:]:
            lines = part.split("\n")
            count = 1
            while count < len(lines) and lines[count].startswith("> "):
                count += 1
            yield "\n".join([lines[0], *(line[2:] for line in lines[1:count])]), lines[count:]

    def is_script(self):
        return self.text.startswith("#!")

    def engine(self):
        arguments = self.comments.get("engine", "")
        return contextlib.nullcontext() if arguments == "none" else support.Engine(*arguments.split())

    def pattern(self, expected):
        """A regular expression for the output, in which the varying texts may be others."""
        pattern = re.escape("\n".join(expected))
        for text in filter(None, self.comments.get("varying", "").split(" | ")):
            words = r"\ +".join(r"\S+" for _ in text.split())
            pattern = pattern.replace(re.escape(text), words)
        return pattern


def blocks(document, language):
    text = document.read_text()
    if document == MANUAL:
        form = r'((?:^\.\\" (?:engine|varying): [^\n]*\n)*)^\.EX\n(.*?)^\.EE'
    else:
        form = rf"((?:^<!-- (?:engine|varying): [^\n]* -->\n\n?)*)^```{language}\n(.*?)^```"
    for found in re.finditer(form, text, re.M | re.S):
        body = found.group(2)
        if document == MANUAL:
            body = body.replace("\\-", "-").replace("\\(aq", "'").replace("\\e", "\\")
            body = body.replace("\\&", "")
        yield Block(found.group(1), body, text.count("\n", 0, found.start(2)))


@contextlib.contextmanager
def reader_folder():
    """The source folder as a reader has it after building the release preset."""
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        for entry in support.SOURCE.iterdir():
            if entry.name != "build":
                (folder / entry.name).symlink_to(entry)
        for path, program in [("app/quorlan", support.QUORLAN),
                              ("sim/vantrel-sim", support.VANTREL_SIM)]:
            built = folder / "build/release" / path
            built.parent.mkdir(parents=True)
            built.symlink_to(program)
        yield folder


class Documents(unittest.TestCase):
    def execute(self, block):
        """The outputs of the block's commands, in their order."""
        commands = [command for command, _ in block.commands()]
        script = "".join(f"{command}\n{{ __status=$?; printf '{MARKER}'; (exit $__status); }}\n"
                         for command in commands)
        with reader_folder() as folder, block.engine():
            programs = f"{folder}/build/release/app:{folder}/build/release/sim"
            ended = support.run(["bash", "-c", "exec 2>&1\n" + script], cwd=folder,
                                env={"PATH": f"{programs}:/usr/bin:/bin", "LC_ALL": "C.UTF-8"})
        return ended.stdout.split(MARKER)[:len(commands)]

    def compare(self, document):
        found = [block for block in blocks(document, "console") if not block.is_script()]
        for block in found:
            with self.subTest(f"{document.relative_to(support.SOURCE)}:{block.line}"):
                outputs = self.execute(block)
                shown = list(block.commands())
                self.assertTrue(shown, "a block without a command")
                self.assertEqual(len(shown), len(outputs), "the shell ended early")
                for (command, expected), output in zip(shown, outputs):
                    if not re.fullmatch(block.pattern(expected), output):
                        self.assertEqual("\n".join(expected), output, f"\n$ {command}")
        return len(found)

    def test_the_manual_page_shows_what_the_tool_does(self):
        self.assertGreater(self.compare(MANUAL), 0)

    def test_the_markdown_documents_show_what_the_tool_does(self):
        self.assertGreater(sum(map(self.compare, MARKDOWN)), 0)

    def test_no_document_has_spaces_at_the_end_of_a_line(self):
        for document in [*MARKDOWN, MANUAL]:
            with self.subTest(str(document.relative_to(support.SOURCE))):
                self.assertEqual([], re.findall(r"^.* $", document.read_text(), re.M))

    def test_shell_snippets_are_sound_and_name_scripts_that_exist(self):
        for document in MARKDOWN:
            for block in blocks(document, "sh"):
                with self.subTest(f"{document.relative_to(support.SOURCE)}:{block.line}"):
                    checked = support.run(["sh", "-n", "-c", block.text])
                    self.assertEqual("", checked.stderr)
                    for script in re.findall(r"(?<![\w/])scripts/[\w-]+", block.text):
                        self.assertTrue((support.SOURCE / script).exists(), script)

    def test_links_inside_the_repository_lead_somewhere(self):
        for document in MARKDOWN:
            for target in re.findall(r"\]\(([^)#:]+)(?:#[^)]*)?\)", document.read_text()):
                with self.subTest(f"{document.relative_to(support.SOURCE)} -> {target}"):
                    self.assertTrue((document.parent / target).exists())

    def test_files_that_are_named_exist(self):
        for document in [*MARKDOWN, MANUAL]:
            for name in re.findall(r"\b(?:app|engine|commands|term|sim|tests|scripts|cmake|docs)"
                                   r"/[\w./-]+\.(?:cpp|h|md|json|py|txt|1)\b", document.read_text()):
                with self.subTest(f"{document.relative_to(support.SOURCE)}: {name}"):
                    self.assertTrue((support.SOURCE / name).exists())

    def test_the_text_in_the_packages_names_what_they_hold(self):
        text = (support.SOURCE / "docs/packages/README.md").read_text()
        self.assertNotIn("](", text)  # a link would lead out of the package
        named = re.findall(r"^\| `([^`]+)`", text, re.M)
        self.assertEqual(5, len(named))
        for name in named:
            with self.subTest(name):
                self.assertTrue((support.INSTALLED / name).exists())
        for name in ["docs/packages/README.md", "CHANGELOG.md"]:
            with self.subTest(name):
                self.assertIn(name, (support.SOURCE / "debian/quorlan.docs").read_text().split())
                self.assertIn(name, (support.SOURCE / "scripts/package").read_text())

    def test_the_architecture_page_names_what_the_code_has(self):
        code = "\n".join(path.read_text() for folder in ["app", "engine", "commands", "term", "sim"]
                         for path in sorted((support.SOURCE / folder).glob("*.*")))
        page = (support.SOURCE / "docs/architecture.md").read_text()
        for name in set(re.findall(r"`(\w*[a-z][A-Z]\w*)`", page)):
            with self.subTest(name):
                self.assertRegex(code, rf"\b{name}\b")


if __name__ == "__main__":
    support.main()
