"""Services on the public Internet, whose answers lead to this machine: nobody there may be asked."""

import json
import unittest
import urllib.parse

from quillmar_desktop import run_checked, x11
from services_desktop import ADDRESS, COLORS, ServicesTest, ask, leads_to, requests_for

BING = {"market": "en-ww", "layout": "fill", "backgroundHexColor": "#000000", "showsCopyright": True}
PORT = urllib.parse.urlsplit(ADDRESS).port
# The same server, which would answer.
INSIDE = [f"http://{host}:{PORT}" for host in ("127.0.0.1", "localhost", "0.0.0.0", "[::ffff:127.0.0.1]")]


class PublicNetworkTest(ServicesTest):
    def test_no_answer_of_a_service_leads_to_this_machine(self):
        program = self.start_and_wait()
        self.set_well("DUMMY0", "wallhaven", "--layout", "fill")
        self.assertEqual(x11.color(960, 900), "#" + COLORS["wallhaven"].upper())
        self.set_well("DUMMY0", "colour", "#1F6F8B")
        for root in INSIDE:
            picture = root + "/images/forbidden/1.png"
            for fault in (
                leads_to(picture),
                {"where": "image", "kind": "redirect-to", "text": picture},
                {"where": "metadata", "kind": "redirect-to", "text": root + "/forbidden"},
            ):
                with self.subTest(fault=fault):
                    for file in self.images.glob("remote-*"):
                        file.unlink()
                    ask("/_fault", "POST", fault)
                    answer = self.set("DUMMY0", "wallhaven", "--layout", "fill")
                    ask("/_fault", "DELETE")
                    self.assertRegex(answer.stderr, "Wallhaven leads to .*, which is no address of the Internet.")
                    self.assertEqual(requests_for("forbidden"), [])
                    self.assertEqual(x11.color(960, 900), "#1F6F8B")
                    self.assertEqual([*self.half_done(), *self.images.glob("remote-*")], [])
        self.quit(program)

    def test_the_network_comes_after_the_program(self):
        # As it is at login: no way out, and services that do not answer.
        self.quit(self.start_and_wait())
        document = json.loads(self.settings.read_text())
        mode = {"bing": {"_0": BING}}
        document["wallpaper"]["displays"] = [
            {"persistentDisplayID": self.displays()["DUMMY0"], "mode": mode, "savedModes": []}
        ]
        self.settings.write_text(json.dumps(document))
        ask("/_fault", "POST", {"where": "metadata", "kind": "500"})
        program = self.start_and_wait()
        self.assertEqual(self.status()["DUMMY0"]["lastFailure"]["message"], "Bing returned HTTP 500.")
        ask("/_fault", "DELETE")
        run_checked("ip", "route", "add", "default", "dev", "lo")
        self.wait_for_colors(program, "#" + COLORS["bing"].upper(), points=((960, 900),))
        self.assertNotIn("lastFailure", self.status()["DUMMY0"])
        self.quit(program)


if __name__ == "__main__":
    unittest.main()
