#!/usr/bin/env python3
"""Keeps files small, and tells what share of the lines the tests are.

usage: check_sizes.py FILE...        (paths from the root of the tree)

A .cpp has at most 400 lines, a .h at most 150; tools/large_files.txt names the data tables that may have more, each
with its reason. Prints one line per violation and ends with status 1 when there is one.
"""
import pathlib
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
LIMITS = {".cpp": 400, ".h": 150}


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


def main():
    allowed, faults = exceptions()
    lines = {}
    for path in sys.argv[1:]:
        count = len((ROOT / path).read_text(encoding="utf-8").splitlines())
        lines[path] = count
        limit = LIMITS.get(pathlib.Path(path).suffix)
        if limit and count > limit and path not in allowed:
            faults.append(f"{path}: {count} lines, {limit} at most")
    for fault in faults:
        print(fault)
    tests = sum(count for path, count in lines.items() if path.startswith("tests/"))
    both = tests + sum(count for path, count in lines.items() if path.startswith("src/"))
    if both:
        share = tests / both
        note = "" if 1 / 4 <= share <= 1 / 3 else " (between a quarter and a third is the aim)"
        print(f"tests: {tests} of {both} lines, {share:.0%}{note}")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
