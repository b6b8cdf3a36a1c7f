"""A picture of 30 MiB from a server on this machine: Quillmar beside curl, turn by turn."""
import http.server
import os
import statistics
import subprocess
import sys
import tempfile
import threading

SIZE, ROUNDS = 30 * 1048576, 15


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def log_message(self, *arguments):
        pass

    def do_GET(self):
        self.send_response(200)
        self.send_header("Content-Type", "image/png")
        self.send_header("Content-Length", str(SIZE))
        self.end_headers()
        with open(self.server.file, "rb") as file:
            self.connection.sendfile(file)


def main():
    with tempfile.TemporaryDirectory() as folder:
        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        server.file = f"{folder}/picture"
        with open(server.file, "wb") as file:
            file.write(os.urandom(SIZE))
        threading.Thread(target=server.serve_forever, daemon=True).start()
        url = f"http://127.0.0.1:{server.server_port}/picture.png"
        ours = subprocess.check_output([sys.argv[1], url, str(ROUNDS)], text=True).splitlines()
        command = ["curl", "-s", "-o", f"{folder}/copy", "-w", "%{time_total}", url]
        theirs = [float(subprocess.check_output(command)) for _ in range(ROUNDS)]
        speed = [30 / statistics.median(times) for times in ([float(line) for line in ours[:-1]], theirs)]
        print(f"Quillmar {speed[0]:7.0f} MiB/s\ncurl     {speed[1]:7.0f} MiB/s\nratio    {speed[0] / speed[1]:7.2f}")
        print(ours[-1])
        server.shutdown()


if __name__ == "__main__":
    main()
