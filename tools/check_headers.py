#!/usr/bin/env python3
"""Compiles every header alone, with the flags that its folder's sources are compiled with.

usage: check_headers.py BUILD_FOLDER [--self-test]

A header that compiled is not compiled again until it, a project header under it or its flags change; what is known
lies in BUILD_FOLDER/lint-headers.json. Prints the compiler's words and ends with status 1 when a header fails.
"""
import concurrent.futures
import hashlib
import json
import os
import pathlib
import shlex
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
COMPILER = "clang++-19"
KEPT = ("-I", "-D", "-std=", "-W", "-isystem")


def kept_flags(command, directory):
    """What of a source's command a header needs: search paths, definitions, language and warnings."""
    flags = []
    words = iter(shlex.split(command))
    for word in words:
        if word == "-isystem":
            flags += [word, os.path.join(directory, next(words))]
        elif word.startswith("-I"):
            flags.append("-I" + os.path.join(directory, word[2:] or next(words)))
        elif word.startswith(KEPT):
            flags.append(word)
    return flags


def flags_by_folder(build):
    folders = {}
    for entry in json.loads((build / "compile_commands.json").read_text(encoding="utf-8")):
        folder = pathlib.Path(entry["file"]).parent
        folders.setdefault(folder, kept_flags(entry["command"], entry["directory"]))
    return folders


def flags_for(header, folders):
    """The flags of the header's folder, else of the nearest folder above it, else of the lowest floor."""
    for folder in header.parents:
        if folder in folders and folder.is_relative_to(ROOT):
            return folders[folder]
    return folders[ROOT / "src" / "base"]


def digest(flags, files):
    state = hashlib.sha256("\0".join(flags).encode())
    for file in files:
        path = pathlib.Path(file)
        state.update(file.encode() + b"\0" + (path.read_bytes() if path.exists() else b"") + b"\0")
    return state.hexdigest()


def compile_alone(header, flags):
    """The compiler's words, empty when the header compiles, and the project files that it read."""
    with tempfile.TemporaryDirectory() as folder:
        depends = pathlib.Path(folder) / "header.d"
        command = [COMPILER, *flags, "-Werror", "-fsyntax-only", "-MMD", "-MF", str(depends), "-x", "c++", "-"]
        source = f'#include "{header}"\n'
        done = subprocess.run(command, input=source, capture_output=True, text=True, check=False)
        if done.returncode != 0:
            # The first error tells; the compiler's list of what it had in mind does not.
            words = [line for line in done.stderr.splitlines() if "In file included" in line or "error:" in line]
            return "\n".join(words or [f"{header}: {COMPILER} failed", done.stderr]) + "\n", []
        words = depends.read_text(encoding="utf-8").replace("\\\n", " ").split()
    return "", sorted(word for word in words if word.startswith(str(ROOT)))


def check(headers, folders, known):
    """The compiler's words for the headers that fail; `known` is brought up to date."""

    def one(header):
        flags = flags_for(header, folders)
        entry = known.get(str(header))
        if entry and entry["digest"] == digest(flags, entry["files"]):
            return header, "", entry
        words, files = compile_alone(header, flags)
        return header, words, {"files": files, "digest": digest(flags, files)}

    failures = []
    with concurrent.futures.ThreadPoolExecutor(max_workers=2) as pool:
        for header, words, entry in pool.map(one, headers):
            known.pop(str(header), None)
            if words:
                failures.append(words)
            else:
                known[str(header)] = entry
    return failures


def self_test(folders):
    with tempfile.TemporaryDirectory() as folder:
        good, bad = pathlib.Path(folder) / "Good.h", pathlib.Path(folder) / "Bad.h"
        good.write_text("#pragma once\n#include <string>\ninline std::string text;\n", encoding="utf-8")
        bad.write_text("#pragma once\ninline std::string text;\n", encoding="utf-8")
        passes = not check([good], folders, {}) and len(check([bad], folders, {})) == 1
    return [] if passes else ["check_headers: a header without its include was let through, or a good one refused\n"]


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    folders = flags_by_folder(build)
    if sys.argv[2:] == ["--self-test"]:
        failures = self_test(folders)
    else:
        memory = build / "lint-headers.json"
        known = json.loads(memory.read_text(encoding="utf-8")) if memory.exists() else {}
        headers = sorted([*(ROOT / "src").rglob("*.h"), *(ROOT / "tests" / "fakes").rglob("*.h")])
        failures = check(headers, folders, known)
        memory.write_text(json.dumps(known), encoding="utf-8")
    sys.stdout.write("".join(failures))
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
