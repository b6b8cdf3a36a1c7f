#!/usr/bin/env python3
"""Holds what the package says together with what the tree says.

usage: check_package.py [--self-test]

The version of debian/changelog, the newest release of the metainfo and that of the program's own changelog are that of
VERSION, and the package is built with what tools/dependencies.sh installs for building. Prints one line per difference, and ends with status 1 then.
"""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
# A cache serves who builds again and again; the packager's tools are no part of the work on the program.
NOT_FOR_PACKAGES, ONLY_FOR_PACKAGES = {"ccache"}, {"debhelper-compat"}


def faults(version, changelog, metainfo, notes, dependencies, control):
    found = []
    said = {"debian/changelog": re.match(r"quillmar \(([^)]*)\)", changelog),
            "the metainfo": re.search(r'<release version="([^"]*)"', metainfo),
            "the release notes": re.search(r'ChangelogRelease\{"([^"]*)"', notes)}
    for place, match in said.items():
        if not match or match[1] != version:
            found.append(f"{place}: the newest version is {match[1] if match else 'not there'}, not {version}")
    wanted = set(re.search(r'\[build\]="([^"]*)"', dependencies)[1].split()) - NOT_FOR_PACKAGES
    fields = re.search(r"^Build-Depends:((?:.*\n)(?: .*\n)*)", control, re.MULTILINE)[1]
    built = {part.split()[0] for part in fields.split(",") if part.strip()} - ONLY_FOR_PACKAGES
    found += [f"debian/control: {name} is not among the Build-Depends" for name in sorted(wanted - built)]
    found += [f"debian/control: {name} is not what tools/dependencies.sh builds with" for name in sorted(built - wanted)]
    return found


def self_test():
    found = faults("2.0", "quillmar (1.0) x\n", '<release version="2.0"', 'ChangelogRelease{"2.1"', '[build]="a ccache b"',
                   "Build-Depends:\n debhelper-compat (= 13),\n b (>= 1),\n c,\nX: y\n")
    places = [line.split(": ")[1].split()[0] for line in found]
    assert places == ["the", "the", "a", "c"], found


if sys.argv[1:] == ["--self-test"]:
    self_test()
    sys.exit()
texts = [(ROOT / path).read_text(encoding="utf-8") for path in (
    "VERSION", "debian/changelog", "packaging/desktop/com.quillmar.Quillmar.metainfo.xml", "src/panes/ReleaseNotes.cpp",
    "tools/dependencies.sh", "debian/control")]
differences = faults(texts[0].strip(), *texts[1:])
print(*differences, sep="\n", end="\n" if differences else "")
sys.exit(1 if differences else 0)
