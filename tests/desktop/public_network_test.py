"""Services on the public Internet, whose answers lead to this machine: nobody there may be asked."""

import unittest
import urllib.parse

from quillmar_desktop import x11
from services_desktop import ADDRESS, COLORS, DOWNLOAD_FAILED, ServicesTest, ask, leads_to, requests_for

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
            for fault, complaint in (
                (leads_to(picture), DOWNLOAD_FAILED),
                ({"where": "image", "kind": "redirect-to", "text": picture}, DOWNLOAD_FAILED),
                ({"where": "metadata", "kind": "redirect-to", "text": root + "/forbidden"}, "The address is not one of the Internet."),
            ):
                with self.subTest(fault=fault):
                    for file in self.images.glob("remote-*"):
                        file.unlink()
                    ask("/_fault", "POST", fault)
                    answer = self.set("DUMMY0", "wallhaven", "--layout", "fill")
                    ask("/_fault", "DELETE")
                    self.assertIn(complaint, answer.stderr)
                    self.assertEqual(requests_for("forbidden"), [])
                    self.assertEqual(x11.color(960, 900), "#1F6F8B")
                    self.assertEqual([*self.half_done(), *self.images.glob("remote-*")], [])
        self.quit(program)


if __name__ == "__main__":
    unittest.main()
