#!/usr/bin/env python3
"""Writes src/platform/posix/code_page_table.cpp from the recorded mapping of UTF-16 units to bytes.

usage: make_code_page_table.py tests/data/cp932.tsv > src/platform/posix/code_page_table.cpp

The table holds what bytes decode to. Encoding is its inverse except for the units listed apart:
best-fit mappings, and units that several byte pairs stand for.
"""
import sys

LEADS = [*range(0x81, 0xA0), *range(0xE0, 0xFD)]
TRAILS = [*range(0x40, 0x7F), *range(0x80, 0xFD)]
USER_DEFINED = range(0xF0, 0xFA)  # U+E000 onwards, by computation
DECODED_ONLY = (0xED, 0xEE)  # copies of characters that rows 0xFA to 0xFC hold too
MISSING = "\uFFFD"

HEAD = """\
// Written by tools/make_code_page_table.py; change that, not this.
#include "code_page_table.h"

namespace kerno::posix {

// clang-format off
"""


def decode(data):
    try:
        text = data.decode("cp932")
    except UnicodeDecodeError:
        return MISSING
    return text if len(text) == 1 else MISSING


def decoding():
    """Bytes to character: every single byte and every pair."""
    table = {}
    for byte in [*range(0x81), *range(0xA0, 0xE0), *range(0xFD, 0x100)]:
        table[byte] = decode(bytes([byte]))
    for lead in LEADS:
        for trail in TRAILS:
            table[lead << 8 | trail] = decode(bytes([lead, trail]))
    return table


def recorded(path):
    units = {}
    for line in open(path, encoding="ascii"):
        if not line.startswith("#"):
            unit, data = line.split()
            units[int(unit, 16)] = int(data, 16)
    return units


def main():
    table = decoding()
    inverse = {}
    for data, character in sorted(table.items()):
        if character != MISSING and data >> 8 not in DECODED_ONLY:
            inverse.setdefault(ord(character), data)
    wanted = recorded(sys.argv[1])
    wanted.setdefault(0, 0)
    extra = sorted((u, wanted.get(u, 0)) for u in set(wanted) | set(inverse)
                   if wanted.get(u) != inverse.get(u))

    out = [HEAD, "const char16_t* const kCodePageRows[kCodePageLeads] = {\n"]
    for lead in LEADS:
        row = "".join(table[lead << 8 | trail] for trail in TRAILS)
        if lead in USER_DEFINED or row == MISSING * len(row):
            out.append("    nullptr,\n")
        else:
            out.append('    u"%s",\n' % row)
    out.append("};\n\nconst CodePageExtra kCodePageExtras[] = {\n")
    for at in range(0, len(extra), 6):
        out.append("    " + " ".join("{0x%04X, 0x%04X}," % pair for pair in extra[at:at + 6]) + "\n")
    out.append("};\n// clang-format on\n\nconst size_t kCodePageExtraCount = %d;\n\n" % len(extra))
    out.append("}  // namespace kerno::posix\n")
    sys.stdout.write("".join(out))


if __name__ == "__main__":
    main()
