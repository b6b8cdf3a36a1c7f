#!/usr/bin/env python3
"""Holds the floors of the house: what a folder of src/ may include, and what stays out of the logic.

usage: check_floors.py [--self-test]

Prints one line per violation and ends with status 1 when there is one.
"""
import pathlib
import re
import sys
import tempfile

# From the ground up. A room sees every floor below its own; rooms of one floor do not see each other.
FLOORS = [
    ["base"],
    ["async"],
    ["platform"],
    ["modes"],
    ["settings/records"],
    ["diagnostics"],
    ["display", "storage"],
    ["desktop", "settings", "imports", "remote/fetching"],
    ["commandline", "remote/services"],
    ["remote", "history"],
    ["wallpaper", "loginitem", "updates"],
    ["control", "statusitem"],
    ["panes"],
    ["app"],
    ["linux", "ui", "client"],
]
# The rooms of linux/, with those that each sees; linux/ itself, where they are put together, sees all of them.
LINUX = {
    "glib": [],
    "early": ["session", "x11"],
    "session": [],
    "dbus": ["glib"],
    "soup": ["glib"],
    "xsmp": ["glib"],
    "picture": ["glib"],
    "render": ["glib", "picture"],
    "x11": ["glib"],
    "gtk": ["glib", "x11"],
    "desktop": ["glib", "dbus", "session", "x11"],
    "tray": ["glib", "dbus"],
}
# The handles for GObjects are no adapter: the views hold their widgets with them too.
ALSO_SEEN = {"ui": ("linux/glib/",)}
LEVEL = {room: level for level, rooms in enumerate(FLOORS) for room in rooms}
LEVEL |= {f"linux/{room}": LEVEL["linux"] for room in LINUX}
# The programs' own files may put anything together.
PROGRAMS = ("agent.cpp", "quillmar.cpp")
# What a person may read is a localisable error. Where an English one may be thrown nevertheless, and why.
SPEAKING_ROOMS = ("app", "client", "commandline", "control", "desktop", "imports", "loginitem", "panes", "remote", "settings", "statusitem", "updates", "wallpaper")
ENGLISH_ERROR = re.compile(r"\bstd::runtime_error\b(?!\s*&)(?!>)")
ENGLISH_ERRORS = {
    "remote/fetching/RemoteServices.cpp": "a bundle key that is wrong is a fault of the installation",
}

DESKTOP_HEADER = re.compile(
    r"(systemd|gtk|gdk|gdk-pixbuf|gio|glib|gobject|X11|xcb|libsoup|vips|webkit2?|cairo|pango|isa-l|dbus|gst|poppler)(/|-|mm)"
    r"|(glib|glib-unix|glib-object|png|cairo|cairo-xlib|jpeglib|poppler)\.h$"
)
GLIB_HEADER = re.compile(r"glib(-object)?\.h$|glib/")
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')
CLOCK = re.compile(r"_clock::now\s*\(|\bsleep_(for|until)\b|\bu?sleep\s*\(|\bg_timeout_add")
THREAD = re.compile(r"\bstd::j?thread\b|\bpthread_create\b|\bstd::async\b")


def room_of(path):
    """The room of a path relative to src/: the longest listed folder that holds it, None when there is none."""
    folders = path.split("/")[:-1]
    while folders:
        if "/".join(folders) in LEVEL:
            return "/".join(folders)
        folders.pop()
    return None


def house(room):
    """The first folder of a room, "linux" of "linux/gtk"."""
    return (room or "").split("/")[0]


def is_unlisted_adapter(path):
    parts = path.split("/")
    return parts[0] == "linux" and len(parts) > 2 and parts[1] not in LINUX

# Each includer compiles their templates.
RECORD_TEMPLATES = ("base/JsonRecord.h", "base/JsonReading.h", "base/JsonReadingValues.h", "base/JsonWriting.h", "base/JsonWritingValues.h")


def may_see(room, target):
    other = room_of(target)
    if other is None:
        return False
    if room.startswith("linux/") and other.startswith("linux") and other != room:
        return other[len("linux/") :] in LINUX[room[len("linux/") :]]
    if room == "linux" and other.startswith("linux/"):
        return True
    return other == room or LEVEL[other] < LEVEL[room] or target.startswith(ALSO_SEEN.get(room, ()))


def include_fault(path, quoted, target):
    """Why the file at `path` may not include `target`; None when it may."""
    room = room_of(path)
    if path in PROGRAMS:
        return None
    if quoted:
        if not may_see(room, target):
            return f'{room}/ may not include "{target}"'
        if target in RECORD_TEMPLATES and path.endswith(".h") and path not in RECORD_TEMPLATES:
            return f'headers do not include "{target}": every includer would compile its templates'
        return None
    if target == "nlohmann/json.hpp" and path not in ("base/JsonRecord.cpp", "base/JsonOutput.cpp"):
        return '<nlohmann/json.hpp> stays behind "base/JsonRecord.h"'
    if DESKTOP_HEADER.match(target) and house(room) not in ("linux", "ui"):
        if room == "client" and target.startswith("systemd/"):
            return None
        if not (room == "base" and path.endswith(".cpp") and GLIB_HEADER.match(target)):
            return f"<{target}> belongs to linux/ or ui/"
    return None


def word_fault(path, line):
    """Why a line of code has no place in the file at `path`; None when it has."""
    room = room_of(path)
    code = line.split("//")[0]
    if CLOCK.search(code) and house(room) != "linux":
        return "time comes from MainLoop and WallClock"
    if THREAD.search(code) and not (path.startswith("async/ThreadPool.") or house(room) == "linux"):
        return "threads belong to the executors"
    if house(room) in SPEAKING_ROOMS and ENGLISH_ERROR.search(code) and path not in ENGLISH_ERRORS:
        return "a person may read this error: throw one that is said in their language"
    return None


def faults_of(path, text):
    if path not in PROGRAMS and (room_of(path) is None or is_unlisted_adapter(path)):
        yield 1, "is in no listed room: name its folder in FLOORS of tools/check_floors.py"
        return
    for number, line in enumerate(text.splitlines(), 1):
        include = INCLUDE.match(line)
        fault = include_fault(path, include[1] == '"', include[2]) if include else word_fault(path, line)
        if fault:
            yield number, fault


def check(source):
    """All violations below the folder `source`, as texts."""
    found = []
    for file in sorted(source.rglob("*")):
        if file.suffix in (".h", ".cpp"):
            path = file.relative_to(source).as_posix()
            for number, fault in faults_of(path, file.read_text(encoding="utf-8")):
                found.append(f"src/{path}:{number}: {fault}")
    return found


# Each file with its violation, or with None where there is none.
PLANTED = [
    ("base/Up.h", '#include "async/Task.h"', "base/ may not include"),
    ("display/Side.h", '#include "storage/Lease.h"', "display/ may not include"),
    ("settings/records/Owner.h", '#include "settings/Store.h"', "settings/records/ may not include"),
    ("app/Adapter.cpp", '#include "linux/gtk/Screens.h"', "app/ may not include"),
    ("linux/gtk/View.cpp", '#include "ui/Window.h"', "linux/gtk/ may not include"),
    ("linux/gtk/Bus.cpp", '#include "linux/soup/Session.h"', "linux/gtk/ may not include"),
    ("linux/glib/Up.cpp", '#include "linux/dbus/Bus.h"', "linux/glib/ may not include"),
    ("linux/glib/All.cpp", '#include "linux/Platform.h"', "linux/glib/ may not include"),
    ("linux/attic/Box.h", "#pragma once", "is in no listed room"),
    ("control/Verb.cpp", 'throw std::runtime_error("no such display");', "a person may read"),
    ("remote/fetching/Late.h", "class Late : public std::runtime_error {", "a person may read"),
    ("ui/Adapter.cpp", '#include "linux/x11/Root.h"', "ui/ may not include"),
    ("async/Nowhere.h", '#include "Task.h"', "async/ may not include"),
    ("wallpaper/Pixels.cpp", "#include <cairo/cairo.h>", "belongs to linux/ or ui/"),
    ("display/Gtk.cpp", "#include <gtk/gtk.h>", "belongs to linux/ or ui/"),
    ("client/Bus.cpp", "#include <gio/gio.h>", "belongs to linux/ or ui/"),
    ("client/Client.cpp", '#include "linux/gtk/Screens.h"', "client/ may not include"),
    ("commandline/Table.cpp", '#include "wallpaper/Engine.h"', "commandline/ may not include"),
    ("base/Text.h", "#include <glib.h>", "belongs to linux/ or ui/"),
    ("base/Files.cpp", "#include <gio/gio.h>", "belongs to linux/ or ui/"),
    ("modes/Mode.h", '#include "base/JsonRecord.h"', "headers do not include"),
    ("modes/Mode.cpp", "#include <nlohmann/json.hpp>", "stays behind"),
    ("wallpaper/Due.cpp", "auto due = std::chrono::steady_clock::now();", "time comes from"),
    ("storage/Sweep.cpp", "std::jthread sweeper;", "threads belong"),
    ("attic/Box.h", "#pragma once", "is in no listed room"),
    ("base/Collation.cpp", "#include <glib.h>", None),
    ("settings/records/General.cpp", '#include "modes/Mode.h"', None),
    ("wallpaper/Engine.h", '#include "settings/Store.h"  // before ::now()', None),
    ("wallpaper/live/Host.h", '#include "wallpaper/Engine.h"', None),
    ("linux/gtk/Screens.cpp", '#include "display/DisplayInfo.h"', None),
    ("ui/Window.cpp", '#include "linux/glib/Ref.h"', None),
    ("linux/Platform.cpp", '#include "linux/gtk/Screens.h"', None),
    ("linux/desktop/Way.cpp", '#include "linux/dbus/Bus.h"', None),
    ("app/Start.cpp", "} catch (const std::runtime_error& error) {", None),
    ("agent.cpp", '#include "linux/gtk/Screens.h"', None),
]


def self_test():
    """Each planted violation must be found, and nothing else."""
    failures = []
    with tempfile.TemporaryDirectory() as folder:
        source = pathlib.Path(folder)
        for path, line, _ in PLANTED:
            (source / path).parent.mkdir(parents=True, exist_ok=True)
            (source / path).write_text(line + "\n", encoding="utf-8")
        found = check(source)
    for path, line, fault in PLANTED:
        own = [text for text in found if text.startswith(f"src/{path}:")]
        if [True for text in own if fault and fault in text] != [True] * bool(fault) or len(own) != bool(fault):
            failures.append(f"check_floors: {path} with {line!r}: expected {fault!r}, found {own}")
    return failures


def main():
    if sys.argv[1:] == ["--self-test"]:
        found = self_test()
    elif not sys.argv[1:]:
        found = check(pathlib.Path(__file__).resolve().parent.parent / "src")
    else:
        print(__doc__, file=sys.stderr)
        return 2
    for text in found:
        print(text)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
