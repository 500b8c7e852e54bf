"""A client of the engine as one would write it in Python. Prints the list as two tables."""

import json
import socket

with socket.create_connection(("127.0.0.1", 7777), timeout=5) as engine:
    engine.sendall(b'{"command":"list"}')
    reply = json.loads(b"".join(iter(lambda: engine.recv(8192), b"")))

for table in "services", "modules":
    print(f"{table:25}{'STATE':15}VERSION")
    for entry in reply[table]:
        print(f"{entry['name']:25}{entry['state']:15}{entry['version']}")
