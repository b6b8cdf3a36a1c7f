"""The Settings window beside an empty one, for bench/speed.py: prints what was measured as JSON.
usage: window_session.py BUILD"""
import json
import pathlib
import subprocess
import sys
import tempfile
import time

from running import Agent, Monitors, memory, wait_until

ROUNDS = 7
OPENINGS = 100
FEW = 5  # openings, after which there is nothing left that a window makes once
TYPED = "#12"  # what nobody can apply: the pane says so with every letter


class Windows:
    """The middle of the one monitor, where every window comes up."""

    def __init__(self):
        self.monitors = Monitors()
        width, height = map(int, self.monitors.sizes[0].split("x"))
        self.monitors.points = [(width // 2, height // 2)]
        self.monitors.blank()

    def shown_after(self, ask):
        began = time.monotonic()
        ask()
        wait_until("a window", self.monitors.are_painted, 0.0003)
        return time.monotonic() - began

    def wait_until_gone(self, ask):
        """Asks again where the window did not have the focus yet."""
        while self.monitors.are_painted():
            ask()
            end = time.monotonic() + 0.5
            while self.monitors.are_painted() and time.monotonic() < end:
                time.sleep(0.005)


class Settings:
    def __init__(self, windows, build, folder):
        self.windows = windows
        self.agent = Agent(build / "quillmar", folder)
        self.agent.start()
        windows.monitors.blank()

    def ask(self):
        self.opening = subprocess.Popen([self.agent.program, "settings", "wallpaper"], env=self.agent.environment)

    def open(self):
        elapsed = self.windows.shown_after(self.ask)
        self.opening.wait()
        self.agent.settle()
        return elapsed

    def close(self):
        self.windows.wait_until_gone(lambda: subprocess.run(["xdotool", "key", "Escape"], check=True))

    def memory(self):
        self.agent.settle()
        return memory(self.agent.process.pid, "Pss:")

    def type(self):
        """The longest turn while somebody goes through the pane with the keyboard."""
        since = time.monotonic()
        keys = ["Tab", "Right", "Left", "Tab", "Down", "Up", "Down", "Right", "Left", "Tab", "Tab"]
        for key in keys:
            subprocess.run(["xdotool", "key", key], check=True)
            self.agent.settle()
        subprocess.run(["xdotool", "type", "--delay", "60", TYPED], check=True)
        self.agent.settle()
        return self.agent.longest_turn(since)


def empty_windows(windows, program):
    """Seconds from a line to the window, the first time and later."""
    times = []
    with subprocess.Popen([program], stdin=subprocess.PIPE, text=True) as process:
        def ask():
            print(file=process.stdin, flush=True)

        time.sleep(1)  # until the toolkit has come up; there is nothing to see yet
        for _ in range(ROUNDS):
            times.append(windows.shown_after(ask))
            time.sleep(0.3)
            ask()
            windows.wait_until_gone(lambda: None)
        process.stdin.close()
    return times


def costs(settings, results):
    results["pss"].append(settings.memory())
    for number in range(1, OPENINGS + 1):
        settings.open()
        settings.close()
        if number in (FEW, OPENINGS):
            results["pss"].append(settings.memory())


def speeds(settings, results):
    results["first"].append(settings.open())
    for _ in range(FEW):
        settings.close()
        results["later"].append(settings.open())
    results["turn"].append(settings.type())


def main():
    build = pathlib.Path(sys.argv[1])
    windows = Windows()
    results = {name: [] for name in ("empty first", "empty later", "first", "later", "pss", "turn")}
    for measure in (costs, *[speeds] * ROUNDS):
        with tempfile.TemporaryDirectory() as folder:
            settings = Settings(windows, build, folder)
            measure(settings, results)
            settings.agent.process.kill()
            settings.agent.process.wait()
        windows.monitors.blank()
        first, *later = empty_windows(windows, build / "bench" / "empty_window")
        results["empty first"].append(first)
        results["empty later"] += later
    print(json.dumps(results))


if __name__ == "__main__":
    main()
