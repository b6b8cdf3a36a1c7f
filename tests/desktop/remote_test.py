"""Pictures of services on the displays, and every way in which a service can fail, on real sockets."""

import json
import pathlib
import subprocess
import threading
import unittest

from quillmar_desktop import BEFORE, PROGRAM, run, wait_until, x11
from services_desktop import ADDRESS, COLORS, DOWNLOAD_FAILED, ServicesTest, ask, leads_to, requests_for

KEY = "correct-horse-battery-staple"
IMAGE_TOO_LARGE = "The provider image is larger than Quillmar's {} MB download limit."
MUCH_METADATA = "Wallhaven returned more metadata than Quillmar can safely process."
NO_IMAGE = "Wallhaven did not return an image matching the selected options."
IMAGE_LIMIT, MUSEUM_LIMIT, METADATA_LIMIT = 31457280, 20971520, 5242880


# What is wrong, and what the command then says; None: nothing, the picture is shown.
FAULTS = [
    *(({"where": "metadata", "kind": code}, f"Wallhaven returned HTTP {code}.") for code in ("401", "403", "404", "408", "429", "500")),
    *(({"where": "image", "kind": code}, DOWNLOAD_FAILED) for code in ("401", "404", "429", "500")),
    ({"where": "metadata", "kind": "redirect"}, None),
    ({"where": "image", "kind": "redirect"}, None),
    ({"where": "image", "kind": "redirect-to", "text": "file:///etc/hostname"}, DOWNLOAD_FAILED),
    ({"where": "image", "kind": "redirect-to"}, DOWNLOAD_FAILED),
    ({"where": "metadata", "kind": "redirect-to"}, "Wallhaven redirects without an end."),
    ({"where": "metadata", "kind": "html"}, "Wallhaven returned an unexpected response (the document is not valid JSON"),
    ({"where": "metadata", "kind": "announces"}, "Wallhaven did not answer: The server announces answers without an end."),
    ({"where": "image", "kind": "announces"}, DOWNLOAD_FAILED),
    ({"where": "image", "kind": "challenge"}, DOWNLOAD_FAILED),
    ({"where": "image", "kind": "svg"}, DOWNLOAD_FAILED),
    ({"where": "image", "kind": "html"}, DOWNLOAD_FAILED),
    ({"where": "image", "kind": "wrong-type"}, DOWNLOAD_FAILED),
    ({"where": "image", "kind": "no-type"}, None),
    ({"where": "image", "kind": "no-length"}, None),
    ({"where": "image", "kind": "long-length"}, DOWNLOAD_FAILED),
    ({"where": "image", "kind": "cut"}, DOWNLOAD_FAILED),
    ({"where": "metadata", "kind": "cut"}, "Connection terminated unexpectedly"),
    ({"where": "image", "kind": "corrupt"}, DOWNLOAD_FAILED),
    ({"where": "image", "kind": "endless"}, IMAGE_TOO_LARGE.format(30)),
    ({"where": "metadata", "kind": "endless"}, MUCH_METADATA),
    ({"where": "metadata", "kind": "size", "text": str(METADATA_LIMIT - 1)}, None),
    ({"where": "metadata", "kind": "size", "text": str(METADATA_LIMIT)}, MUCH_METADATA),
    ({"where": "metadata", "kind": "size-unannounced", "text": str(METADATA_LIMIT + 1)}, MUCH_METADATA),
    ({"where": "image", "kind": "size", "text": str(IMAGE_LIMIT)}, None),
    ({"where": "image", "kind": "size", "text": str(IMAGE_LIMIT + 1)}, IMAGE_TOO_LARGE.format(30)),
    ({"where": "image", "kind": "size-unannounced", "text": str(IMAGE_LIMIT + 1)}, IMAGE_TOO_LARGE.format(30)),
    ({"where": "metadata", "kind": "body", "text": '{"data": {}}'}, "data: expected an array"),
    ({"where": "metadata", "kind": "body", "text": '{"data": null}'}, "data: expected an array"),
    ({"where": "metadata", "kind": "body", "text": '{"items": []}'}, "data: missing key"),
    ({"where": "metadata", "kind": "body", "text": '{"data": []}'}, NO_IMAGE),
    (leads_to("no address"), NO_IMAGE),
    (leads_to("file:///etc/hostname"), DOWNLOAD_FAILED),
    (leads_to("http://127.0.0.1:1/refused.png"), DOWNLOAD_FAILED),
    (leads_to("http://nowhere.invalid/dns.png"), DOWNLOAD_FAILED),
    (leads_to(ADDRESS.replace("http:", "https:") + "/tls.png"), DOWNLOAD_FAILED),
]  # fmt: skip


class RemoteTest(ServicesTest):
    def setUp(self):
        super().setUp()
        self.key = self.home / "key"
        self.key.write_text(KEY + "\n")

    def test_every_service_shows_its_picture(self):
        program = self.start_and_wait()
        museum = lambda source, *more: ("museums", "--sources", source, *more)
        key = ("--smithsonianAPIKeyFile", str(self.key))
        for service, kind in (
            ("apod", ("apod",)),
            ("bing", ("bing",)),
            ("spotlight", ("spotlight", "--locale", "de-DE")),
            ("unsplash", ("unsplash", "--accessKeyFile", str(self.key))),
            ("wallhaven", ("wallhaven",)),
            ("artic", museum("artInstituteChicago")),
            ("met", museum("metropolitanMuseum")),
            ("rijks", museum("rijksmuseum")),
            ("cleveland", museum("clevelandMuseum")),
            ("smk", museum("smkDenmark")),
            ("smithsonian", museum("smithsonian", *key)),
        ):
            with self.subTest(service=service):
                self.set_well("DUMMY0", *kind, "--layout", "fill")
                self.assertEqual(x11.color(960, 900), "#" + COLORS[service].upper())
                self.assertEqual(x11.color(2560, 512), BEFORE)
        self.set_well("DUMMY0", "nasa-epic", "--background", "#303030")
        self.assertEqual([x11.color(x, 700) for x in (100, 960)], ["#303030", "#144696"])
        # The caption: a dark plate over the ground, with light letters on it.
        plate = {x11.color(x, 1080 - 27 - 22) for x in range(48, 400, 3)}
        self.assertTrue({"#121212"} < plate, plate)
        self.set_well("DUMMY0", "nasa-epic", "--showsCreditAndObservationTime=false", "--background", "#303030")
        self.assertEqual({x11.color(x, 1080 - 27 - 22) for x in range(48, 400, 3)}, {"#303030"})
        self.quit(program)

    def test_whatever_fails_is_said_and_leaves_nothing_but_the_picture_on_screen(self):
        program = self.start_and_wait()
        self.set_well("DUMMY0", "colour", "#1F6F8B")
        for fault, complaint in FAULTS:
            with self.subTest(fault=fault):
                ask("/_fault", "POST", fault)
                for file in self.images.glob("remote-*"):
                    file.unlink()
                answer = self.set("DUMMY0", "wallhaven", "--layout", "fill")
                ask("/_fault", "DELETE")
                self.assertEqual(self.half_done(), [])
                if complaint is None:
                    self.assertEqual((answer.returncode, answer.stderr), (0, ""))
                    self.assertEqual(x11.color(960, 900), "#" + COLORS["wallhaven"].upper())
                    self.set_well("DUMMY0", "colour", "#1F6F8B")
                else:
                    self.assertEqual(answer.returncode, 1)
                    self.assertIn(complaint, answer.stderr)
                    self.assertEqual([*self.images.glob("remote-*")], [])
                    self.assertEqual(x11.color(960, 900), "#1F6F8B")
                    self.assertNotIn("lastFailure", self.status()["DUMMY0"], "it shows what the settings say")
        ask("/_fault", "POST", {"where": "image", "kind": "size", "text": str(MUSEUM_LIMIT + 1)})
        answer = self.set("DUMMY0", "museums", "--sources", "smkDenmark")
        self.assertIn(IMAGE_TOO_LARGE.format(20), answer.stderr)
        for entry in requests_for("/"):
            self.assertRegex(entry["headers"]["User-Agent"], r"Quillmar/\S+ \(https://\S+\)$")
            self.assertIn("Accept", entry["headers"])
        self.quit(program)

    def test_a_slow_service_neither_holds_up_the_end_nor_leaves_a_file(self):
        program = self.start_and_wait()
        ask("/_fault", "POST", {"where": "image", "kind": "drip"})
        client = threading.Thread(target=self.set, args=("DUMMY0", "bing"))
        client.start()
        wait_until("a download", lambda: list(self.runtime.glob("*.download")), program)
        self.quit(program)
        client.join()
        self.assertEqual(self.half_done(), [])

    def test_two_displays_that_ask_for_one_picture_get_it_once(self):
        program = self.start_and_wait()
        self.set_well("all", "bing", "--layout", "fill")
        self.assertEqual([x11.color(*point) for point in ((960, 900), (2560, 900))], ["#" + COLORS["bing"].upper()] * 2)
        self.assertEqual(len(requests_for("/th?")), 1)
        (file,) = self.images.glob("remote-*")
        file.write_bytes(file.read_bytes()[:5000])
        self.set_well("all", "bing", "--layout", "fill")
        self.assertEqual(len(requests_for("/th?")), 2)
        self.quit(program)

    def test_a_slideshow_of_the_earth_moves_on_by_itself(self):
        program = self.start_and_wait()
        film = ("--presentation", "rotateThroughDays", "--secondsPerObservation", "10")
        self.set_well("DUMMY0", "nasa-epic", *film)
        rotation = self.status()["DUMMY0"]["rotation"]
        self.assertEqual((rotation["intervalSeconds"], rotation["consecutiveFailures"]), (10, 0))
        wait_until("the next observation", lambda: len(requests_for("/archive/")) == 2, program)
        first, second = (entry["path"] for entry in requests_for("/archive/"))
        self.assertNotEqual(first, second)
        self.assertEqual(len(requests_for("/api/natural")), 1)
        self.quit(program)

    def started(self, *command, output=subprocess.DEVNULL):
        """Something of the desktop's own, until the test ends."""
        process = subprocess.Popen(command, stdout=output, stderr=subprocess.DEVNULL)
        self.addCleanup(process.wait)
        self.addCleanup(process.terminate)
        return process

    def test_a_key_stands_nowhere_but_in_the_settings(self):
        notices = self.home / "notices"
        with notices.open("w") as file:
            self.started("dbus-monitor", "--session", "interface=org.freedesktop.Notifications", output=file)
        self.started("/usr/lib/notification-daemon/notification-daemon")
        server = ("gdbus", "wait", "--session", "--timeout", "30", "org.freedesktop.Notifications")
        self.assertEqual(run(*server).returncode, 0)
        program = self.start_and_wait()
        run(PROGRAM, "general", "set", "--showRemoteErrorNotifications", env=self.environment, check=True)
        said = []
        for kind in (
            ("wallhaven", "--apiKeyFile"),
            ("unsplash", "--accessKeyFile"),
            ("museums", "--sources", "smithsonian", "--smithsonianAPIKeyFile"),
        ):
            for fault in (None, {"where": "metadata", "kind": "500"}, {"where": "image", "kind": "html"}):
                if fault:
                    ask("/_fault", "POST", fault)
                answer = self.set("DUMMY0", *kind, str(self.key))
                said += [answer.stdout, answer.stderr]
                ask("/_fault", "DELETE")
        self.set_well("DUMMY0", "apod", "--apiKeyFile", str(self.key))
        self.assertEqual([entry for entry in requests_for("apod") if KEY in json.dumps(entry)], [])
        missing = self.set("DUMMY0", "apod", "--apiKeyFile", str(self.home / "none"))
        self.assertIn("none cannot be read: No such file or directory.", missing.stderr)
        self.assertTrue(requests_for(KEY))
        for words in (("status",), ("status", "--json"), ("wallpaper", "--json"), ("general", "--json")):
            said.append(run(PROGRAM, *words, env=self.environment).stdout)
        said.append(pathlib.Path(f"/proc/{program.pid}/cmdline").read_text())
        said.append(pathlib.Path(f"/proc/{program.pid}/environ").read_text())
        self.quit(program)
        said.append(program.complaint())
        said.append(notices.read_text())
        self.assertIn("Unsplash returned HTTP 500.", said[-1])
        for file in [*self.folder.glob("Logs/*"), *self.folder.glob("ErrorQueue/*")]:
            said.append(file.read_text())
        for text in said:
            self.assertNotIn(KEY, text)
        self.assertIn(KEY, self.settings.read_text())

    def test_without_a_network_the_pictures_stay_and_come_back_after_it(self):
        program = self.start_and_wait()
        self.set_well("DUMMY0", "bing", "--layout", "fill")
        ask("/_fault", "POST", {"where": "metadata", "kind": "500"})
        # The next session begins with an empty desktop.
        self.quit(program)
        self.paint(BEFORE)
        program = self.start_and_wait()
        self.assertEqual(x11.color(960, 900), "#" + COLORS["bing"].upper())
        answer = run(PROGRAM, "wallpaper", "next", "DUMMY0", env=self.environment)
        self.assertEqual(answer.stderr, "DUMMY0: Bing returned HTTP 500.\n")
        self.assertEqual(x11.color(960, 900), "#" + COLORS["bing"].upper())
        ask("/_fault", "DELETE")
        self.assertEqual(run(PROGRAM, "wallpaper", "next", "DUMMY0", env=self.environment).returncode, 0)
        self.assertNotIn("lastFailure", self.status()["DUMMY0"])
        self.quit(program)


if __name__ == "__main__":
    unittest.main()
