"""The reply that the clients get."""

import json


def entry(kind, number, **more):
    state = ("running", "running", "stopped", "starting", "terminated")[number % 5]
    return {"name": f"{kind}{number}", "state": state, "version": f"1.{number % 20}.0", **more}


def reply(entries):
    """Half of the entries are services, half modules."""
    half = entries // 2
    return json.dumps({
        "description": "Services and modules",
        "modules": [entry("module", n, monitored=n % 2 == 0) for n in range(half)],
        "resultCode": 0,
        "services": [entry("service", n) for n in range(half)],
    })
