"""Newer versions of the program, from a list on a local HTTPS server with a certificate of the test's own."""

import contextlib
import http.server
import json
import os
import pathlib
import ssl
import subprocess
import sys
import tempfile
import threading
import unittest

from quillmar_desktop import PROGRAM, DesktopTest, run, wait_until

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.append(str(ROOT / "tools"))
from sign_update import Key, feed, item  # noqa: E402

MAKERS, STRANGERS = Key(b"of the makers, for this test, 1."), Key(b"of somebody else altogether, 2..")
PACKAGE = b"a package\n" * 20000
PAGE = "https://quillmar.example/news"


class Handler(http.server.BaseHTTPRequestHandler):
    def log_message(self, *arguments):
        pass

    def do_GET(self):
        answer = self.server.answers.get(self.path, (404, {}, b""))
        status, headers, body = answer
        self.send_response(status)
        for name, value in headers.items():
            self.send_header(name, value)
        self.end_headers()
        with contextlib.suppress(BrokenPipeError, ConnectionResetError):
            self.wfile.write(body)
            while body and "endless" in self.path:
                self.wfile.write(b" " * 65536)


@contextlib.contextmanager
def serving(certificate=None):
    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
    server.answers = {}
    if certificate:
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(certificate)
        server.socket = context.wrap_socket(server.socket, server_side=True)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    try:
        yield server, f"{'https' if certificate else 'http'}://localhost:{server.server_port}"
    finally:
        server.shutdown()
        server.server_close()


class UpdatesTest(DesktopTest):
    def run_with(self, feed_address, **keys):
        """The program of a build whose list of versions is there."""
        info = json.loads((pathlib.Path(PROGRAM).parent / "Info.json").read_text())
        info |= {"QuillmarUpdateEnabled": True, "SUFeedURL": feed_address, "SUPublicEDKey": MAKERS.public_text()} | keys
        named = self.home / "Info.json"
        named.write_text(json.dumps(info))
        self.environment["QUILLMAR_INFO"] = str(named)
        return self.start_and_wait()

    def ask(self, *words):
        answer = run(PROGRAM, *words, env=self.environment)
        return answer.returncode, answer.stdout, answer.stderr

    def test_a_newer_version_is_downloaded_verified_and_shown_to_the_user(self):
        with serving(os.environ["QUILLMAR_TEST_SERVER"]) as (server, address), serving() as (_, plain):
            program = self.run_with(address + "/feed")
            listed = {"/q.deb": (200, {}, PACKAGE)}

            def serve(body, status=200, path="/feed", **headers):
                server.answers = listed | {path: (status, headers, body if isinstance(body, bytes) else body.encode())}

            serve(feed(item(MAKERS, PACKAGE, "/q.deb", "0.0.1")))
            self.assertRegex(self.ask("update")[1], r"^Quillmar \S+ is up to date\.\n$")
            cases = [
                ("<html>", {}, "What should be the list of versions is none"),
                ("", {"status": 302, "Location": plain + "/feed"}, "which is no secure address"),
                (feed(item(STRANGERS, PACKAGE, "/q.deb", "99.0.0")), {}, "is not signed by Quillmar's makers"),
                (feed(item(MAKERS, PACKAGE[1:], "/q.deb", "99.0.0")), {}, "not as long as was announced"),
                (feed(item(MAKERS, PACKAGE, plain + "/q.deb", "99.0.0")), {}, "which is no secure address"),
                ("", {"status": 302, "Location": "/endless"}, "longer than Quillmar can safely read"),
            ]
            for body, how, message in cases:
                serve(body, **how)
                server.answers["/endless"] = (200, {}, b"<rss>")
                status, output, errors = self.ask("update")
                self.assertEqual((status, output), (1, ""), message)
                self.assertIn(message, errors)
            self.assertIn("The last look for a newer version failed", self.ask("status")[1])

            serve(feed(item(MAKERS, PACKAGE, "/q.deb", "99.0.0", PAGE)))
            status, output, _ = self.ask("update", "--json")
            self.assertEqual(status, 0)
            update = json.loads(output)["update"]
            self.assertEqual((update["version"], update["page"]), ("99.0.0", PAGE))
            self.assertEqual(pathlib.Path(update["file"]).read_bytes(), PACKAGE)
            self.assertEqual([path.name for path in (self.folder / "Updates").iterdir()], ["q.deb"])
            self.assertIn("Quillmar 99.0.0 is available", self.ask("status")[1])
            self.assertEqual(self.ask("update", "set", "--automaticallyChecksForUpdates=false")[0], 0)
            self.quit(program)
            program = self.start_and_wait()
            self.assertEqual(json.loads(self.ask("status", "--json")[1])["update"], update)
            self.assertIn('"automaticallyChecksForUpdates":false', (self.home / "state/Quillmar/updates").read_text().replace(" ", ""))
            self.quit(program)

    def test_a_server_that_nobody_vouches_for_is_not_believed(self):
        with tempfile.TemporaryDirectory() as folder, serving(certificate(folder)) as (server, address):
            server.answers["/feed"] = (200, {}, feed(item(MAKERS, PACKAGE, "/q.deb", "99.0.0")).encode())
            program = self.run_with(address + "/feed")
            status, _, errors = self.ask("update")
            self.assertEqual(status, 1)
            self.assertIn("could not be reached", errors)
            self.quit(program)

    def test_a_build_that_looks_for_no_updates_says_so(self):
        program = self.run_with("https://localhost/feed", QuillmarUpdateEnabled=False)
        self.assertEqual(self.ask("update"), (0, "This build of Quillmar does not look for newer versions.\n", ""))
        self.assertIn("Software updates are disabled for this build.", self.log())
        self.quit(program)

    def test_the_session_starts_the_program_at_login_as_the_settings_say(self):
        entry = self.home / "config/autostart/com.quillmar.Quillmar.desktop"
        program = self.start_and_wait()
        self.assertIn(f'Exec="{PROGRAM}"\n', entry.read_text())
        self.assertEqual(self.ask("general", "set", "--launchAtLogin=false")[0], 0)
        self.assertFalse(entry.exists())
        entry.parent.rmdir()
        entry.parent.write_text("no folder")
        status, _, errors = self.ask("general", "set", "--launchAtLogin")
        self.assertEqual((status, errors), (1, f"{entry}: Not a directory\n"))
        self.assertIn("The session does not start Quillmar at login", self.ask("status")[1])
        entry.parent.unlink()
        document = json.loads(self.settings.read_text())
        document["general"]["launchAtLogin"] = False
        self.settings.write_text(json.dumps(document))
        self.assertEqual(self.ask("backup", "reset")[0], 0)
        wait_until("the entry", entry.exists, program)
        self.quit(program)
        self.assertEqual(self.ask("general")[0], 1)
        entry.unlink()
        self.assertEqual(self.ask("backup", "reset")[0], 0)
        self.assertTrue(entry.exists(), "the session follows a restore without the program too")


def certificate(folder):
    """A file with a new key and a certificate of its own for this machine."""
    key, chain, whole = (pathlib.Path(folder, name) for name in ("key.pem", "chain.pem", "server.pem"))
    subject = ["-subj", "/CN=localhost", "-addext", "subjectAltName=DNS:localhost"]
    command = ["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-keyout", key, "-out", chain, *subject]
    subprocess.run(command, check=True, capture_output=True)
    whole.write_bytes(key.read_bytes() + chain.read_bytes())
    return str(whole)


def main():
    if "QUILLMAR_TEST_SERVER" in os.environ:
        unittest.main()
    with tempfile.TemporaryDirectory(prefix="quillmar-certificate.") as folder:
        os.environ["QUILLMAR_TEST_SERVER"] = certificate(folder)
        trusting = [str(ROOT / "tools" / "trusting.sh"), f"{folder}/chain.pem", sys.executable, "-B", __file__]
        return subprocess.run(trusting + sys.argv[1:]).returncode


if __name__ == "__main__":
    sys.exit(main())
