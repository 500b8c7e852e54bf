"""What the document tests share: the programs under test and an engine of the test's own.

CTest says where things are, through the environment: QUORLAN, VANTREL_SIM, SOURCE_DIR and
INSTALLED, the prefix of a trial installation.
"""

import ctypes
import fcntl
import os
import pathlib
import socket
import struct
import subprocess
import unittest

SOURCE = pathlib.Path(os.environ["SOURCE_DIR"])
QUORLAN = os.environ["QUORLAN"]
VANTREL_SIM = os.environ["VANTREL_SIM"]
INSTALLED = pathlib.Path(os.environ["INSTALLED"])

# Generous: they only keep a broken build from hanging, no test passes or fails by the clock.
PATIENCE = 60

_CLONE_NEWUSER = 0x10000000
_CLONE_NEWNET = 0x40000000
_SIOCSIFFLAGS = 0x8914
_IFF_UP = 1


def _unshare(flags):
    return ctypes.CDLL(None, use_errno=True).unshare(flags) == 0


def _enter_own_loopback():
    user, group = os.getuid(), os.getgid()
    if user == 0:
        entered = _unshare(_CLONE_NEWNET)
    else:
        entered = _unshare(_CLONE_NEWUSER | _CLONE_NEWNET)
        if entered:
            pathlib.Path("/proc/self/uid_map").write_text(f"{user} {user} 1")
            pathlib.Path("/proc/self/setgroups").write_text("deny")
            pathlib.Path("/proc/self/gid_map").write_text(f"{group} {group} 1")
    if entered:
        with socket.socket() as any_socket:
            fcntl.ioctl(any_socket, _SIOCSIFFLAGS, struct.pack("16sh14x", b"lo", _IFF_UP))
    return entered


def claim_engine_address():
    """The same as tests/support/PrivateNetwork.h does for the other tests, and with the same lock
    for the case that all have to share the real loopback."""
    if "QUORLAN_TESTS_SHARE_LOOPBACK" in os.environ or not _enter_own_loopback():
        folder = os.environ.get("TMPDIR", "/tmp")
        lock = os.open(f"{folder}/quorlan-tests-engine-address.lock", os.O_RDWR | os.O_CREAT, 0o666)
        fcntl.flock(lock, fcntl.LOCK_EX)  # until the process ends


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
    claim_engine_address()
    unittest.main(verbosity=2)
