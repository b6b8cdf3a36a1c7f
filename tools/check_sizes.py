#!/usr/bin/env python3
"""Keeps files small, and the tests a part of the lines that can be kept up.

usage: check_sizes.py FILE...        (paths from the root of the tree)

A .cpp has at most 400 lines, a .h at most 150; tools/large_files.txt names the data tables that may have more, each
with its reason. Prints one line per violation and ends with status 1 when there is one.
"""
import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
LIMITS = {".cpp": 400, ".h": 150}
FOLDERS = ("src", "helpers", "resources", "bench", "fuzz", "tools", "tests", "dev")
CODE = (".cpp", ".h", ".py", ".sh", ".js")
MOST_TESTS = 0.30


def exceptions():
    allowed, faults = set(), []
    for line in (ROOT / "tools" / "large_files.txt").read_text(encoding="utf-8").splitlines():
        if not line.strip() or line.startswith("#"):
            continue
        path, _, reason = line.partition(" ")
        allowed.add(path)
        if not reason.strip():
            faults.append(f"tools/large_files.txt: {path} is there without a reason")
        if not (ROOT / path).exists():
            faults.append(f"tools/large_files.txt: there is no {path}")
    return allowed, faults


def share_of_tests():
    """What part of all lines of code, in any language, the tests are; the servers that they play against are tools."""
    listed = subprocess.run(
        ["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard", "--deduplicate", "--", *FOLDERS],
        cwd=ROOT, capture_output=True, text=True, check=True,
    ).stdout.split("\0")
    tests = others = 0
    for path in listed:
        if not (path == "dev" or pathlib.Path(path).suffix in CODE) or not (ROOT / path).is_file():
            continue
        count = len((ROOT / path).read_text(encoding="utf-8").splitlines())
        if path.startswith("tests/") and not path.startswith("tests/services/"):
            tests += count
        else:
            others += count
    share = tests / (tests + others)
    return share, f"tests: {tests} of {tests + others} lines, {share:.1%}"


def main():
    allowed, faults = exceptions()
    lines = {}
    for path in sys.argv[1:]:
        count = len((ROOT / path).read_text(encoding="utf-8").splitlines())
        lines[path] = count
        limit = LIMITS.get(pathlib.Path(path).suffix)
        if limit and count > limit and path not in allowed:
            faults.append(f"{path}: {count} lines, {limit} at most")
    share, text = share_of_tests()
    if share > MOST_TESTS:
        faults.append(f"tests are {share:.1%} of all lines, {MOST_TESTS:.0%} at most")
    for fault in faults:
        print(fault)
    print(text)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
