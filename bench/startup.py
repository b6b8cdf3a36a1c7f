"""Measures, in one run and turn by turn: Quillmar with an empty cache, Quillmar with a full one, feh on PNG files of the same
size. Prints medians and what the settled program costs."""
import json
import os
import pathlib
import shutil
import signal
import statistics
import subprocess
import sys
import tempfile
import time

ROUNDS = 9
COLORS = ["#1F6F8B", "#D98E04"]


class RootWatch:
    """Tells when the root window's picture was replaced."""

    def __init__(self):
        # The name must be known to the server, or there is nothing to watch.
        subprocess.run(["xprop", "-root", "-f", "_XROOTPMAP_ID", "32x", "-set", "_XROOTPMAP_ID", "0"], check=True)
        subprocess.run(["xprop", "-root", "-remove", "_XROOTPMAP_ID"], check=True)
        self.process = subprocess.Popen(["xprop", "-root", "-spy", "_XROOTPMAP_ID"], stdout=subprocess.PIPE, text=True)
        self.process.stdout.readline()

    def wait(self, changes):
        for _ in range(changes):
            self.process.stdout.readline()
        return time.monotonic()

    def end(self):
        self.process.kill()
        self.process.wait()
        self.process.stdout.close()


def painted_after(command, changes, environment=None, keep=False):
    watch = RootWatch()
    began = time.monotonic()
    process = subprocess.Popen(command, env=environment, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    elapsed = watch.wait(changes) - began
    watch.end()
    if keep:
        return elapsed, process
    if process.poll() is None:
        process.send_signal(signal.SIGTERM)
    process.wait()
    return elapsed


def make_profile(program, data):
    environment = dict(os.environ, XDG_DATA_HOME=str(data))
    displays = json.loads(subprocess.check_output([program, "displays", "--json"], env=environment))["displays"]
    settings = data / "Quillmar" / "settings.json"
    process = subprocess.Popen([program], env=environment, stderr=subprocess.DEVNULL)
    while not settings.exists():
        time.sleep(0.02)
    process.send_signal(signal.SIGTERM)
    process.wait()
    document = json.loads(settings.read_text())
    document["wallpaper"]["displays"] = [
        {"persistentDisplayID": display["id"], "savedModes": [], "mode": {"solidColor": {"_0": {"hexColor": color}}}}
        for display, color in zip(displays, COLORS)
    ]
    settings.write_text(json.dumps(document))
    return environment


def memory(pid, key):
    for line in pathlib.Path(f"/proc/{pid}/smaps_rollup").read_text().splitlines():
        if line.startswith(key + ":"):
            return int(line.split()[1]) / 1024
    raise KeyError(key)


def switches(pid):
    """How often each thread of the process was switched to or from."""
    counts = {}
    for task in pathlib.Path(f"/proc/{pid}/task").iterdir():
        lines = (task / "status").read_text().splitlines()
        counts[task.name] = sum(int(line.split()[1]) for line in lines if "ctxt_switches" in line)
    return counts


def wake_ups(pid, seconds):
    before = switches(pid)
    time.sleep(seconds)
    return sum(count - before.get(thread, 0) for thread, count in switches(pid).items())


def main():
    program = sys.argv[1]
    with tempfile.TemporaryDirectory() as folder:
        data = pathlib.Path(folder)
        environment = make_profile(program, data)
        cache = data / "Quillmar" / "Cache"
        painted_after([program], 2, environment)
        pictures = sorted(str(file) for file in cache.rglob("solid-*.png"))
        times = {"Quillmar, empty cache": [], "Quillmar, full cache": [], "feh --bg-fill": []}
        for _ in range(ROUNDS):
            shutil.rmtree(cache)
            times["Quillmar, empty cache"].append(painted_after([program], 2, environment))
            times["Quillmar, full cache"].append(painted_after([program], 2, environment))
            times["feh --bg-fill"].append(painted_after(["feh", "--no-fehbg", "--bg-fill", *pictures], 1))
        peer = statistics.median(times["feh --bg-fill"])
        for name, samples in times.items():
            median = statistics.median(samples)
            print(f"{name:24} {median * 1000:7.1f} ms  {median / peer:5.2f} of feh")

        _, process = painted_after([program], 2, environment, keep=True)
        time.sleep(8)
        print(f"idle: PSS {memory(process.pid, 'Pss'):.1f} MB, {wake_ups(process.pid, 10)} wake-ups in 10 s")
        process.send_signal(signal.SIGTERM)
        process.wait()


if __name__ == "__main__":
    main()
