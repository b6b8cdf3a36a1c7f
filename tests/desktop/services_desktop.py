"""The program beside the server that plays the picture services: throw its faults, see what it was asked for."""

import json
import os
import pathlib
import sys
import urllib.request

from quillmar_desktop import PROGRAM, DesktopTest, run

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "services"))
from services import COLORS  # noqa: E402, F401

ADDRESS = os.environ["QUILLMAR_SERVICES"]
DOWNLOAD_FAILED = "Quillmar could not download the image from Wallhaven."


def ask(path, method="GET", body=None):
    request = urllib.request.Request(ADDRESS + path, method=method, data=body and json.dumps(body).encode())
    with urllib.request.urlopen(request) as answer:
        return answer.read()


def requests_for(part):
    return [entry for entry in json.loads(ask("/_log")) if part in entry["path"]]


def leads_to(address):
    return {"where": "metadata", "kind": "body", "text": json.dumps({"data": [{"path": address}]})}


class ServicesTest(DesktopTest):
    def setUp(self):
        super().setUp()
        ask("/_fault", "DELETE")
        ask("/_log", "DELETE")
        self.runtime = self.home / "runtime"
        self.images = self.folder / "Cache" / "Images"

    def set(self, display, *kind):
        return run(PROGRAM, "wallpaper", "set", display, *kind, env=self.environment)

    def set_well(self, display, *kind):
        answer = self.set(display, *kind)
        self.assertEqual(answer.returncode, 0, answer.stderr)

    def status(self):
        answer = run(PROGRAM, "status", "--json", env=self.environment, check=True).stdout
        return {entry["display"]["localizedName"]: entry for entry in json.loads(answer)["displays"]}

    def half_done(self):
        return [*self.runtime.glob("*.download"), *self.images.glob(".*")]
