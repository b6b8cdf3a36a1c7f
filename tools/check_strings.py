#!/usr/bin/env python3
"""Holds the string table to the sources: every text of the program is translated, and nothing else is.

usage: check_strings.py [--self-test]

A text is a literal with the suffix _key. Its translation has the same "%@" and "%lld" in the same order, for
they are filled in that order. Prints one line per violation and ends with status 1 when there is one.
"""
import json
import pathlib
import re
import sys
import tempfile

TOKEN = re.compile(
    r"""(?P<comment>//[^\n]*|/\*.*?\*/)
      | (?P<raw>(?:u8|[uUL])?R"(?P<mark>[^\s()\\]{0,16})\((?P<body>.*?)\)(?P=mark)"(?P<rawsuffix>[A-Za-z_]\w*)?)
      | (?P<string>(?:u8|[uUL])?"(?P<text>(?:[^"\\\n]|\\.)*)"(?P<suffix>[A-Za-z_]\w*)?)
      | (?P<char>(?:u8|[uUL])?'(?:[^'\\\n]|\\.)+')
      | (?P<word>[A-Za-z0-9_](?:'?\w)*)
      | (?P<space>\s+)
      | (?P<other>.)""",
    re.VERBOSE | re.DOTALL,
)
ESCAPE = re.compile(r"\\(?:u([0-9A-Fa-f]{4})|U([0-9A-Fa-f]{8})|x([0-9A-Fa-f]+)|([0-7]{1,3})|\n|(.))", re.DOTALL)
PLAIN = {"n": "\n", "t": "\t", "r": "\r", "0": "\0", "a": "\a", "b": "\b", "f": "\f", "v": "\v"}
PLACEHOLDER = re.compile(r"%@|%lld")


def unescaped(text):
    """A literal's bytes: \\x and octal escapes name bytes, not characters."""

    def value(match):
        if match[1] or match[2]:
            return chr(int(match[1] or match[2], 16))
        if match[3] or match[4]:
            byte = int(match[3], 16) if match[3] else int(match[4], 8)
            return bytes([byte]).decode("utf-8", "surrogateescape")
        return PLAIN.get(match[5], match[5] or "")

    return ESCAPE.sub(value, text).encode("utf-8", "surrogateescape")


def keys_of(source):
    """Every (line, text) with the suffix _key; adjacent literals are one text."""
    parts, suffix, line, previous = [], None, 0, ""
    for token in TOKEN.finditer(source + "\n;"):
        if token["comment"] or token["space"]:
            continue
        literal = token["raw"] or token["string"]
        if literal and previous != "operator":
            line = line if parts else source.count("\n", 0, token.start()) + 1
            parts.append(token["body"].encode() if token["raw"] else unescaped(token["text"]))
            suffix = token["rawsuffix"] or token["suffix"] or suffix
        else:
            if suffix == "_key":
                yield line, b"".join(parts).decode("utf-8")
            parts, suffix = [], None
        previous = token[0]


def unique_pairs(pairs):
    table = dict(pairs)
    if len(table) != len(pairs):
        keys = [key for key, _ in pairs]
        raise ValueError("twice in the table: " + ", ".join(sorted({key for key in keys if keys.count(key) > 1})))
    return table


def quoted(text):
    return json.dumps(text, ensure_ascii=False)


def check(root):
    """All violations in the tree at `root`, as texts."""
    table_path = root / "resources" / "strings" / "pt-PT.json"
    shown = table_path.relative_to(root).as_posix()
    try:
        table = json.loads(table_path.read_text(encoding="utf-8"), object_pairs_hook=unique_pairs)
    except (OSError, ValueError) as error:
        return [f"{shown}: {error}"]
    found, used = [], set()
    for file in sorted((root / "src").rglob("*")):
        if file.suffix not in (".h", ".cpp"):
            continue
        for line, key in keys_of(file.read_text(encoding="utf-8")):
            used.add(key)
            if key not in table:
                found.append(f"{file.relative_to(root).as_posix()}:{line}: no translation of {quoted(key)}")
    for key, translation in table.items():
        if key not in used:
            found.append(f"{shown}: no source uses {quoted(key)}")
        if not translation or PLACEHOLDER.findall(key) != PLACEHOLDER.findall(translation):
            found.append(f"{shown}: the translation of {quoted(key)} has other places to fill in, or no text")
    return found


PLANTED_SOURCE = r'''
TextKey operator""_key(const char*, std::size_t);
// "A comment"_key
auto a = "Plain"_key; auto b = 'x'; auto c = 1'000; auto d = '"';
auto e = "Two "  // with a comment between
         "lines"_key;
auto f = "Quote \"%@\" \u2026 \xe2\x80\x99"_key;
auto g = R"(Raw "text")"_key;
auto h = "no key" + "No entry"_key;
auto i = "%@ of %lld"_key;
'''
PLANTED_TABLE = {
    "Plain": "Simples",
    "Two lines": "Duas linhas",
    'Quote "%@" … ’': "Citação «%@»",
    'Raw "text"': "Texto",
    "%@ of %lld": "%lld de %@",
    "Old": "Velho",
}
PLANTED_FAULTS = [
    'src/a.cpp:9: no translation of "No entry"',
    'resources/strings/pt-PT.json: the translation of "%@ of %lld" has other places to fill in, or no text',
    'resources/strings/pt-PT.json: no source uses "Old"',
]


def self_test():
    with tempfile.TemporaryDirectory() as folder:
        root = pathlib.Path(folder)
        (root / "src").mkdir()
        (root / "src" / "a.cpp").write_text(PLANTED_SOURCE, encoding="utf-8")
        (root / "resources" / "strings").mkdir(parents=True)
        (root / "resources" / "strings" / "pt-PT.json").write_text(json.dumps(PLANTED_TABLE), encoding="utf-8")
        found = check(root)
    return [] if found == PLANTED_FAULTS else [f"check_strings: expected {PLANTED_FAULTS}, found {found}"]


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
