#!/usr/bin/env python3
"""Holds every switch over the kinds of presentations to all of them: none has a "default:".

usage: check_kinds.py [--self-test]

A new kind must be met by the compiler wherever kinds are told apart. Prints one line per violation and ends with
status 1 when there is one.
"""
import pathlib
import re
import sys
import tempfile

ENUMERATIONS = ("WallpaperModeKind", "LockScreenModeKind", "ManagedScreensaverModeKind", "PresentationKind")
ENUMERATION = "|".join(ENUMERATIONS)
NOISE = re.compile(r"//[^\n]*|/\*.*?\*/|\"(?:[^\"\\\n]|\\.)*\"|'(?:[^'\\\n]|\\.)+'", re.DOTALL)
ALIAS = re.compile(rf"\busing\s+(\w+)\s*=\s*(?:\w+::)*(?:{ENUMERATION})\b")
IMPORTED = re.compile(rf"\busing\s+enum\s+(?:\w+::)*(?:{ENUMERATION})\b")
MARK = re.compile(r"\bswitch\b|[{}]|\bcase\s+((?:\w+::)*)(\w+)\s*:(?!:)|\bdefault\s*:(?!:)")


def kinds_of(root):
    """The names of all kinds."""
    text = NOISE.sub("", (root / "src/modes/PresentationKind.h").read_text(encoding="utf-8"))
    return set(re.search(r"enum class PresentationKind\s*\{(.*?)\}", text, re.DOTALL)[1].replace(",", " ").split())


def faults_of(text, kinds):
    """The lines of each "default:" in a switch that has a kind for a case."""
    # Blanked, so that lines stay where they are.
    code = NOISE.sub(lambda match: re.sub(r"[^\n]", " ", match[0]), text)
    names = set(ENUMERATIONS) | set(ALIAS.findall(code))
    is_imported = IMPORTED.search(code) is not None
    # A block for each open brace: None, or the switch that it is with what was found in it.
    blocks, next_is_switch = [], False
    for mark in MARK.finditer(code):
        if mark[0] == "switch":
            next_is_switch = True
        elif mark[0] == "{":
            blocks.append({"kinds": False, "defaults": []} if next_is_switch else None)
            next_is_switch = False
        elif mark[0] == "}":
            block = blocks.pop() if blocks else None
            if block and block["kinds"]:
                yield from block["defaults"]
        else:
            switch = next((block for block in reversed(blocks) if block), None)
            if switch is None:
                continue
            if mark[0].startswith("default"):
                switch["defaults"].append(code.count("\n", 0, mark.start()) + 1)
            else:
                scope = mark[1].rstrip(":").split("::")[-1]
                switch["kinds"] |= scope in names or (not scope and is_imported and mark[2] in kinds)


def check(root):
    found = []
    kinds = kinds_of(root)
    for file in sorted((root / "src").rglob("*")):
        if file.suffix in (".h", ".cpp"):
            for line in faults_of(file.read_text(encoding="utf-8"), kinds):
                path = file.relative_to(root).as_posix()
                found.append(f"{path}:{line}: a switch over kinds has no default: name the kinds")
    return found


PLANTED = {
    "src/modes/PresentationKind.h": "enum class PresentationKind {\n    disabled,\n    image\n};\n",
    "src/a.cpp": "switch (kind) {\n    case WallpaperModeKind::image: { return 1; }\n    default: return 2;\n}\n",
    "src/b.cpp": "using K = quillmar::LockScreenModeKind;\nswitch (k) {\n    case K::image:\n    default: break;\n}\n",
    "src/c.cpp": "using enum PresentationKind;\nswitch (k) {\n    case image: switch (i) { default: break; }\n}\n",
    "src/d.cpp": "switch (x) {\n    case Color::image: return \"case PresentationKind::image:\";\n    default: break;\n}\n",
    "src/e.cpp": "using enum PresentationKind;\nswitch (k) {\n    case image: break;\n    // default: no\n    default: ;\n}\n",
}
PLANTED_FAULTS = ["src/a.cpp:3", "src/b.cpp:4", "src/e.cpp:5"]


def self_test():
    with tempfile.TemporaryDirectory() as folder:
        root = pathlib.Path(folder)
        for path, text in PLANTED.items():
            (root / path).parent.mkdir(parents=True, exist_ok=True)
            (root / path).write_text(text, encoding="utf-8")
        found = [":".join(fault.split(":")[:2]) for fault in check(root)]
    return [] if found == PLANTED_FAULTS else [f"check_kinds: expected {PLANTED_FAULTS}, found {found}"]


def main():
    if sys.argv[1:] == ["--self-test"]:
        found = self_test()
    elif not sys.argv[1:]:
        found = check(pathlib.Path(__file__).resolve().parent.parent)
    else:
        print(__doc__, file=sys.stderr)
        return 2
    for text in found:
        print(text)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
