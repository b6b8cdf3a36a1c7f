"""The same photograph on two monitors, turn by turn: Quillmar with it new and with it in the cache, and feh. Medians of the
whole command, the program running."""
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


def timed(command, environment):
    began = time.monotonic()
    subprocess.run(command, env=environment, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=True)
    return time.monotonic() - began


def main():
    program = sys.argv[1]
    with tempfile.TemporaryDirectory() as folder:
        environment = dict(os.environ, XDG_DATA_HOME=folder, XDG_RUNTIME_DIR=folder, HOME=folder)
        photograph = f"{folder}/photograph.jpg"
        noise = ["plasma:fractal", "-seed", "7", "-blur", "0x1", "-quality", "92", "-sampling-factor", "4:2:0"]
        subprocess.run(["convert", "-size", "6000x4000", *noise, photograph], check=True)
        process = subprocess.Popen([program], env=environment, stderr=subprocess.DEVNULL)
        settings = pathlib.Path(folder, "Quillmar", "settings.json")
        while not settings.exists():
            time.sleep(0.02)
        time.sleep(1)
        ours = [program, "wallpaper", "set", "all", "image", photograph, "--layout", "fill"]
        theirs = ["feh", "--no-fehbg", "--bg-fill", photograph]
        times = {"Quillmar, new": [], "Quillmar, in the cache": [], "feh --bg-fill": []}
        for _ in range(ROUNDS):
            subprocess.run([program, "wallpaper", "set", "all", "colour", "#101010"], env=environment, check=True,
                           stdout=subprocess.DEVNULL)
            shutil.rmtree(pathlib.Path(folder, "Quillmar", "Cache"))
            times["Quillmar, new"].append(timed(ours, environment))
            times["Quillmar, in the cache"].append(timed(ours, environment))
            times["feh --bg-fill"].append(timed(theirs, environment))
        peer = statistics.median(times["feh --bg-fill"])
        for name, samples in times.items():
            print(f"{name:24} {statistics.median(samples) * 1000:7.1f} ms  {statistics.median(samples) / peer:5.2f} of feh")
        process.send_signal(signal.SIGTERM)
        process.wait()


if __name__ == "__main__":
    main()
