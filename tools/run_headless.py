#!/usr/bin/env python3
"""Shows Quillmar at work where there is no screen: every display gets a colour of its own, the last one a painting of a
museum, and a picture is taken.

usage: run_headless.py PROGRAM FOLDER       (inside tools/desktop.sh, with the services of ./dev services)

The profile is a new one and thrown away. Leaves FOLDER/desktop.png and FOLDER/quillmar.log.
"""
import json
import os
import pathlib
import signal
import subprocess
import sys
import tempfile
import time

COLORS = ["#1F6F8B", "#D98E04", "#6B4C9A", "#3B7A57"]
MUSEUM_COLOR = "#C46A1B"  # of the pictures that the local services play the museum with
PATIENCE = 30.0  # seconds that any one step may take


class Failure(Exception):
    pass


def wait_until(what, done, program):
    end = time.monotonic() + PATIENCE
    while not done():
        if program.poll() is not None:
            raise Failure(f"the program ended with status {program.returncode} before {what}")
        if time.monotonic() > end:
            raise Failure(f"{PATIENCE:.0f} seconds went by without {what}")
        time.sleep(0.05)


def quit_program(program):
    """Asks the program to quit; its exit status must be 0."""
    program.send_signal(signal.SIGTERM)
    try:
        status = program.wait(PATIENCE)
    except subprocess.TimeoutExpired:
        raise Failure("the program did not quit when it was asked to") from None
    if status != 0:
        raise Failure(f"the program quit with status {status}")


def is_document(path):
    try:
        json.loads(path.read_text(encoding="utf-8"))
        return True
    except (OSError, ValueError):
        return False


def give_colors(settings, displays):
    document = json.loads(settings.read_text(encoding="utf-8"))
    document["wallpaper"]["displays"] = [
        {
            "persistentDisplayID": display["id"],
            "mode": {"solidColor": {"_0": {"hexColor": color}}},
            "savedModes": [],
        }
        for display, color in displays
    ]
    settings.write_text(json.dumps(document, indent=2, ensure_ascii=False), encoding="utf-8")


def centers(displays):
    """Pixels in the middle of each display. Frames count upward from the main display's lower edge."""
    main = next(display["frame"] for display, _ in displays if display["isMain"])
    for display, color in displays:
        frame = display["frame"]
        scale = display["scaleFactor"]
        x = (frame["x"] + frame["width"] / 2) * scale
        y = (main["height"] - frame["y"] - frame["height"] / 2) * scale
        yield int(x), int(y), color


def take_picture(path):
    subprocess.run(["import", "-silent", "-window", "root", "-depth", "8", f"png:{path}"], check=True)


def color_at(path, x, y):
    crop = ["convert", f"png:{path}", "-crop", f"1x1+{x}+{y}", "+repage", "-depth", "8", "rgb:-"]
    return "#" + subprocess.run(crop, check=True, capture_output=True).stdout[:3].hex().upper()


class Run:
    def __init__(self, program, folder, home):
        self.program = program
        self.picture = folder / "desktop.png"
        self.log = open(folder / "quillmar.log", "w", encoding="utf-8")
        self.environment = os.environ | {
            "XDG_DATA_HOME": str(home / "data"),
            "XDG_CONFIG_HOME": str(home / "config"),
            "XDG_CACHE_HOME": str(home / "cache"),
            "XDG_STATE_HOME": str(home / "state"),
            "DESKTOP_AUTOSTART_ID": "run",  # as the session starts it: without a welcome that waits for somebody
        }
        self.settings = home / "data" / "Quillmar" / "settings.json"
        self.running = None
        self.seen = {}

    def start(self):
        self.running = subprocess.Popen(
            [self.program], env=self.environment, stdin=subprocess.DEVNULL, stdout=self.log, stderr=self.log
        )

    def displays(self):
        answer = subprocess.run(
            [self.program, "displays", "--json"], env=self.environment, check=True, capture_output=True, timeout=PATIENCE
        )
        displays = json.loads(answer.stdout)["displays"]
        return [(display, COLORS[i % len(COLORS)]) for i, display in enumerate(displays)]

    def is_painted(self, points):
        take_picture(self.picture)
        self.seen = {(x, y): color_at(self.picture, x, y) for x, y, _ in points}
        return all(self.seen[x, y] == color for x, y, color in points)

    def hang_painting(self, display):
        command = [self.program, "wallpaper", "set", display, "museums", "--sources", "rijksmuseum"]
        subprocess.run(command, env=self.environment, check=True, capture_output=True, timeout=PATIENCE)

    def show(self):
        self.start()
        wait_until("a settings file", lambda: is_document(self.settings), self.running)
        quit_program(self.running)
        displays = self.displays()
        if not displays:
            raise Failure("the program sees no display")
        give_colors(self.settings, displays)
        points = list(centers(displays))
        self.start()
        try:
            wait_until("every display in its colour", lambda: self.is_painted(points), self.running)
            *others, (last, _) = displays
            self.hang_painting(last["id"])
            points = list(centers([*others, (last, MUSEUM_COLOR)]))
            wait_until("a museum's painting", lambda: self.is_painted(points), self.running)
        except Failure as failure:
            wanted = ", ".join(f"{color} at {x},{y} (seen {self.seen.get((x, y))})" for x, y, color in points)
            raise Failure(f"{failure}: {wanted}") from None
        quit_program(self.running)
        for display, color in others:
            print(f"{display['localizedName']} ({display['id']}): {color}")
        print(f"{last['localizedName']} ({last['id']}): a painting of a museum")

    def close(self):
        if self.running and self.running.poll() is None:
            self.running.kill()
            self.running.wait()
        self.log.close()


def main():
    if len(sys.argv) != 3:
        print(__doc__, file=sys.stderr)
        return 2
    folder = pathlib.Path(sys.argv[2])
    folder.mkdir(parents=True, exist_ok=True)
    with tempfile.TemporaryDirectory(prefix="quillmar-run.") as home:
        run = Run(os.path.abspath(sys.argv[1]), folder, pathlib.Path(home))
        try:
            run.show()
        except (Failure, subprocess.SubprocessError) as failure:
            run.close()
            print((folder / "quillmar.log").read_text(encoding="utf-8"), end="", file=sys.stderr)
            print(f"run: {failure}", file=sys.stderr)
            return 1
        finally:
            run.close()
    print(f"Picture: {run.picture}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
