"""What the document tests share: the programs under test and an engine of the test's own.

CTest runs them with the engine's address for themselves, and says where things are, through the
environment: QUORLAN, VANTREL_SIM, SOURCE_DIR and INSTALLED, the prefix of a trial installation.
"""

import os
import pathlib
import subprocess
import unittest

SOURCE = pathlib.Path(os.environ["SOURCE_DIR"])
QUORLAN = os.environ["QUORLAN"]
VANTREL_SIM = os.environ["VANTREL_SIM"]
INSTALLED = pathlib.Path(os.environ["INSTALLED"])

# Generous: they only keep a broken build from hanging, no test passes or fails by the clock.
PATIENCE = 240


class Engine:
    """A simulator that answers while the with-block runs."""

    def __init__(self, *arguments):
        self.arguments = arguments

    def __enter__(self):
        self.process = subprocess.Popen([VANTREL_SIM, *self.arguments], stdin=subprocess.DEVNULL,
                                        stdout=subprocess.DEVNULL, stderr=subprocess.PIPE,
                                        text=True)
        for line in self.process.stderr:
            if "listening" in line:
                return self
        raise AssertionError(f"{VANTREL_SIM} {self.arguments} did not start to listen")

    def await_request(self, command):
        """Returns once a request with this command was logged, after those awaited before."""
        for line in self.process.stderr:
            if f'"command":"{command}"' in line:
                return
        raise AssertionError(f"the simulator ended before a {command}")

    def __exit__(self, *_):
        self.process.terminate()
        self.process.stderr.read()
        self.process.wait(PATIENCE)
        self.process.stderr.close()


def run(command, **keywords):
    """The finished process of a command, its output as text."""
    return subprocess.run(command, capture_output=True, text=True, timeout=PATIENCE,
                          stdin=subprocess.DEVNULL, check=False, **keywords)


def main():
    unittest.main(verbosity=2)
