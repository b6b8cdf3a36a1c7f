"""One local web server that plays twelve picture services, with a switch for each way in which they can fail.

POST /_fault {"where": "image" or "metadata", "kind": ..., "text": ...} throws the switch for all of them, DELETE /_fault
puts it back. The kinds: a status ("404"), "redirect" (elsewhere, where the true answer is), "redirect-to" (the text),
"body" (the text as the whole answer), "html", "wrong-type", "no-type", "no-length", "long-length", "cut", "endless",
"drip", "announces" (1xx without an end), "challenge", "svg", "size" (an answer padded to so many bytes), "size-unannounced", "corrupt". GET /_log tells the requests since
DELETE /_log, in order.
"""

import contextlib
import http.server
import json
import threading
import time
import urllib.parse

from pictures import png
from services import Services, query_of

PICTURE_PATHS = ("/images/", "/iiif/", "/archive/", "/th", "/elsewhere/image")


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def log_message(self, *arguments):
        pass

    def do_GET(self):
        state = self.server.state
        url = urllib.parse.urlsplit(self.path)
        if url.path == "/_log":
            return self.send(200, json.dumps(state.log).encode(), "application/json")
        state.log.append({"path": self.path, "headers": dict(self.headers)})
        where = "image" if url.path.startswith(PICTURE_PATHS) else "metadata"
        if url.path.startswith("/elsewhere/"):
            # Where a redirect has led to: the answer to what was asked for first.
            url = urllib.parse.urlsplit(query_of(url.query)["of"])
        elif state.fault and state.fault["where"] == where:
            with contextlib.suppress(BrokenPipeError, ConnectionResetError):
                return self.fail(state.fault, url)
        self.send_true(url)

    def send_true(self, url):
        self.send(*self.true_answer(url))

    def true_answer(self, url):
        answer = self.server.state.services.answer(url.path, query_of(url.query), self.headers)
        if isinstance(answer, bytes):
            return 200, answer, "image/png"
        return answer[0], json.dumps(answer[1]).encode(), "application/json"

    def send(self, status, body, kind, length=None, headers=()):
        """The whole answer, or with another length than it has the promise of one; a kind or length of False is not told."""
        self.send_response(status)
        if kind:
            self.send_header("Content-Type", kind)
        if length is not False:
            self.send_header("Content-Length", str(len(body) if length is None else length))
        for name, value in headers:
            self.send_header(name, value)
        self.close_connection = self.close_connection or length is not None
        if self.close_connection:
            self.send_header("Connection", "close")
        self.end_headers()
        self.wfile.write(body)

    def fail(self, fault, url):
        kind, text = fault["kind"], fault.get("text", "")
        status, body, mime = self.true_answer(url)
        if kind.isdigit():
            self.send(int(kind), b'{"error": "as you wish"}', "application/json")
        elif kind == "redirect":
            place = "image" if mime.startswith("image/") else "list"
            target = f"/elsewhere/{place}?of={urllib.parse.quote(self.path, safe='')}"
            self.send(301, b"", False, headers=[("Location", target)])
        elif kind == "redirect-to":
            self.send(302, b"", False, headers=[("Location", text or self.path)])
        elif kind == "body":
            self.send(200, text.replace("{root}", self.server.state.root).encode(), mime)
        elif kind == "html":
            self.send(200, b"<!doctype html><title>Sign in</title>", "text/html; charset=utf-8")
        elif kind == "wrong-type":
            self.send(status, body, "application/octet-stream")
        elif kind == "no-type":
            self.send(status, body, False)
        elif kind == "no-length":
            self.send(status, body, mime, length=False)
        elif kind == "long-length":
            self.send(status, body, mime, length=len(body) + 1000)
        elif kind == "cut":
            self.send(status, body[: len(body) // 2], mime, length=len(body))
        elif kind == "endless":
            self.send(status, body, mime, length=False)
            while True:
                self.wfile.write(b" " * 65536)
        elif kind == "announces":
            while True:
                self.wfile.write(b"HTTP/1.1 103 Early Hints\r\nLink: x\r\n\r\n" * 1000)
        elif kind == "challenge":
            self.send(403, b"<!doctype html>Just a moment...", "text/html", headers=[("cf-mitigated", "challenge")])
        elif kind == "svg":
            self.send(200, b'<svg xmlns="http://www.w3.org/2000/svg" width="9" height="9"/>', "image/svg+xml")
        elif kind == "drip":
            self.send(status, b"", mime, length=len(body))
            for byte in body:
                self.wfile.write(bytes([byte]))
                time.sleep(1)
        elif kind in ("size", "size-unannounced"):
            self.send(status, body.ljust(int(text)), mime, length=None if kind == "size" else False)
        elif kind == "corrupt":
            self.send(status, png([bytes(300)] * 100)[:-100], mime)

    def do_POST(self):
        length = int(self.headers.get("Content-Length", 0))
        self.server.state.fault = json.loads(self.rfile.read(length))
        self.send(200, b"", False)

    def do_DELETE(self):
        if self.path == "/_log":
            self.server.state.log.clear()
        else:
            self.server.state.fault = None
        self.send(200, b"", False)


class State:
    def __init__(self, root):
        self.root = root
        self.services = Services(root)
        self.fault = None
        self.log = []


class Server(http.server.ThreadingHTTPServer):
    daemon_threads = True
    request_queue_size = 64

    def handle_error(self, request, client_address):
        pass  # a client that hangs up is what half of the tests are about


@contextlib.contextmanager
def running(address=None):
    """The server on a free port of this machine, reached under the given address of it and all others, or by this
    machine alone: where it is."""
    server = Server(("0.0.0.0" if address else "127.0.0.1", 0), Handler)
    root = f"http://{address or '127.0.0.1'}:{server.server_port}"
    server.state = State(root)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    try:
        yield root
    finally:
        server.shutdown()
