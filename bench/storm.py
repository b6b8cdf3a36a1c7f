#!/usr/bin/env python3
"""A storm: monitors that go, come, move, change and mirror each other without a pause, while commands and slideshows
run, decoders are killed or stopped and the agent itself is killed once. When all is at rest every display has to show
what `quillmar status` says, pixel by pixel, and the displays have to be those of xrandr.

    bench/storm.py [--desktop root|xfce|gnome] [--seed N] [--rounds N] [--changes N] [--program FILE] [--keep]

Every round has a desktop and a profile of its own; its seed decides all that the storm does, not when the program
gets to run. Ends with status 1 when a round failed.
"""
import argparse
import ctypes
import json
import os
import pathlib
import random
import re
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import threading
import time
import zlib

from running import Agent, family, wait_until

ROOT = pathlib.Path(__file__).resolve().parents[1]
MODES = ["640x480", "800x600", "640x360"]
OUTPUTS = [f"DUMMY{i}" for i in range(4)]
PATIENCE = 30  # seconds from the last gust until everything has to be in its place
LULL = 50  # changes from one lull to the next
NAMES = {"root": "", "xfce": "XFCE", "gnome": "GNOME"}


def png(color, width=400, height=200, edge=16):
    """A picture in one colour within a white frame."""

    def chunk(kind, content):
        return struct.pack(">I", len(content)) + kind + content + struct.pack(">I", zlib.crc32(kind + content))

    inner, white = bytes.fromhex(color), b"\xff\xff\xff"
    row = white * edge + inner * (width - 2 * edge) + white * edge
    rows = [white * width] * edge + [row] * (height - 2 * edge) + [white * width] * edge
    header = struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)
    pixels = zlib.compress(b"".join(b"\0" + row for row in rows))
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", pixels) + chunk(b"IEND", b"")


class Picture:
    """Pixels as six hexadecimal digits, of a file or of the whole screen."""

    def __init__(self, width, height, stride, step, data, order):
        self.size, self.stride, self.step, self.data, self.order = (width, height), stride, step, data, order

    def color(self, x, y):
        at = y * self.stride + x * self.step
        return bytes(self.data[at + i] for i in self.order).hex()

    @staticmethod
    def of_file(file):
        library = ctypes.CDLL("libgdk_pixbuf-2.0.so.0")
        for name in ("gdk_pixbuf_new_from_file", "gdk_pixbuf_get_pixels"):
            getattr(library, name).restype = ctypes.c_void_p
        pixbuf = library.gdk_pixbuf_new_from_file(str(file).encode(), None)
        if not pixbuf:
            return None
        pixbuf = ctypes.c_void_p(pixbuf)
        width, height, stride, step = (
            getattr(library, f"gdk_pixbuf_get_{name}")(pixbuf) for name in ("width", "height", "rowstride", "n_channels")
        )
        data = ctypes.string_at(library.gdk_pixbuf_get_pixels(pixbuf), stride * (height - 1) + width * step)
        ctypes.CDLL("libgobject-2.0.so.0").g_object_unref(pixbuf)
        return Picture(width, height, stride, step, data, (0, 1, 2))

    @staticmethod
    def of_screen():
        pointer = ctypes.c_void_p
        library = ctypes.CDLL("libX11.so.6")
        library.XOpenDisplay.restype = library.XGetImage.restype = pointer
        library.XDefaultRootWindow.restype = ctypes.c_ulong
        connection = pointer(library.XOpenDisplay(None))
        root = ctypes.c_ulong(library.XDefaultRootWindow(connection))
        size = [ctypes.c_uint() for _ in range(2)]
        other = ctypes.byref(ctypes.c_ulong())
        library.XGetGeometry(connection, root, other, other, other, *map(ctypes.byref, size), other, other)
        width, height = (number.value for number in size)
        image = library.XGetImage(connection, root, 0, 0, width, height, ctypes.c_ulong(0xFFFFFF), 2)
        data = pointer.from_address(image + 16).value
        stride = ctypes.c_int.from_address(image + 44).value
        pixels = ctypes.string_at(data, stride * height)
        library.XDestroyImage(pointer(image))
        library.XCloseDisplay(connection)
        return Picture(width, height, stride, 4, pixels, (2, 1, 0))


class Screens:
    """The monitors as xrandr has them, and random changes of them."""

    def __init__(self, chance):
        self.chance = chance

    @staticmethod
    def call(*arguments):
        subprocess.run(["xrandr", *arguments], capture_output=True, timeout=20, check=False)

    @staticmethod
    def now():
        """Name, width, height, left, top and whether it is the first of every monitor that is on."""
        text = subprocess.run(["xrandr", "-q"], capture_output=True, text=True, check=True, timeout=20).stdout
        found = re.findall(r"^(\S+) (?:dis)?connected (primary )?(\d+)x(\d+)\+(\d+)\+(\d+)", text, re.M)
        return {name: (*map(int, numbers), bool(first)) for name, first, *numbers in found}

    def place(self):
        return f"{self.chance.randrange(5) * 800}x{self.chance.randrange(2) * 600}"

    def gust(self):
        """Arguments of one random change."""
        output, other = self.chance.sample(OUTPUTS, 2)
        on = ("--output", output, "--mode", self.chance.choice(MODES))
        return self.chance.choice([
            (*on, "--pos", self.place()),
            (*on, "--pos", self.place()),
            (*on, "--same-as", other),
            (*on, "--right-of", other),
            ("--output", output, "--off"),
            ("--output", output, "--off"),
            ("--output", output, "--pos", self.place()),
            ("--output", output, "--primary"),
            ("--output", output, "--pos", self.place(), "--output", other, "--pos", self.place()),
            ("--output", output, "--off", "--output", other, "--off"),
        ])

    FIRST = tuple(
        word for i, output in enumerate(OUTPUTS[:3])
        for word in ("--output", output, "--mode", MODES[i % 2], "--pos", f"{i * 800}x0", *(["--primary"] * (i == 0)))
    ) + ("--output", OUTPUTS[3], "--off")

    def last(self):
        """Side by side, and sometimes one that mirrors another; or just as it was before the storm."""
        if self.chance.random() < 0.5:
            return self.FIRST
        outputs = self.chance.sample(OUTPUTS, 4)
        count, left, words = self.chance.randrange(2, 5), 0, []
        for i, output in enumerate(outputs):
            if i >= count:
                words += ["--output", output, "--off"]
                continue
            mode = self.chance.choice(MODES)
            if i and self.chance.random() < 0.15:
                words += ["--output", output, "--mode", same[1], "--pos", same[2]]
                continue
            same = (output, mode, f"{left}x0")
            words += ["--output", output, "--mode", mode, "--pos", f"{left}x0", *(["--primary"] * (i == 0))]
            left += int(mode.split("x")[0])
        return tuple(words)


class Storm:
    def __init__(self, options, folder):
        self.options, self.folder = options, folder
        self.chance = random.Random(options.seed)
        self.screens = Screens(self.chance)
        self.colors, self.files = {}, {}
        pictures = folder / "pictures"
        for show in "ab":
            (pictures / show).mkdir(parents=True)
            for i in range(6):
                color = f"{40 + 30 * i:02x}{200 if show == 'a' else 60:02x}{250 - 35 * i:02x}"
                file = pictures / show / f"{i}.png"
                file.write_bytes(png(color))
                self.colors[str(file)] = color
        self.shows = [pictures / show for show in "ab"]
        self.agent = Agent(options.program, folder, XDG_CURRENT_DESKTOP=NAMES[options.desktop],
                           GSETTINGS_BACKEND="keyfile", LANG="C.UTF-8", LANGUAGE="en")
        self.agent.environment.pop("QUILLMAR_LOOP_PROBE")
        self.over = threading.Event()
        self.troubles, self.commands, self.kills = [], 0, 0
        self.restarting = threading.Lock()

    def call(self, *words):
        """A command; one that does not come back is a fault."""
        try:
            return subprocess.run([self.agent.program, *words], env=self.agent.environment, capture_output=True, timeout=90)
        except subprocess.TimeoutExpired:
            self.troubles.append(f"{words} did not come back")
            return subprocess.CompletedProcess(words, 1, b"", b"")

    def status(self):
        answer = self.call("status", "--json")
        return json.loads(answer.stdout)["displays"] if answer.returncode == 0 else None

    def words(self, chance):
        target = chance.choice(["all", "main", *OUTPUTS])
        color = f"#{chance.randrange(1 << 24):06X}"
        file = chance.choice(sorted(self.colors))
        show = ["slideshow", str(chance.choice(self.shows)), "--interval", "1"]
        layout = ["--layout", chance.choice(["fill", "fit", "stretch", "center"])]
        return chance.choice([
            ["wallpaper", "set", target, "colour", color],
            ["wallpaper", "set", target, "image", file, *layout],
            ["wallpaper", "set", target, *show, *layout],
            ["wallpaper", "next", target],
            ["wallpaper", "previous", target],
            ["status", "--json"],
        ])

    def command(self, chance):
        while not self.over.is_set():
            with self.restarting:
                pass
            words = self.words(chance)
            answer = self.call(*words)
            self.commands += 1
            if answer.returncode not in (0, 1):
                self.troubles.append(f"{words}: status {answer.returncode}: {answer.stderr.decode()}")
            time.sleep(chance.random() * 0.2)

    def attack_renders(self, chance):
        stopped = []
        while not self.over.wait(chance.random() * 0.15):
            try:
                children = family(self.agent.process.pid)[1:]
            except OSError:
                continue
            for pid in children:
                try:
                    name = pathlib.Path(f"/proc/{pid}/comm").read_text().strip()
                    if not "quillmar-render".startswith(name) or chance.random() < 0.7:
                        continue
                    number = signal.SIGSTOP if chance.random() < 0.3 else signal.SIGKILL
                    os.kill(pid, number)
                    self.kills += 1
                    if number == signal.SIGSTOP:
                        stopped.append(pid)
                except OSError:
                    pass
        for pid in stopped[::2]:  # the others have to be ended by the program itself
            try:
                if "render" in pathlib.Path(f"/proc/{pid}/comm").read_text():
                    os.kill(pid, signal.SIGCONT)
            except OSError:
                pass

    def identities(self):
        settings = self.agent.support / "settings.json"
        return [entry["persistentDisplayID"] for entry in json.loads(settings.read_bytes())["wallpaper"]["displays"]]

    def kill_agent(self):
        with self.restarting:
            before = self.ids()
            self.agent.process.kill()
            self.agent.process.wait()
            kept = self.identities()
            self.agent.process = subprocess.Popen([self.agent.program], env=self.agent.environment, stderr=subprocess.DEVNULL)
            wait_until("an answer", lambda: self.agent.run("status", check=False).returncode == 0)
            after, now = self.ids(), self.identities()
        twins = len(now) != len(set(now))
        moved = {name for name in before.keys() & after.keys() if before[name] != after[name]}
        if twins or moved or set(kept) - set(now):
            self.troubles.append(f"after the agent was killed: twins {twins}, other IDs {moved}, {kept} became {now}")

    def ids(self):
        answer = self.call("displays", "--json")
        return {} if answer.returncode else {each["localizedName"]: each["id"] for each in json.loads(answer.stdout)["displays"]}

    def prepare_desktop(self):
        if self.options.desktop != "xfce":
            return None
        for words in ("-p /desktop-icons/style -n -t int -s 0", "-p /backdrop/single-workspace-mode -n -t bool -s true"):
            subprocess.run(["xfconf-query", "-c", "xfce4-desktop", *words.split()], check=True, capture_output=True)
        environment = os.environ | {"HOME": str(self.folder), "XDG_CONFIG_HOME": str(self.folder)}
        return lambda: subprocess.Popen(["xfdesktop", "--disable-wm-check"], env=environment, stdout=subprocess.DEVNULL,
                                        stderr=subprocess.DEVNULL)

    def file(self, name):
        if name not in self.files:
            if not pathlib.Path(name).exists():
                return None
            self.files[name] = Picture.of_file(name)
        return self.files[name]

    def whole(self):
        """What the desktop shows, with the place of its top left corner."""
        if self.options.desktop != "gnome":
            return Picture.of_screen(), (0, 0)
        text = (self.folder / "config/glib-2.0/settings/keyfile").read_text()
        name = re.search(r"^picture-uri='file://(.*)'$", text, re.M).group(1)
        areas = list(self.screens.now().values())
        corner = min(a[2] for a in areas), min(a[3] for a in areas)
        picture = self.file(name)
        size = max(a[2] + a[0] for a in areas) - corner[0], max(a[3] + a[1] for a in areas) - corner[1]
        if not picture:
            raise LookupError(f"{name} is no picture")
        if picture.size != size:
            raise LookupError(f"the composed picture has {picture.size}, the monitors {size}")
        return picture, corner

    def faults(self):
        """All that is not as it should be."""
        status, monitors = self.status(), self.screens.now()
        if status is None:
            return ["no status"]
        names = {each["display"]["localizedName"]: each for each in status}
        if names.keys() != monitors.keys():
            return [f"status has {sorted(names)}, xrandr {sorted(monitors)}"]
        try:
            whole, corner = self.whole()
        except LookupError as failure:
            return [str(failure)]
        faults = []
        first = next((m for m in monitors.values() if m[4]), None)
        for name, each in names.items():
            area = monitors[name]
            frame = each["display"]["frame"]
            if first:
                expected = (area[2] - first[2], first[3] + first[1] - area[3] - area[1], area[0], area[1])
                said = (*frame[0], *frame[1]) if isinstance(frame, list) else tuple(frame[k] for k in ("x", "y", "width", "height"))
                if tuple(map(int, said)) != expected:
                    faults.append(f"{name}: status says {said}, xrandr {expected}")
            mirrors = [other for other in names if other != name and monitors[other][:4] == area[:4]]
            wrong = [self.difference(names[other], area, whole, corner) for other in [name, *mirrors]]
            if all(wrong):
                faults.append(f"{name}: {wrong[0]}")
        return faults

    def difference(self, status, area, whole, corner):
        """Why the monitor does not show what its status says; empty when it does."""
        width, height, left, top, _ = area
        shows, picture = status.get("shows"), status.get("picture")
        if not picture:
            return "" if status["mode"].get("disabled") is not None else "nothing known is shown"
        if not shows:
            return "no file is shown"
        left, top = left - corner[0], top - corner[1]
        middle = whole.color(left + width // 2, top + height // 2)
        said = picture["color"].lower().lstrip("#") if "color" in picture else self.colors[self.path(picture["fileURL"])]
        if middle != said:
            return f"the middle is {middle}, status says {said} ({picture}, {shows})"
        made = self.file(shows)
        if not made:
            return f"{shows} is not there"
        if made.size != (width, height):
            return f"{shows} has {made.size} for {(width, height)}"
        for i in range(33):
            for j in range(25):
                x, y = i * (width - 1) // 32, j * (height - 1) // 24
                if (seen := whole.color(left + x, top + y)) != made.color(x, y):
                    return f"at {x},{y} is {seen}, in {shows} {made.color(x, y)}"
        return ""

    @staticmethod
    def path(url):
        return url.removeprefix("file://")

    def run(self):
        Screens.call(*Screens.FIRST)
        start_desktop = self.prepare_desktop()
        desktop = start_desktop() if start_desktop else None
        self.agent.start()
        self.agent.run("wallpaper", "set", "all", "slideshow", str(self.shows[0]), "--interval", "1")
        threads = [threading.Thread(target=work, args=(random.Random(f"{self.options.seed}{i}"),))
                   for i, work in enumerate((self.command, self.command, self.attack_renders))]
        for thread in threads:
            thread.start()
        crashes = 0
        lulls = {*range(LULL, self.options.changes, LULL), self.options.changes - self.chance.randrange(2, 30)}
        began = time.monotonic()
        for i in range(self.options.changes):
            if i == self.options.changes // 2:
                self.kill_agent()
            if desktop and desktop.poll() is not None:
                desktop, crashes = start_desktop(), crashes + 1
            # A lull now and then: the same arrangement again after a storm is what is easily taken for no change.
            Screens.call(*(Screens.FIRST if i in lulls else self.screens.gust()))
            time.sleep(1 if i in lulls else self.chance.random() * 0.03)
        # Here the slideshows end too, so that nothing paints over what went wrong.
        self.over.set()
        threads[-1].join()  # a decoder that is killed now is a failure that status tells of
        self.call("general", "set", "--pauseRotations")
        Screens.call(*self.screens.last())
        took = time.monotonic() - began
        for thread in threads:
            thread.join()
        if desktop and desktop.poll() is not None:
            desktop, crashes = start_desktop(), crashes + 1
        faults, lost = self.rest(PATIENCE), ""
        if faults and desktop:
            # It shows what its settings say, or has lost its way between the monitors: a new one tells which.
            lost = "; right only with a new xfdesktop"
            desktop.kill()
            desktop.wait()
            desktop = start_desktop()
            faults = self.rest(20)
        if self.agent.process.poll() is not None:
            self.troubles.append(f"the agent ended with {self.agent.process.returncode}")
        else:
            ids = self.identities()
            if len(ids) != len(set(ids)) or len(ids) > len(OUTPUTS):
                self.troubles.append(f"twin entries: {ids}")
            self.agent.process.terminate()
            self.agent.process.wait(30)
        if desktop:
            desktop.kill()
            desktop.wait()
        print(f"{self.options.desktop} {self.options.seed}: {took:.0f} s, {self.commands} commands, {self.kills} renders hit"
              f"{f', {crashes} crashes of the desktop' if crashes else ''}{lost}: {faults + self.troubles or 'well'}", flush=True)
        return not faults and not self.troubles

    def rest(self, patience):
        end, good = time.monotonic() + patience, 0
        time.sleep(0.7)
        while True:
            faults = self.faults()
            good = 0 if faults else good + 1
            if good == 3 or time.monotonic() > end:
                return faults
            time.sleep(0.3)


def options():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--desktop", choices=NAMES, default="root")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--rounds", type=int, default=1)
    parser.add_argument("--changes", type=int, default=500)
    parser.add_argument("--program", default=str(ROOT / "build" / "quillmar"))
    parser.add_argument("--keep", action="store_true", help="leave the profile of a round that failed")
    parser.add_argument("--inside", action="store_true", help=argparse.SUPPRESS)
    return parser.parse_args()


def main():
    chosen = options()
    if chosen.inside:
        folder = pathlib.Path(tempfile.mkdtemp(prefix="quillmar-storm."))
        is_well = Storm(chosen, folder).run()
        if is_well or not chosen.keep:
            shutil.rmtree(folder, ignore_errors=True)
        else:
            print(f"  left in {folder}")
        return 0 if is_well else 1
    failed = 0
    for seed in range(chosen.seed, chosen.seed + chosen.rounds):
        words = ["--inside", "--desktop", chosen.desktop, "--seed", str(seed), "--changes", str(chosen.changes), "--program", chosen.program]
        environment = os.environ | {"QUILLMAR_DESKTOP_MONITORS": " ".join(MODES + MODES[:1])}
        command = [str(ROOT / "tools" / "desktop.sh"), sys.executable, "-B", __file__, *words, *(["--keep"] * chosen.keep)]
        failed += subprocess.run(command, env=environment).returncode != 0
    print(f"{chosen.rounds - failed} of {chosen.rounds} rounds ended well")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
