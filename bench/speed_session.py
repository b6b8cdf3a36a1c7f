"""The measurements of bench/speed.py on one desktop: prints what was measured as JSON, seconds where it is time.
usage: speed_session.py NAME BUILD PICTURES     NAME of a pair of monitors, "idle", or the way of a desktop"""
import contextlib
import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time

from running import Agent, Monitors, memory, wait_until, wake_ups

ROUNDS = 7
FORMATS = ("jpg", "png", "webp", "tif", "gif", "heic", "avif")
CHANGES = 100
# What any command costs on this machine, and one that asks the bus.
CALL_PEERS = {
    "empty program": ["true"],
    "bus client": ["busctl", "--user", "call", "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                   "GetId"],
}


class Session:
    def __init__(self, build, pictures, folder, **variables):
        self.monitors = Monitors()
        self.agent = Agent(build / "quillmar", folder, **variables)
        self.photo = pictures / "photo.jpg"
        self.small = [str(pictures / f"{size}.jpg") for size in self.monitors.sizes]
        self.copies = 0
        self.results = {}

    def add(self, name, sample):
        self.results.setdefault(name, []).append(sample)

    def new_photo(self):
        """The same picture by another name, so that it is not in the cache."""
        self.copies += 1
        return shutil.copy(self.photo, self.agent.folder / f"{self.copies}.jpg")

    def peers(self, row, pictures):
        xwallpaper = ["xwallpaper"]
        for number, picture in enumerate(pictures):
            xwallpaper += ["--output", f"DUMMY{number}", "--zoom", picture]
        for name, command in (("feh", ["feh", "--no-fehbg", "--bg-fill", *pictures]), ("xwallpaper", xwallpaper)):
            elapsed, process = self.monitors.painted_after(command, os.environ)
            process.wait()
            self.add(f"{row} {name}", elapsed)

    def start(self, row):
        elapsed, self.agent.process = self.monitors.painted_after([self.agent.program], self.agent.environment)
        self.add(row, elapsed)
        self.agent.wait_until_ready()
        self.agent.quit()

    def starts(self, row, pictures):
        self.agent.start()
        for number, picture in enumerate(pictures):
            self.agent.run("wallpaper", "set", f"DUMMY{number}", "image", picture, "--layout", "fill")
        self.agent.quit()
        for _ in range(ROUNDS):
            self.start(f"{row} cached")
            shutil.rmtree(self.agent.support / "Cache")
            self.start(f"{row} empty")
            self.peers(row, pictures)

    def changes(self):
        self.agent.start()
        for _ in range(ROUNDS):
            photo = self.new_photo()
            for row in ("set new", "set cached"):
                since = time.monotonic()
                elapsed, process = self.monitors.painted_after(self.agent.set_all(photo), self.agent.environment)
                process.wait()
                self.add(row, elapsed)
                self.agent.settle()
                self.add("turn", self.agent.longest_turn(since))
            self.peers("set", [str(self.photo)] * len(self.monitors.sizes))
        self.calls_meanwhile()
        self.agent.quit()

    def calls_meanwhile(self):
        """Another call while a new picture is set on all displays; the worst of each round, and at rest."""
        for _ in range(ROUNDS):
            for _ in range(5):
                self.add("call at rest", self.agent.timed("status"))
                for peer, command in CALL_PEERS.items():
                    began = time.monotonic()
                    subprocess.run(command, check=True, env=self.agent.environment, stdout=subprocess.DEVNULL)
                    self.add(peer, time.monotonic() - began)
            since = time.monotonic()
            process = subprocess.Popen(self.agent.set_all(self.new_photo()), env=self.agent.environment,
                                       stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
            worst = self.agent.timed("status")
            while process.poll() is None:
                worst = max(worst, self.agent.timed("status"))
            if process.returncode != 0:
                raise RuntimeError(process.stderr.read().decode())
            process.stderr.close()
            self.agent.settle()
            self.add("call meanwhile", worst)
            self.add("turn", self.agent.longest_turn(since))

    def pair(self):
        self.starts("small", self.small)
        self.starts("photo", [str(self.photo)] * len(self.monitors.sizes))
        self.changes()

    def idle(self):
        self.agent.start()
        self.agent.run("wallpaper", "set", "all", "image", self.small[0])
        self.agent.settle()
        # Past what a start leaves to do.
        wake_ups(self.agent.process.pid, 90)
        self.add("wake-ups", wake_ups(self.agent.process.pid, 60))
        self.add("pss", memory(self.agent.process.pid, "Pss:"))
        pictures = [str(self.agent.folder / f"picture.{suffix}") for suffix in FORMATS]
        for picture in pictures:
            subprocess.run(["vips", "resize", self.small[0], picture, "0.5"], check=True)
        for number in range(CHANGES):
            self.agent.run("wallpaper", "set", "DUMMY0", "image", pictures[number % len(pictures)])
            if number in (0, CHANGES - 1):
                self.agent.settle()
                self.add("private", memory(self.agent.process.pid, "Private_"))
        self.agent.quit()

    def strategy(self):
        self.agent.start()
        self.calls_meanwhile()
        self.agent.quit()


@contextlib.contextmanager
def companion(command, environment, is_ready):
    with subprocess.Popen(command, env=environment, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL) as process:
        try:
            if is_ready:
                process.stdout.readline()
            else:
                question = ["xprop", "-root", "XFCE_DESKTOP_WINDOW"]
                wait_until("XFCE's desktop", lambda: b"window id" in subprocess.check_output(question))
            yield
        finally:
            process.kill()
            process.stdout.close()


def main():
    name, build, pictures = sys.argv[1], pathlib.Path(sys.argv[2]), pathlib.Path(sys.argv[3])
    with tempfile.TemporaryDirectory() as folder, contextlib.ExitStack() as stack:
        home = os.environ | {"HOME": folder, "XDG_CONFIG_HOME": folder}
        ways = {
            "XFCE": (["xfdesktop", "--disable-wm-check"], False),
            "KDE": ([build / "tests" / "desktop_x11_tests", "plasma-shell"], True),
        }
        if name in ways:
            stack.enter_context(companion(ways[name][0], home, ways[name][1]))
        session = Session(build, pictures, folder, XDG_CURRENT_DESKTOP=name)
        {"small": session.pair, "large": session.pair, "idle": session.idle}.get(name, session.strategy)()
        print(json.dumps(session.results))


if __name__ == "__main__":
    main()
