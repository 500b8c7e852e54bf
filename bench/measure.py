"""Measures the clients in the folder that scripts/bench prepared and writes benchmarks.md.

Usage: measure.py FOLDER LOAD OUTPUT-FOLDER
    LOAD           the load of the machine before anything was built or measured
    OUTPUT-FOLDER  where benchmarks.md goes; empty: into docs
"""

import datetime
import json
import os
import pathlib
import platform
import re
import shlex
import shutil
import statistics
import subprocess
import sys

from device import HEADING, table
from reply import reply

TREE = pathlib.Path(__file__).parent.parent
WORK = pathlib.Path(sys.argv[1])
LOAD = sys.argv[2]
OUTPUT = pathlib.Path(sys.argv[3]) if sys.argv[3] else None

ROUNDS = 10
GROWTH = [10, 100, 1_000, 10_000, 100_000]

PEERS = WORK / "peers"
FLOOR = "minimal C client (static), the floor"
POCO = "minimal POCO client (static)"
STATIC = "`quorlan --list`, preset `static-amd64`"
CLIENTS = {
    FLOOR: [WORK / "bin/floor"],
    POCO: [WORK / "bin/poco-client"],
    STATIC: [WORK / "bin/static", "--list"],
    "`quorlan --list`, preset `release`": [WORK / "bin/release", "--list"],
    "runit: `sv status`": ["sv", "status", *sorted((PEERS / "runit").iterdir())],
    "`monit summary`": ["monit", "-c", PEERS / "monitrc", "summary"],
    "bash and jq": [TREE / "bench/client.sh"],
    "Python client": ["/usr/bin/python3", TREE / "bench/client.py"],
    "`supervisorctl status`": ["supervisorctl", "-c", PEERS / "supervisord.conf", "status"],
}
WITHOUT_DAEMON = "runit: `sv status`"  # reads files that the daemon writes


def run(*words, **options):
    """The completed process of a command that has to succeed."""
    words = [str(word) for word in words]
    return subprocess.run(words, check=True, capture_output=True, text=True, **options)


class Engine:
    """Answers every request with the same reply."""

    def __init__(self, entries):
        self.file = WORK / "reply.json"
        self.file.write_text(reply(entries))

    def __enter__(self):
        self.process = subprocess.Popen([WORK / "bin/fixed-engine", self.file],
                                        stdout=subprocess.PIPE)
        assert self.process.stdout.readline() == b"listening\n"
        return self

    def __exit__(self, *_):
        self.process.terminate()
        self.process.wait()
        self.process.stdout.close()


def wall_times(command, runs):
    """The seconds of each run."""
    result = WORK / "hyperfine.json"
    run("hyperfine", "-N", "--warmup", "3", "--runs", str(runs), "--export-json", result,
        shlex.join(map(str, command)))
    return json.loads(result.read_text())["results"][0]["times"]


def fresh_copy(command):
    """The command with a copy of our own program: the same bytes run up to 10 % faster or slower in
    another copy, by how the kernel holds the file in memory."""
    program, *arguments = command
    if pathlib.Path(program).parent != WORK / "bin":
        return command
    copy = WORK / "copy"
    copy.unlink(missing_ok=True)
    shutil.copy(program, copy)
    return [copy, *arguments]


def interleaved_wall_times(commands):
    """The commands take turns, so that a change of the machine's load affects all of them. In each
    round, each runs for about half a second."""
    runs = {name: min(150, max(3, int(0.5 / statistics.median(wall_times(command, 3)))))
            for name, command in commands.items()}
    times = {name: [] for name in commands}
    for _ in range(ROUNDS):
        for name, command in commands.items():
            times[name] += wall_times(fresh_copy(command), runs[name])
    return times


def instructions(command):
    """Those executed in user mode, by the command and the processes that it starts."""
    log = run("valgrind", "--tool=callgrind", "--trace-children=yes",
              "--callgrind-out-file=/dev/null", *command).stderr
    return sum(int(count) for count in re.findall(r"Collected : (\d+)", log))


def peak_memory(command):
    """In KB, of the process that took most."""
    return int(run("/usr/bin/time", "--format=%M", *command).stderr.split()[-1])


def system_calls(command):
    log = WORK / "strace"
    run("strace", "-f", "-c", "-o", log, *command)
    return int(log.read_text().splitlines()[-1].split()[3])


def milliseconds(seconds):
    return f"{seconds * 1000:.2f}" if seconds < 0.01 else f"{seconds * 1000:.0f}"


def compare():
    """For each client: times of its runs, instructions, peak memory, system calls."""
    with Engine(20):
        times = interleaved_wall_times(CLIENTS)
        return {name: (times[name], instructions(command), peak_memory(command),
                       system_calls(command))
                for name, command in CLIENTS.items()}


def comparison_table(results):
    floor = statistics.median(results[FLOOR][0])
    rows = []
    for name, (times, count, peak, calls) in results.items():
        median = statistics.median(times)
        tenths = statistics.quantiles(times, n=10)
        rows.append([name, milliseconds(median), f"{median / floor:.2f}", milliseconds(min(times)),
                     f"{milliseconds(tenths[0])} to {milliseconds(tenths[-1])}", len(times),
                     f"{count:,}", f"{peak:,}", f"{calls:,}"])
    return table(["client", "median, ms", "ratio", "minimum, ms", "eight of ten runs, ms", "runs",
                  "instructions", "peak memory, KB", "system calls"], rows)


def grow():
    """For each number of entries: bytes of the reply, median time, peak memory and instructions of
    the tool, and the median time of the floor."""
    results = {}
    for entries in GROWTH:
        with Engine(entries) as engine:
            times = interleaved_wall_times({name: CLIENTS[name] for name in (STATIC, FLOOR)})
            results[entries] = (engine.file.stat().st_size, statistics.median(times[STATIC]),
                                peak_memory(CLIENTS[STATIC]), instructions(CLIENTS[STATIC]),
                                statistics.median(times[FLOOR]))
    return results


def growth_table(results):
    rows = []
    for before, entries in zip([None] + GROWTH, GROWTH):
        size, time, peak, count, floor = results[entries]
        more = ["", "", ""]
        if before:
            added = entries - before
            more = [f"{(time - results[before][1]) / added * 1e6:.2f}",
                    f"{(peak - results[before][2]) / added * 1024:,.0f}",
                    f"{(count - results[before][3]) / added:,.0f}"]
        rows.append([f"{entries:,}", f"{size:,}", milliseconds(floor), milliseconds(time), more[0],
                     f"{peak:,}", more[1], f"{count:,}", more[2]])
    return table(["entries", "reply, bytes", "floor, ms", "tool, ms", "per added entry, µs",
                  "peak memory, KB", "per added entry, bytes", "instructions",
                  "per added entry"], rows)


def goals(results, growth):
    """A row for each goal: what was aimed at, the result, whether the goal is reached."""
    median = {name: statistics.median(times) for name, (times, *_) in results.items()}
    ratio = median[STATIC] / median[FLOOR]
    peers = [name for name in median
             if "quorlan" not in name and name not in (FLOOR, POCO, WITHOUT_DAEMON)]
    nearest = min(peers, key=median.get)
    small, middle, large = GROWTH[-3:]

    def slope(column):
        return ((growth[large][column] - growth[middle][column]) / (large - middle)
                / ((growth[middle][column] - growth[small][column]) / (middle - small)))

    poco_ratio = median[STATIC] / median[POCO]
    rows = [
        ["at most 1.10 times the wall time of the minimal POCO client", f"{poco_ratio:.2f}",
         poco_ratio <= 1.1],
        ["at most 1.25 times the wall time of the floor", f"{ratio:.2f}", ratio <= 1.25],
        ["under 600,000 instructions", f"{results[STATIC][1]:,}", results[STATIC][1] < 600_000],
        ["faster than every peer that talks to a daemon",
         f"{median[nearest] / median[STATIC]:.1f} times as fast as {nearest}",
         median[nearest] > median[STATIC]],
        ["an entry added between 10,000 and 100,000 takes at most 1.25 times the time of one added "
         "between 1,000 and 10,000",
         f"{slope(1):.2f}", slope(1) <= 1.25],
        ["the same for memory", f"{slope(2):.2f}", slope(2) <= 1.25],
        ["the same for instructions", f"{slope(3):.2f}", slope(3) <= 1.25],
    ]
    return table(["goal", "result", "reached"],
                 [[goal, reached, "yes" if enough else "no"] for goal, reached, enough in rows])


def machine():
    cpu = re.search(r"model name\s*: (.*)", pathlib.Path("/proc/cpuinfo").read_text())
    memory = re.search(r"MemTotal: *(\d+)", pathlib.Path("/proc/meminfo").read_text())
    kind = " (virtual)" if "hypervisor" in pathlib.Path("/proc/cpuinfo").read_text() else ""
    return (f"{os.cpu_count()} cores{kind} of {cpu[1] if cpu else platform.machine()}, "
            f"{int(memory[1]) >> 20} GB, Linux {platform.release()}")


def conditions():
    state = ("The machine was idle" if float(LOAD) < 0.5 else
             "**The machine was busy with other work**, so trust the ratios, not the times")
    return (f"Measured on {datetime.date.today()} on {machine()}. {state}: the load was {LOAD} at "
            f"the start and {os.getloadavg()[0]:.2f} at the end.\n")


def versions():
    names = ["libpoco-dev", "runit", "monit", "jq", "bash", "python3", "supervisor"]
    output = run("dpkg-query", "-W", "-f", "${Package} ${Version}, ", *names).stdout
    return output.rstrip(", ")


DOCUMENT = """# Benchmarks

`scripts/bench` measures a run of `quorlan`, compares it with other clients and writes this page. The
clients are in [bench/](../bench).

{conditions}
Each client lists ten services. The engine's clients also list ten modules, and all of them get the same
reply from the same small engine. The floor, a minimal client, is a static C program that connects, sends
the request and prints what it reads. The minimal POCO client has the tool's libraries, POCO's socket and
JSON parser and `std::cout`, and is built like the preset `static-amd64`. `sv` talks to no daemon: it reads files that the daemon writes.
Versions: {versions}.

{comparison}
The clients take turns, so a change in the machine's load affects all of them. In each turn our own
programs run from a fresh copy of the file. hyperfine measures the
wall time, callgrind counts the instructions in user mode, strace counts the system calls, and `time`
shows the peak memory. For a client with several processes the counts are sums, and the peak memory is
that of the largest process.

## Goals

{goals}
## Growth

The preset `static-amd64` with longer replies. Half of the entries are services, half are modules.

{growth}"""


def main():
    results = compare()
    growth = grow()
    text = DOCUMENT.format(conditions=conditions(), versions=versions(),
                           comparison=comparison_table(results), goals=goals(results, growth),
                           growth=growth_table(growth))
    document = TREE / "docs/benchmarks.md"
    _, heading, device = document.read_text().partition(HEADING)
    (OUTPUT or document.parent).joinpath(document.name).write_text(f"{text}\n{heading}{device}")
    print(text)


main()
