"""What the measurements of the running program share: a profile of its own, the pixels of the monitors, its costs."""
import ctypes
import os
import pathlib
import subprocess
import time

BLANK = "#010203"
PATIENCE = 60  # seconds, after which a measurement is broken


class Monitors:
    """The last pixel of every monitor of tools/desktop.sh."""

    def __init__(self):
        self.x11 = ctypes.CDLL("libX11.so.6")
        pointer, number = ctypes.c_void_p, ctypes.c_ulong
        self.x11.XOpenDisplay.restype = self.x11.XGetImage.restype = pointer
        self.x11.XDefaultRootWindow.restype = self.x11.XGetPixel.restype = number
        self.x11.XDefaultRootWindow.argtypes = self.x11.XDestroyImage.argtypes = [pointer]
        self.x11.XGetImage.argtypes = [pointer, number, *[ctypes.c_int] * 2, *[ctypes.c_uint] * 2, number, ctypes.c_int]
        self.x11.XGetPixel.argtypes = [pointer, ctypes.c_int, ctypes.c_int]
        self.connection = self.x11.XOpenDisplay(None)
        self.root = self.x11.XDefaultRootWindow(self.connection)
        self.sizes = os.environ["QUILLMAR_DESKTOP_MONITORS"].split()
        self.points, left = [], 0
        for width, height in (map(int, size.split("x")) for size in self.sizes):
            left += width
            self.points.append((left - 1, height - 1))

    def are_painted(self):
        for x, y in self.points:
            image = self.x11.XGetImage(self.connection, self.root, x, y, 1, 1, 0xFFFFFF, 2)
            pixel = self.x11.XGetPixel(image, 0, 0)
            self.x11.XDestroyImage(image)
            if f"#{pixel & 0xFFFFFF:06X}" == BLANK:
                return False
        return True

    def blank(self):
        subprocess.run(["hsetroot", "-solid", BLANK], check=True)
        wait_until("a blank desktop", lambda: not self.are_painted())

    def painted_after(self, command, environment):
        """Seconds from exec to the last pixel of all monitors, and the process."""
        self.blank()
        began = time.monotonic()
        process = subprocess.Popen(command, env=environment, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        wait_until(f"a picture by {command}", self.are_painted, 0.0003)
        return time.monotonic() - began, process


def wait_until(what, condition, pause=0.01):
    end = time.monotonic() + PATIENCE
    while not condition():
        if time.monotonic() > end:
            raise TimeoutError(f"{PATIENCE} seconds went by without {what}")
        time.sleep(pause)


class Agent:
    """The program with a profile of its own in a folder."""

    def __init__(self, program, folder, **variables):
        self.program = str(program)
        self.folder = pathlib.Path(folder)
        self.support = self.folder / "data" / "Quillmar"
        self.probe = self.folder / "turns"
        self.environment = os.environ | {"XDG_RUNTIME_DIR": str(self.folder), "QUILLMAR_LOOP_PROBE": str(self.probe),
                                         "DESKTOP_AUTOSTART_ID": "bench"}  # nobody is there to be welcomed
        for name in ("data", "config", "cache", "state"):
            self.environment[f"XDG_{name.upper()}_HOME"] = str(self.folder / name)
        self.environment |= variables
        self.process = None

    def start(self):
        self.process = subprocess.Popen([self.program], env=self.environment, stderr=subprocess.DEVNULL)
        self.wait_until_ready()

    def wait_until_ready(self):
        wait_until("an answer", lambda: self.run("status", check=False).returncode == 0)
        self.settle()

    def run(self, *words, check=True):
        return subprocess.run([self.program, *words], env=self.environment, check=check, capture_output=True)

    def timed(self, *words):
        began = time.monotonic()
        self.run(*words)
        return time.monotonic() - began

    def set_all(self, picture):
        return [self.program, "wallpaper", "set", "all", "image", str(picture), "--layout", "fill"]

    def settle(self):
        """Waits until neither the program nor what it started does anything for a moment."""
        spent, since = None, time.monotonic()
        while time.monotonic() - since < 0.25:
            now = sum(ticks(pid) for pid in family(self.process.pid))
            if now != spent:
                spent, since = now, time.monotonic()
            time.sleep(0.02)

    def quit(self):
        self.settle()
        self.process.terminate()
        self.process.wait(PATIENCE)

    def turns(self):
        """The long turns of the main loop: when each ended, how many milliseconds it took and used a processor."""
        lines = self.probe.read_text().splitlines() if self.probe.exists() else []
        return [tuple(map(float, line.split())) for line in lines]

    def longest_turn(self, since):
        return max((turn[1:] for turn in self.turns() if turn[0] >= since), default=(0, 0))


def family(pid):
    """The process and those that it started."""
    children = pathlib.Path(f"/proc/{pid}/task/{pid}/children").read_text().split()
    return [pid, *map(int, children)]


def ticks(pid):
    try:
        fields = pathlib.Path(f"/proc/{pid}/stat").read_text().rsplit(")", 1)[1].split()
    except OSError:
        return 0
    return sum(map(int, fields[11:15]))


def memory(pid, prefix):
    """MB of all that begins so in the process's account: Pss:, Private_."""
    lines = pathlib.Path(f"/proc/{pid}/smaps_rollup").read_text().splitlines()
    return sum(int(line.split()[1]) for line in lines if line.startswith(prefix)) / 1024


def wake_ups(pid, seconds):
    """How often all threads of the process were switched to or from meanwhile."""

    def switches():
        counts = {}
        for task in pathlib.Path(f"/proc/{pid}/task").iterdir():
            lines = (task / "status").read_text().splitlines()
            counts[task.name] = sum(int(line.split()[1]) for line in lines if "ctxt_switches" in line)
        return counts

    before = switches()
    time.sleep(seconds)
    return sum(count - before.get(thread, 0) for thread, count in switches().items())
