"""How fast the running program is beside others, on desktops of its own with two pairs of monitors and in the way of every
desktop: medians of several rounds, and which row is behind its target. Other work on the machine disturbs it less where it
may take a high priority.
usage: speed.py BUILD [SESSION...]     some of: small large idle settings root XFCE GNOME KDE decoding"""
import json
import os
import pathlib
import re
import statistics
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
PAIRS = {"small": "1920x1080 1280x1024", "large": "3840x2160 2560x1440"}
# The stand-in for Plasma's desktop says that the second monitor is 1920 to the right.
WAYS = {"root": "large", "XFCE": "large", "GNOME": "large", "KDE": "small"}
BEHIND = []


def make_pictures(folder):
    sizes = {size for pair in PAIRS.values() for size in pair.split()}
    for size, name in [*((size, size) for size in sizes), ("6000x4000", "photo")]:
        noise = ["plasma:fractal", "-seed", "7", "-blur", "0x1", "-quality", "92", "-sampling-factor", "4:2:0"]
        subprocess.run(["convert", "-size", size, *noise, f"{folder}/{name}.jpg"], check=True)


def session(name, build, folder):
    monitors = PAIRS[name] if name in PAIRS else PAIRS[WAYS.get(name, "small")]
    script = ["speed_session.py", name, build, folder]
    if name == "settings":
        monitors, script = PAIRS["small"].split()[0], ["window_session.py", build]
    command = [ROOT / "tools" / "desktop.sh", "python3", "-B", ROOT / "bench" / script[0], *script[1:]]
    environment = os.environ | {"QUILLMAR_DESKTOP_MONITORS": monitors}
    answer = subprocess.run(command, env=environment, stdout=subprocess.PIPE, text=True)
    if answer.returncode != 0:
        BEHIND.append(f"{name} (it could not be measured)")
        return None
    return json.loads(answer.stdout)


def row(name, value, target, unit="", peers=""):
    is_behind = value > target
    if is_behind:
        BEHIND.append(name)
    print(f"{name:58} {value:7.2f}{unit:3} to reach {target:5.2f}{unit:3} {'BEHIND' if is_behind else 'ok':6}  {peers}", flush=True)


def compared(name, results, key, peers, target):
    """The median as a part of feh's."""
    own, feh, xwallpaper = (statistics.median(results[k]) for k in (key, f"{peers} feh", f"{peers} xwallpaper"))
    row(name, own / feh, target, peers=f"{own * 1e3:.0f} ms, feh {feh * 1e3:.0f} ms, xwallpaper {xwallpaper / feh:.2f}")


def tell_turns(name, turns):
    """The worst of all rounds: one that is too long is felt."""
    worst = max(turns)
    usual = statistics.median(turn[0] for turn in turns)
    row(f"longest turn of the main loop, {name}", worst[0], 16, "ms", f"median {usual:.1f} ms; processor {worst[1]:.1f} ms")


def tell_calls(name, results):
    meanwhile = statistics.median(results["call meanwhile"]) * 1e3
    rest = statistics.median(results["call at rest"]) * 1e3
    row(f"another call meanwhile above one at rest, {name}", meanwhile - rest, 60, "ms",
        f"worst of a round {meanwhile:.0f} ms, of all {max(results['call meanwhile']) * 1e3:.0f} ms")
    peers = (f"{peer} {statistics.median(results[peer]) * 1e3:.1f} ms" for peer in ("empty program", "bus client"))
    row(f"round trip of a command, {name}", rest, 8, "ms", ", ".join(peers))
    tell_turns(name, results["turn"])


def tell_pair(name, results):
    large = name == "large"
    monitors = PAIRS[name].replace(" ", " + ")
    compared(f"exec, small JPEGs, cached, {monitors}", results, "small cached", "small", 0.45 if large else 0.35)
    compared(f"exec, 24 MP, cached, {monitors}", results, "photo cached", "photo", 0.15)
    compared(f"exec, 24 MP, empty cache, {monitors}", results, "photo empty", "photo", 0.4)
    compared(f"24 MP set on the running program, new, {monitors}", results, "set new", "set", 0.6 if large else 0.5)
    compared(f"24 MP set on the running program, cached, {monitors}", results, "set cached", "set", 0.25 if large else 0.2)
    tell_calls(f"root window, {name} pair", results)


def tell_idle(results):
    row("idle PSS", results["pss"][0], 23, "MB")
    row("wake-ups in 60 s, idle", results["wake-ups"][0], 0)
    one, hundred = results["private"]
    row("private memory after 100 pictures above after one", hundred - one, 8, "MB", f"{one:.1f} and {hundred:.1f} MB")


def tell_settings(results):
    empty, again = (statistics.median(results[key]) for key in ("empty first", "empty later"))
    for name, target in (("first", 2.5), ("later", 1.2)):
        own = statistics.median(results[name])
        row(f"Settings seen, {name}, of an empty window", own / empty, target,
            peers=f"{own * 1e3:.0f} ms; an empty one {empty * 1e3:.0f} ms, shown again {again * 1e3:.0f} ms")
    before, few, many = results["pss"]
    row("PSS after the window closed above before", few - before, 10, "MB", f"{before:.1f} and {few:.1f} MB")
    row("PSS after 100 openings above after 5", many - few, 1, "MB", f"{many:.1f} MB")
    tell_turns("keys in the Wallpaper pane", results["turn"])


def tell_decoding(build):
    lines = subprocess.check_output([build / "bench" / "bench_pictures"], text=True)
    for ratio in re.findall(r"24 MP JPEG 4:2:0 +3840x2160 .*? = ([\d.]+)x decoding", lines):
        row("pipeline alone, 24 MP to 4K, of decoding", float(ratio), 1.5)


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    wanted = sys.argv[2:] or [*PAIRS, "idle", "settings", *(way for way in WAYS if way != "root"), "decoding"]
    try:
        os.setpriority(os.PRIO_PROCESS, 0, -20)
    except PermissionError:
        print("Without the right to a higher priority: a quiet machine is needed.")
    print("Load of the machine at the beginning:", *(f"{load:.1f}" for load in os.getloadavg()))
    with tempfile.TemporaryDirectory() as folder:
        make_pictures(folder)
        for name in wanted:
            if name == "decoding":
                tell_decoding(build)
            elif (results := session(name, build, folder)) is None:
                continue
            elif name in PAIRS:
                tell_pair(name, results)
            elif name == "idle":
                tell_idle(results)
            elif name == "settings":
                tell_settings(results)
            else:
                tell_calls(name, results)
    print("Load at the end:", *(f"{load:.1f}" for load in os.getloadavg()))
    print("Behind: " + "; ".join(BEHIND) if BEHIND else "Nothing is behind.")


if __name__ == "__main__":
    main()
