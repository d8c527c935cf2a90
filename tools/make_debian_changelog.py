#!/usr/bin/python3
"""Makes a Debian changelog out of CHANGELOG.md: make_debian_changelog.py CHANGELOG.md [NEWER_VERSION]

Each heading "## 1.0.0 - 2026-11-22" becomes an entry, each list item below it one of its changes. With a
newer version, an entry without changes stands above them, for packages that are built to be tried. The
revision sorts below those of Debian itself. The result goes to standard output.
"""
import datetime
import re
import sys
import textwrap

MAINTAINER = "Kerno developers <kerno@example.org>"
REVISION = "0kerno1"


def releases(text):
    """Yields (version, date, [change...]) in the file's order, which is newest first."""
    for block in re.split(r"^## ", text, flags=re.MULTILINE)[1:]:
        heading, _, body = block.partition("\n")
        match = re.fullmatch(r"([0-9][0-9A-Za-z.~+]*) - (\d{4}-\d\d-\d\d)", heading.strip())
        if not match:
            raise SystemExit(f'changelog: "## {heading}" is not of the form "## 1.0.0 - 2026-11-22"')
        items = re.findall(r"^[-*] (.*(?:\n[ \t]+\S.*)*)", body, flags=re.MULTILINE)
        changes = [" ".join(item.split()) for item in items]
        if not changes:
            raise SystemExit(f"changelog: {match[1]} lists no change")
        yield match[1], datetime.date.fromisoformat(match[2]), changes


def entry(version, date, changes):
    lines = [f"kerno ({version}-{REVISION}) unstable; urgency=medium", ""]
    for change in changes:
        lines += textwrap.wrap(change, 76, initial_indent="  * ", subsequent_indent="    ")
    noon = datetime.datetime.combine(date, datetime.time(12), datetime.timezone.utc)
    # Names of days and months are English whatever the locale: nothing here sets one.
    return "\n".join(lines) + f"\n\n -- {MAINTAINER}  {noon:%a, %d %b %Y %H:%M:%S} +0000\n"


def main(path, newer=None):
    with open(path, encoding="utf-8") as file:
        entries = list(releases(file.read()))
    if not entries:
        raise SystemExit(f"changelog: {path} has no release")
    if newer and newer != entries[0][0]:
        entries.insert(0, (newer, entries[0][1], ["Packages to be tried."]))
    print("\n".join(entry(*one) for one in entries), end="")


if __name__ == "__main__":
    if len(sys.argv) not in (2, 3):
        sys.exit(__doc__)
    main(*sys.argv[1:])
