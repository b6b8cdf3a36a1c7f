#!/usr/bin/env python3
"""Turns a string table (English text to translation) into a sorted C++ array."""
import json
import sys


def literal(text):
    out = []
    for byte in text.encode("utf-8"):
        char = chr(byte)
        if char in '"\\':
            out.append("\\" + char)
        elif 32 <= byte < 127 and char != "?":
            out.append(char)
        else:
            out.append("\\%03o" % byte)
    return '"' + "".join(out) + '"'


def main():
    table_file, target = sys.argv[1:]
    with open(table_file, encoding="utf-8") as source:
        table = json.load(source)
    rows = sorted(table.items(), key=lambda row: row[0].encode("utf-8"))
    lines = ['#include "base/StringTable.h"', "", "namespace quillmar {", "namespace {"]
    lines.append(f"constexpr std::array<StringTableRow, {len(rows)}> rows{{{{")
    lines += [f"    {{{literal(key)}, {literal(value)}}}," for key, value in rows]
    lines += ["}};", "}  // namespace", "", "std::span<const StringTableRow> portugueseStringTable() { return rows; }", "}  // namespace quillmar", ""]
    with open(target, "w", encoding="utf-8") as out:
        out.write("\n".join(lines))


if __name__ == "__main__":
    main()
