"""Runs random commands from many workers at once and checks every run against the engine's log.

Usage: soak.py soak FOLDER RUNS SEED    does it all, and keeps what it finds out in FOLDER
       soak.py run FOLDER RUNS SEED     only runs the commands; the simulator calls it

QUORLAN and VANTREL_SIM are the programs. Everything random comes from SEED, but not which worker is
faster.
"""

import collections
import concurrent.futures
import json
import os
import pathlib
import random
import subprocess
import sys
import time

WORKERS = 48
GATED = ["start", "stop", "restart", "reconfigure", "monitor"]
ON_A_MODULE = [*GATED, "status", "pid"]
ON_THE_ENGINE = ["list", "engine-status", "update", "update-status"]
# The tool waits five seconds for the ones in the second list, so there are fewer of them.
QUICK_FAULTS = ["close", "slow", "half", "garbage", "wrong-type", "no-result-code", "error-code",
                "reset", "refused-status", "control-characters"]
SLOW_FAULTS = ["silent", "stay-open"]
# Command lines that send nothing, and their exit statuses.
NOT_SENT = [(["--version"], 0), (["--help"], 0), (["list"], 0), ([], 64), (["--start"], 78),
            (["--status=no-such-name"], 78), (["--st=pump"], 78)]

REFUSAL = b"Debug mode is disabled, set debugmode first with -d option\n"
UNREADABLE = b"Failed to parse reply due to "

Outcome = collections.namedtuple("Outcome", "status out err")


def modules_of(worker):
    """The names that only this worker uses; the engine does not know the last one."""
    return [f"w{worker}a", f"w{worker}b", f"w{worker}x"]


def plan(folder, runs, seed):
    """Writes the simulator's state file, and returns its options for the faults."""
    chance = random.Random(f"plan {seed}")
    modules = []
    for worker in range(WORKERS):
        for name in modules_of(worker)[:2]:
            module = {"name": name, "state": chance.choice(["running", "stopped", "failed"]),
                      "version": "1.0", "monitored": chance.random() < 0.5}
            for command in ("start", "stop", "restart", "reconfigure"):
                if chance.random() < 0.4:
                    module[command] = {"seconds": round(chance.uniform(0, 0.5), 3)}
                    if chance.random() < 0.3:
                        module[command]["end"] = "failed"
            modules.append(module)
    state = {"engine": {"state": "running", "version": "1", "build": "soak",
                        "safeModeEnabled": False, "debugModeEnabled": True},
             "services": [], "modules": modules}
    (folder / "state.json").write_text(json.dumps(state, indent=1))

    options = set()
    for names, share in ((QUICK_FAULTS, 0.1), (SLOW_FAULTS, 0.004)):
        for _ in range(int(runs * share)):
            command = chance.choice([*ON_A_MODULE, *ON_THE_ENGINE, "debug"])
            name = chance.choice(names)
            if (name, command) != ("slow", "list"):  # one takes a minute
                options.add(f"--fault={name}:{command}@{chance.randint(1, runs // 10)}")
    return sorted(options)


def commands(worker, runs, seed):
    """The command lines of a worker, each with its command and its module, or None for both."""
    chance = random.Random(f"worker {worker} {seed}")
    for _ in range(runs // WORKERS + (worker < runs % WORKERS)):
        kind = chance.random()
        if kind < 0.03:
            yield chance.choice(NOT_SENT)[0], None, None
        elif kind < 0.3:
            command = chance.choice(ON_THE_ENGINE)
            yield [f"--{command}"], command, None
        elif kind < 0.35:
            # Mostly on, so that most gated commands are sent.
            yield [f"--debug={chance.choice(['true', 'true', 'true', 'false'])}"], "debug", None
        else:
            command, name = chance.choice(ON_A_MODULE), chance.choice(modules_of(worker))
            yield [f"--{command}={name}"], command, name


def run_worker(folder, worker, runs, seed):
    with open(folder / f"worker-{worker}.jsonl", "w", encoding="ascii") as results:
        for words, command, name in commands(worker, runs, seed):
            done = subprocess.run([os.environ["QUORLAN"], *words], stdin=subprocess.DEVNULL,
                                  capture_output=True, timeout=120, check=False)
            results.write(json.dumps([words, command, name, done.returncode,
                                      done.stdout.decode("latin-1"),
                                      done.stderr.decode("latin-1")]) + "\n")


def run(folder, runs, seed):
    begin = time.monotonic()
    with concurrent.futures.ThreadPoolExecutor(WORKERS) as pool:
        workers = [pool.submit(run_worker, folder, worker, runs, seed)
                   for worker in range(WORKERS)]
        for worker in workers:
            worker.result()
    (folder / "seconds").write_text(f"{time.monotonic() - begin}")


def as_bytes(text):
    return text.encode("utf-8", "surrogateescape")


def pad(text, width):
    return as_bytes(text).ljust(width)


def table(heading, entries):
    watched = any("monitored" in entry for entry in entries)
    lines = [pad(heading, 25) + pad("STATE", 15) + (pad("HEARTBEAT", 15) if watched else b"")
             + pad("VERSION", 15), b"-" * (70 if watched else 55)]
    for entry in entries:
        heartbeat = pad("yes" if entry["monitored"] else "no", 15) if watched else b""
        lines.append(pad(entry["name"], 25) + pad(entry["state"], 15) + heartbeat
                     + pad(entry["version"], 15))
    if not entries:
        lines.append(b"None are loaded!")
    return b"\n".join([*lines, b"", b""])


def status_report(reply):
    """What of the report can be printed, and whether that is all of it."""
    out = b"Vantrel status\n" + b"-" * 30 + b"\n"
    for label, key in (("Safe mode: ", "safeModeEnabled"), ("Debug mode: ", "debugModeEnabled")):
        out += pad(label, 15)
        if key not in reply:
            return out, False
        out += pad("enabled" if reply[key] else "disabled", 15) + b"\n"
    for label, key in (("State: ", "state"), ("Version: ", "version")):
        out += pad(label, 15)
        if key not in reply:
            return out, False
        out += pad(reply[key], 15) + b"\n"
    return out + pad("Build info: ", 15) + pad(reply.get("build", "<not available>"), 15) + b"\n\n", True


def received(entry):
    """The object that the tool got, or None where it got nothing that it could use."""
    text = as_bytes(entry["reply"])
    if entry["fault"] in ("silent", "stay-open", "reset"):
        text = text[: len(text) // 8192 * 8192]
    try:
        reply = json.loads(text)
    except ValueError:
        return None
    return reply if isinstance(reply, dict) else None


def expected(command, entry):
    """How a run ends that sent the command and got the reply in the entry of the log."""
    reply = received(entry)
    if reply is None:
        return Outcome(76, b"", UNREADABLE)
    if command == "list":
        if "resultCode" not in reply:
            return Outcome(76, b"", UNREADABLE)
        if reply["resultCode"] != 0:
            return Outcome(reply["resultCode"] & 255, b"", as_bytes(reply["description"]) + b"\n")
        return Outcome(0, table("SERVICE NAME", reply["services"])
                       + table("MODULE NAME", reply["modules"]), b"")
    if command == "engine-status":
        out, whole = status_report(reply)
    else:
        whole = "description" in reply
        out = as_bytes(reply["description"]) + b"\n" if whole else b""
    if not whole or "resultCode" not in reply:
        return Outcome(76, out, UNREADABLE)
    return Outcome(reply["resultCode"] & 255, out, b"")


def gate(entry):
    """What a gated command makes of the engine's status: True, False or None for unreadable."""
    reply = received(entry)
    return None if reply is None else reply.get("debugModeEnabled")


def passed_gate(outcome):
    """The same, from how the run ended."""
    if not outcome.out.endswith(REFUSAL):
        return True
    return None if outcome.err else False


def without_reason(outcome):
    """The library's wording of why a reply is unreadable is tested elsewhere."""
    err = UNREADABLE if outcome.err.startswith(UNREADABLE) else outcome.err
    return outcome._replace(err=err)


def check(folder, runs, seed):
    log = [json.loads(line) for line in (folder / "log").read_text("utf-8").splitlines()]
    unread = [entry for entry in log if entry.get("request") == ""]
    entries = collections.defaultdict(list)  # in the order of the log
    for entry in log:
        if entry.get("request"):
            request = json.loads(entry["request"])
            entries[request["command"], request.get("module")].append(entry)

    problems, outcomes, results = [], collections.Counter(), collections.defaultdict(list)
    allowed = {entry_code(entry) for entry in log} | {0, 76}
    for worker in range(WORKERS):
        lines = (folder / f"worker-{worker}.jsonl").read_text().splitlines()
        planned = list(commands(worker, runs, seed))
        if len(lines) != len(planned):
            problems.append(f"worker {worker} made {len(lines)} runs of {len(planned)}")
        for line in lines:
            words, command, name, status, out, err = json.loads(line)
            outcome = without_reason(
                Outcome(status, out.encode("latin-1"), err.encode("latin-1")))
            outcomes[kind(command, outcome)] += 1
            if command is None:
                if status != dict((tuple(w), s) for w, s in NOT_SENT)[tuple(words)]:
                    problems.append(f"{words} ended with {status}")
                continue
            if status not in allowed:
                problems.append(f"{words} ended with {status}, which the engine never said")
            results[command, name].append(outcome)

    # Names belong to one worker, and so their requests come in the order of the runs.
    queries = collections.Counter()
    for (command, name), ended in results.items():
        if name is None:
            continue
        if command in GATED:
            queries.update(passed_gate(outcome) for outcome in ended)
            for outcome in ended:
                if not passed_gate(outcome) and outcome.out != REFUSAL:
                    problems.append(f"{command} {name}: refused with {outcome}")
            ended = [outcome for outcome in ended if passed_gate(outcome)]
        wanted = [expected(command, entry) for entry in entries.pop((command, name), [])]
        if ended != wanted:
            problems.append(f"{command} {name}: {len(ended)} runs, {len(wanted)} requests\n"
                            + first_difference(ended, wanted))

    # The other requests look alike: the same outcomes must have come out, in any order.
    status_entries = entries.pop(("engine-status", None), [])
    ended = collections.Counter(results.pop(("engine-status", None), []))
    for entry in status_entries:
        outcome = expected("engine-status", entry)
        if ended[outcome] > 0:
            ended[outcome] -= 1
        else:
            queries[gate(entry)] -= 1
    for left in (+ended, +queries, -queries):
        problems += [f"engine-status: {count} times without its like: {what}"
                     for what, count in left.items()]
    for (command, name), ended in results.items():
        if name is None:
            wanted = collections.Counter(expected(command, entry)
                                         for entry in entries.pop((command, None), []))
            for what, count in (collections.Counter(ended) - wanted).items():
                problems.append(f"{command}: {count} runs ended without a request for it: {what}")
            for what, count in (wanted - collections.Counter(ended)).items():
                problems.append(f"{command}: {count} requests without a run for it: {what}")
    problems += [f"{len(left)} requests that no run sent: {key}" for key, left in entries.items()]
    if unread:
        problems.append(f"{len(unread)} connections without a request")

    seconds = float((folder / "seconds").read_text())
    print(f"{runs} runs in {seconds:.0f} s, {runs / seconds:.0f} a second, seed {seed}")
    for what, count in sorted(outcomes.items()):
        print(f"{count:8} {what}")
    faults = collections.Counter(entry.get("fault") for entry in log if "fault" in entry)
    faults.pop(None, None)
    print("faults: " + ", ".join(f"{count} {name}" for name, count in sorted(faults.items())))
    for problem in problems[:20]:
        print(f"PROBLEM: {problem}", file=sys.stderr)
    return 1 if problems else 0


def entry_code(entry):
    reply = received(entry) if "reply" in entry else None
    return (reply or {}).get("resultCode", 0) & 255


def kind(command, outcome):
    if command is None:
        return f"status {outcome.status:3}, nothing to send"
    if command in GATED and not passed_gate(outcome):
        return f"status {outcome.status:3}, not sent"
    return f"status {outcome.status:3}, sent"


def first_difference(actual, wanted):
    for index, (one, other) in enumerate(zip(actual, wanted)):
        if one != other:
            return f"run {index + 1} ended with\n  {one}\ninstead of\n  {other}"
    return "the others are the same"


def soak(folder, runs, seed):
    faults = plan(folder, runs, seed)
    subprocess.run(
        [os.environ["VANTREL_SIM"], "--isolated", f"--state={folder / 'state.json'}",
         f"--log={folder / 'log'}", "--log-format=json", *faults, "--",
         sys.executable, "-B", __file__, "run", folder, str(runs), seed], check=True)
    return check(folder, runs, seed)


def main():
    action, folder, runs, seed = sys.argv[1:]
    return {"soak": soak, "run": run}[action](pathlib.Path(folder), int(runs), seed)


if __name__ == "__main__":
    sys.exit(main())
