"""The built program on a desktop of its own: start it, read its log, look at the pixels, change the monitors.

Runs inside tools/desktop.sh with the two monitors that it has by default; QUILLMAR_PROGRAM names the program.
"""

import contextlib
import ctypes
import json
import os
import pathlib
import shutil
import signal
import subprocess
import tempfile
import time
import unittest

PROGRAM = os.path.abspath(os.environ["QUILLMAR_PROGRAM"])
DESKTOP = pathlib.Path(__file__).resolve().parents[2] / "tools" / "desktop.sh"
PATIENCE = 40.0  # seconds that any one step may take; nothing here asserts how long one took
BEFORE = "#20242B"  # what the desktop shows before the program paints
ALERT = "Quillmar Couldn’t Load Settings"
FIRST_ARRANGEMENT = (
    *("--output", "DUMMY0", "--mode", "1920x1080", "--pos", "0x0", "--primary"),
    *("--output", "DUMMY1", "--mode", "1280x1024", "--pos", "1920x0"),
)
NOBODY = ("setpriv", "--reuid=65534", "--regid=65534", "--clear-groups")

ACQUIRED = "Primary application instance acquired."
COMPLETED = "Application startup completed."
LIMITED = "Application startup is limited until settings are recovered."
TERMINATING = "Application is terminating."


def wait_until(what, condition, program=None):
    end = time.monotonic() + PATIENCE
    while not (result := condition()):
        if program and program.poll() is not None:
            raise AssertionError(f"status {program.returncode} before {what}: {program.complaint()}")
        if time.monotonic() > end:
            raise AssertionError(f"{PATIENCE:.0f} seconds went by without {what}")
        time.sleep(0.01)
    return result


def run(*command, **options):
    return subprocess.run(command, capture_output=True, text=True, timeout=PATIENCE, **options)


def run_checked(*command):
    return run(*command, check=True).stdout


def arrange(*arguments):
    run_checked("xrandr", *arguments)
    # Without this question GDK overlooks an output that was just enabled.
    run_checked("xrandr", "-q")


class X11:
    """Pixels of the root window, a connection for each look: the server may be another one by then."""

    def __init__(self):
        library = ctypes.CDLL("libX11.so.6")
        pointer, number = ctypes.c_void_p, ctypes.c_ulong
        rectangle = [ctypes.c_int] * 2 + [ctypes.c_uint] * 2
        for name, result, arguments in (
            ("XOpenDisplay", pointer, [ctypes.c_char_p]),
            ("XCloseDisplay", ctypes.c_int, [pointer]),
            ("XDefaultRootWindow", number, [pointer]),
            ("XGetImage", pointer, [pointer, number, *rectangle, number, ctypes.c_int]),
            ("XGetPixel", number, [pointer, ctypes.c_int, ctypes.c_int]),
            ("XDestroyImage", ctypes.c_int, [pointer]),
        ):
            function = getattr(library, name)
            function.restype, function.argtypes = result, arguments
        self.library = library
        # A point outside a desktop that just shrank is no reason to end, which is what the library would do.
        self.refused = ctypes.CFUNCTYPE(ctypes.c_int, pointer, pointer)(lambda *_: 0)
        library.XSetErrorHandler(self.refused)

    def color(self, x, y, display=None):
        connection = self.library.XOpenDisplay((display or os.environ["DISPLAY"]).encode())
        root = self.library.XDefaultRootWindow(connection)
        image = self.library.XGetImage(connection, root, x, y, 1, 1, 0xFFFFFF, 2)
        pixel = self.library.XGetPixel(image, 0, 0) if image else None
        if image:
            self.library.XDestroyImage(image)
        self.library.XCloseDisplay(connection)
        return None if pixel is None else f"#{pixel & 0xFFFFFF:06X}"


x11 = X11()


class Program(subprocess.Popen):
    """A started program. Its standard error is kept."""

    def __init__(self, arguments, environment):
        self.output = tempfile.TemporaryFile()
        super().__init__(arguments, env=environment, stdin=subprocess.DEVNULL, stdout=self.output, stderr=self.output)

    def complaint(self):
        self.output.seek(0)
        return self.output.read().decode()

    def status(self):
        return self.wait(PATIENCE)


@contextlib.contextmanager
def another_desktop(window_manager="none"):
    """A second desktop: its environment, and the process id of its X server."""
    command = [str(DESKTOP), "sh", "-c", 'echo "$DISPLAY $DBUS_SESSION_BUS_ADDRESS"; cat']
    desktop = subprocess.Popen(
        command, env=os.environ | {"QUILLMAR_DESKTOP_WM": window_manager}, stdin=subprocess.PIPE, stdout=subprocess.PIPE
    )
    try:
        display, bus = desktop.stdout.readline().decode().split()
        children = pathlib.Path(f"/proc/{desktop.pid}/task/{desktop.pid}/children").read_text().split()
        server = next(int(pid) for pid in children if pathlib.Path(f"/proc/{pid}/comm").read_text() == "Xorg\n")
        yield {"DISPLAY": display, "DBUS_SESSION_BUS_ADDRESS": bus}, server
    finally:
        desktop.communicate(timeout=PATIENCE)


class DesktopTest(unittest.TestCase):
    """A private profile for each test, and a desktop in one colour and in its first arrangement."""

    # One on each display as the desktop is arranged at first, where no alert covers it.
    POINTS = ((200, 150), (2100, 150))

    def setUp(self):
        self.home = pathlib.Path(tempfile.mkdtemp(prefix="quillmar-test."))
        self.addCleanup(shutil.rmtree, self.home)
        self.folder = self.home / "data" / "Quillmar"
        self.settings = self.folder / "settings.json"
        runtime = self.home / "runtime"  # of its own, so that a test meets no other instance
        runtime.mkdir(mode=0o700)
        self.environment = os.environ | {"XDG_RUNTIME_DIR": str(runtime), "LANG": "C.UTF-8", "LANGUAGE": "en"}
        # As the session starts it: nobody is there to be welcomed.
        self.environment["DESKTOP_AUTOSTART_ID"] = "test"
        for name in ("data", "config", "cache", "state"):
            self.environment[f"XDG_{name.upper()}_HOME"] = str(self.home / name)
        self.paint(BEFORE)

    def start(self, *arguments, wrapper=(), **changes):
        """Starts the program. A change to None takes the variable away."""
        environment = {name: value for name, value in (self.environment | changes).items() if value is not None}
        program = Program([*wrapper, PROGRAM, *arguments], environment)
        self.addCleanup(self.end, program)
        return program

    def start_and_wait(self, message=COMPLETED, **options):
        count = self.log().count(message)
        program = self.start(**options)
        wait_until(f"“{message}”", lambda: self.log().count(message) > count, program)
        return program

    @staticmethod
    def end(program):
        program.output.close()
        if program.poll() is None:
            program.kill()
            program.wait()

    def quit(self, program, *signals):
        for number in signals or (signal.SIGTERM,):
            program.send_signal(number)
        self.assertEqual(program.status(), 0, program.complaint())

    def log(self):
        """The messages of the log files, oldest first."""
        lines = []
        for file in sorted(self.folder.glob("Logs/Quillmar-*.log")):
            # The last line may still be on its way.
            lines += file.read_bytes().split(b"\n")[:-1]
        return [json.loads(line)["message"] for line in lines]

    def wait_for_log(self, message, program):
        wait_until(f"“{message}”", lambda: message in self.log(), program)

    def displays(self):
        """The ID of each connected output, in the program's own words."""
        answer = run(PROGRAM, "displays", "--json", env=self.environment, check=True).stdout
        return {display["localizedName"]: display["id"] for display in json.loads(answer)["displays"]}

    def make_settings(self, **colors):
        """Lets the program make its settings, then gives each named output a colour."""
        self.quit(self.start_and_wait())
        document = json.loads(self.settings.read_bytes())
        ids = self.displays()
        document["wallpaper"]["displays"] = [
            {"persistentDisplayID": ids[output], "mode": {"solidColor": {"_0": {"hexColor": color}}}, "savedModes": []}
            for output, color in colors.items()
        ]
        self.settings.write_text(json.dumps(document, indent=2, ensure_ascii=False), encoding="utf-8")
        return document

    @staticmethod
    def paint(color):
        run_checked("hsetroot", "-solid", color)

    def wait_for_colors(self, program, *colors, points=POINTS):
        seen = []

        def is_painted():
            seen[:] = [x11.color(x, y) for x, y in points]
            return seen == list(colors)

        try:
            wait_until(f"the colours {colors}", is_painted, program)
        except AssertionError as failure:
            raise AssertionError(f"{failure}; seen {seen}") from None

    def assert_untouched_desktop(self):
        self.assertEqual([x11.color(x, y) for x, y in self.POINTS], [BEFORE, BEFORE])

    @staticmethod
    def wait_for_alert(program):
        search = ("xdotool", "search", "--all", "--onlyvisible", "--pid", str(program.pid), "--name", f"^{ALERT}$")
        return wait_until("the recovery alert", lambda: run(*search).stdout.split(), program)[0]

    @staticmethod
    def answer_alert(program, key):
        """Presses a real key, which reaches the alert only if that has the focus."""
        question = ("xdotool", "getwindowfocus", "getwindowname")
        wait_until("an alert with the focus", lambda: run(*question).stdout.strip() == ALERT, program)
        run_checked("xdotool", "key", key)
