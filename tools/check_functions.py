#!/usr/bin/env python3
"""Keeps functions small: a body has at most 50 lines.

usage: check_functions.py FILE...
       check_functions.py --self-test

Reads the braces of C++ sources, which costs a second for all of them where a compiler's tree costs minutes. Tests are
left out: their tables of cases are data. Prints one line per violation and ends with status 1 when there is one.
"""
import pathlib
import re
import sys

LIMIT = 50
IGNORED = re.compile(
    r"""//[^\n]*|/\*.*?\*/|R"(?P<mark>[^\s()\\]{0,16})\(.*?\)(?P=mark)"|"(?:[^"\\\n]|\\.)*"|(?<![0-9a-fA-F])'(?:[^'\\\n]|\\.)+'""",
    re.DOTALL,
)
TYPE_OR_SPACE = re.compile(r"\b(namespace|class|struct|union|enum|extern)\b")


def without_texts(source):
    """The source with comments and texts blanked, line breaks kept."""
    return IGNORED.sub(lambda match: re.sub(r"[^\n]", " ", match[0]), source)


def is_function(head):
    """Whether a brace behind this text opens a function's body, when it is not within another one."""
    head = head.strip()
    if not head or head.endswith(("(", ",", "=", "return")):
        return False
    if TYPE_OR_SPACE.search(head) and not head.endswith(")"):
        return False
    return ")" in head or "]" in head


def long_functions(source):
    """(line, lines) of every function that is too long."""
    source = without_texts(source)
    stack, start, line = [], 0, 1
    for position, char in enumerate(source):
        if char == "\n":
            line += 1
        elif char in "{;}":
            head = source[start:position]
            start = position + 1
            if char == "{":
                inside = bool(stack) and stack[-1] is not None
                # Within a function its braces are its own: only where it ends counts.
                stack.append(("inner" if inside else line) if inside or is_function(head) else None)
            elif char == "}" and stack:
                opened = stack.pop()
                if isinstance(opened, int) and line - opened > LIMIT:
                    yield opened, line - opened
    return


PLANTED = [
    ("namespace a {\nint f(int x) {\n" + "    ++x;\n" * 60 + "}\n}\n", [(2, 61)]),
    ("class A {\npublic:\n    A() : a_{1}, b_(2) {\n" + "        f();\n" * 60 + "    }\n};\n", [(3, 61)]),
    ("const auto f = [](int x) {\n" + "    if (x) { g(); }\n" * 60 + "};\n", [(1, 61)]),
    ("int f() {\n" + "    ++x;\n" * 49 + "}\n", []),
    ("constexpr auto rows = std::to_array<Row>({\n" + "    {1, '{', \"{\"},\n" * 60 + "});\n", []),
    ("struct Row {\n" + "    int a = 0;  // {\n" * 60 + "};\n", []),
    ("enum class Kind {\n" + "    a,\n" * 60 + "};\n", []),
]


def self_test():
    failures = []
    for source, expected in PLANTED:
        found = list(long_functions(source))
        if found != expected:
            failures.append(f"check_functions: {source[:60]!r}...: expected {expected}, found {found}")
    return failures


def main():
    if sys.argv[1:] == ["--self-test"]:
        found = self_test()
    else:
        found = []
        for path in sys.argv[1:]:
            for line, count in long_functions(pathlib.Path(path).read_text(encoding="utf-8")):
                found.append(f"{path}:{line}: a function of {count} lines, {LIMIT} at most")
    for text in found:
        print(text)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
