"""Counts the instructions of whole runs, the kernel's included, on the virtual device.

Usage: device.py --guard    compares the tool with bench/device-ratios.txt
       device.py --device   writes that file and the section of docs/benchmarks.md

Called by scripts/bench.
"""

import pathlib
import re
import subprocess
import sys
import tempfile

from reply import reply

TREE = pathlib.Path(__file__).parent.parent
RATIOS = TREE / "bench/device-ratios.txt"
DOCUMENT = TREE / "docs/benchmarks.md"
HEADING = "## On a 32-bit Arm device\n"

RUNS = 21
TOLERANCE = 0.02
FLOOR = "minimal C client, the floor"
VERSION = "`quorlan --version`"
LIST = "`quorlan --list`"
QUORLAN = "/usr/local/bin/quorlan"
CLIENTS = {
    "a program that does nothing": "./nothing",
    FLOOR: "./floor",
    "minimal POCO client": "./poco-client-plain",
    "minimal POCO client with `static/`": "./poco-client",
    VERSION: f"{QUORLAN} --version",
    LIST: f"{QUORLAN} --list",
}
# The clients for each number of entries.
MEASURED = {20: list(CLIENTS), 1000: [FLOOR, *list(CLIENTS)[2:4], LIST]}
GUARDED = [(20, VERSION), (20, LIST), (1000, LIST)]


def run(*words, **options):
    return subprocess.run(words, check=True, cwd=TREE, stdout=subprocess.PIPE, text=True,
                          **options).stdout


def build(folder, measured):
    """Puts what the device needs into the folder."""
    run("scripts/build-static", "armhf")
    for client in ("poco-client", "poco-client-plain"):
        if any(CLIENTS[name] == f"./{client}" for names in measured.values() for name in names):
            run("cmake", "--build", "--preset", "static-armhf", "--target", client)
            run("cp", f"build/static-armhf/bench/{client}", folder)
    for program in ("nothing", "floor", "fixed-engine", "time-runs"):
        run("arm-linux-gnueabihf-gcc", "-O2", "-static", "-o", folder / program,
            f"bench/{program}.c")
    lines = ["cd bench"]
    for entries, names in measured.items():
        folder.joinpath(f"{entries}.json").write_text(reply(entries))
        lines += [f"./fixed-engine {entries}.json >{entries}.ready & engine=$!",
                  f"until [ -s {entries}.ready ]; do sleep 0.1; done",
                  *(f"./time-runs {RUNS} {CLIENTS[name]}" for name in names),
                  "kill $engine"]
    folder.joinpath("measure").write_text("\n".join(lines) + "\n")


def measure(measured):
    """For each number of entries and client: instructions and page faults of a run."""
    with tempfile.TemporaryDirectory() as work:
        folder = pathlib.Path(work) / "bench"
        folder.mkdir()
        build(folder, measured)
        output = run("scripts/virtual-device", "--icount", "--limit", "600", "--add", folder, "sh",
                     "bench/measure")
    results = iter(output.splitlines())
    return {(entries, name): tuple(map(int, next(results).split()))
            for entries, names in measured.items() for name in names}


def ratio(results, entries, name):
    return results[entries, name][0] / results[entries, FLOOR][0]


def guard():
    results = measure({entries: [FLOOR, *(name for number, name in GUARDED if number == entries)]
                       for entries in MEASURED})
    status = 0
    for line in RATIOS.read_text().splitlines():
        recorded, entries, name = line.split(" ", 2)
        measured = ratio(results, int(entries), name)
        change = measured / float(recorded) - 1
        print(f"{name}, {entries} entries: {measured:.3f} times the floor, recorded {recorded} "
              f"({change:+.1%})")
        if abs(change) > TOLERANCE:
            print(f"  This is more than {TOLERANCE:.0%} {'dearer' if change > 0 else 'cheaper'}. If it "
                  "is meant, record it with scripts/bench --device.")
            status = 1
    return status


def table(head, rows):
    lines = [head, ["---"] + ["---:"] * (len(head) - 1), *rows]
    return "\n".join("| " + " | ".join(map(str, line)) + " |" for line in lines) + "\n"


def write():
    results = measure(MEASURED)
    size = (TREE / "build/static-armhf/app/quorlan").stat().st_size
    rows = [[name, entries, f"{count:,}", f"{ratio(results, entries, name):.2f}", faults]
            for (entries, name), (count, faults) in results.items()]
    list_ratio, version_ratio = ratio(results, 20, LIST), ratio(results, 20, VERSION)
    goals = [
        [f"{LIST} with 20 entries: at most 2.5 times the floor", f"{list_ratio:.2f}",
         "yes" if list_ratio <= 2.5 else "no"],
        [f"{VERSION}: at most 1.5 times the floor", f"{version_ratio:.2f}",
         "yes" if version_ratio <= 1.5 else "no"],
        ["the file: at most 1.35 MB", f"{size:,} bytes", "yes" if size <= 1_350_000 else "no"],
    ]
    section = f"""{HEADING}
`scripts/bench --device` writes this section. It runs the clients on the virtual device of
[device.md](device.md) and counts instructions instead of measuring time, so the figures don't depend on how
busy the machine is. Each is the median of {RUNS} runs in one boot. It covers a whole run, with the kernel's
share and that of the small engine that answers.

{table(["client", "entries", "instructions", "ratio", "page faults"], rows)}
The minimal POCO clients use POCO's socket and JSON parser and `std::cout`, with the flags of the static
build. One has the replacements in [static/](../static) for parts of the C and C++ libraries, the other
only that of the name services. The order of functions in the file is chosen for the tool alone.

{table(["goal", "result", "reached"], goals)}
`scripts/bench --guard` fails in CI when a ratio of the tool differs by more than {TOLERANCE:.0%} from the one
recorded here."""
    text = DOCUMENT.read_text().partition(HEADING)[0].rstrip("\n")
    DOCUMENT.write_text(f"{text}\n\n{section}\n")
    RATIOS.write_text("".join(
        f"{ratio(results, entries, name):.3f} {entries} {name}\n"
        for entries, name in GUARDED))
    print(section)
    return 0


if __name__ == "__main__":
    sys.exit({"--guard": guard, "--device": write}[sys.argv[1]]())
