"""Runs a command with the picture services played by a server on this machine.

usage: ./dev services COMMAND [ARGUMENT...]

The command finds QUILLMAR_INFO, the bundle keys that lead to the server, and QUILLMAR_SERVICES, its address; how it is
told to fail says tests/services/server.py. QUILLMAR_SERVICES_ADDRESS names another address of this machine than the
loopback one, to be reached under. Ends with the command's status.
"""

import json
import os
import pathlib
import signal
import subprocess
import sys
import tempfile

from server import running

ROOT = pathlib.Path(__file__).resolve().parents[2]


def bundle_keys(address):
    built = ROOT / "build" / "Info.json"
    keys = json.loads((built if built.exists() else ROOT / "resources" / "Info.json").read_text())
    return {key: address if key.endswith("Host") and value else value for key, value in keys.items()}


def main():
    if len(sys.argv) < 2 or sys.argv[1] in ("-h", "--help"):
        print(__doc__.strip())
        return 0 if len(sys.argv) > 1 else 2
    with tempfile.TemporaryDirectory(prefix="quillmar-services.") as folder, running(
        os.environ.get("QUILLMAR_SERVICES_ADDRESS")
    ) as address:
        info = pathlib.Path(folder, "Info.json")
        info.write_text(json.dumps(bundle_keys(address), indent=2))
        environment = os.environ | {"QUILLMAR_INFO": str(info), "QUILLMAR_SERVICES": address}
        command = subprocess.Popen(sys.argv[1:], env=environment)
        for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
            signal.signal(number, lambda number, frame: command.send_signal(number))
        status = command.wait()
    return status if status >= 0 else 128 - status


if __name__ == "__main__":
    sys.exit(main())
