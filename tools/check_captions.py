#!/usr/bin/env python3
"""Checks the table of the window's texts against the sources that use it and the fonts that show it.

usage: check_captions.py SRC

Every text that the sources say has a row, and so has every reason that they give; no row is left
over or there twice, the places for parts agree in all languages, and each character is in one of
the faces that Fontconfig lists.
"""
import pathlib
import re
import subprocess
import sys

LITERAL = r'(?:u8|u|U|L)?"(?:[^"\\\n]|\\.)*"'
TOKEN = re.compile(rf"//[^\n]*|/\*.*?\*/|(?P<text>{LITERAL})|'(?:[^'\\\n]|\\.)+'|(?P<other>\S)", re.S)
SAYERS = {"Say": 1, "SayIn": 2, "Counted": 2}  # how many of the first arguments hold texts
CALL = re.compile(r"\b(" + "|".join(SAYERS) + r")\s*\(")

# Calls whose last argument is a reason, in the sources whose reasons the window shows.
REASON = re.compile(r"\b(?:Status::Error|ReportError|Refuse|StrokeFontFault)\s*\(|\bfault \+?= ")
GIVES_REASONS = re.compile(r"app/(?:cut|face_texts|glyph_source|lengths|list_bytes|option|output_list"
                           r"|row_|series|sheet|stroke|table)|outline/|platform/font_file")


def value_of(literal):
    body = literal[literal.index('"') + 1:-1]
    return re.sub(r"\\(u[0-9A-Fa-f]{4}|.)",
                  lambda m: chr(int(m[1][1:], 16)) if len(m[1]) == 5 else {"n": "\n"}.get(m[1], m[1]), body)


def tokens_of(source):
    """Pairs of (text, None) and (None, sign): adjacent literals are one text, comments are left out."""
    found = []
    for match in TOKEN.finditer(source):
        if match["text"]:
            text = value_of(match["text"])
            if found and found[-1][0] is not None:
                text = found.pop()[0] + text
            found.append((text, None))
        elif match["other"]:
            found.append((None, match["other"]))
    return found


def texts_said(source):
    for call in CALL.finditer(source):
        depth, argument = 0, 0
        for text, sign in tokens_of(source[call.end():call.end() + 3000]):
            if text is not None and depth == 0:
                yield text
            elif sign is not None and sign in "([{":
                depth += 1
            elif sign is not None and sign in ")]}":
                depth -= 1
            argument += sign == "," and depth == 0
            if depth < 0 or argument == SAYERS[call[1]]:
                break


def reasons_given(source):
    """The fixed parts of the reasons; what stands before the last comma says what they are about."""
    for call in REASON.finditer(source):
        depth, found = 0, []
        for text, sign in tokens_of(source[call.end():call.end() + 1500]):
            if text is not None:
                found.append(text)
            elif sign == "," and depth == 0:
                found = []
            elif sign in "([{":
                depth += 1
            elif sign in ")]};":
                depth -= 1
            if depth < 0:
                break
        yield from (text for text in found if len(text.strip(' ",;:()')) > 3)


def rows_of(table):
    source = table.read_text(encoding="utf-8")
    text = rf"((?:{LITERAL}\s*)+)"
    rows = re.findall(r"\{" + r",\s*".join([text] * 3) + rf"(?:,\s*{text})?\}}", source)
    return [[text for text in row if text] for row in rows]


def places(text):
    signs = re.findall(r"\{([1-9]?)\}", text)
    return sorted(int(sign) if sign else number for number, sign in enumerate(signs, 1))


def listed_characters():
    """The characters of all faces, from ranges such as "20-7e a0 3042"."""
    lists = subprocess.run(["fc-list", "-f", "%{charset} "], capture_output=True, text=True, check=True)
    found = set()
    for span in lists.stdout.split():
        first, _, last = span.partition("-")
        found.update(range(int(first, 16), int(last or first, 16) + 1))
    return found


def is_composed(key, pieces):
    """Whether the words of a row, apart from its places, are pieces that stand in the sources."""
    rest = key.replace('"', "")
    for piece in pieces:
        rest = rest.replace(piece, "{}")
    return not re.search(r"\w", re.sub(r"\{[1-9]?\}", "", rest))


def complaints(src):
    table = src / "app" / "captions_table.cpp"
    rows = [[tokens_of(text)[0][0] for text in row] for row in rows_of(table)]
    keys = [row[0] for row in rows]
    said, reasons, written = {}, {}, set()
    for path in sorted(p for p in src.rglob("*") if p.suffix in (".h", ".cpp") and p != table):
        source = path.read_text(encoding="utf-8")
        written.update(text for text, _ in tokens_of(source) if text is not None)
        if GIVES_REASONS.match(path.relative_to(src).as_posix()):
            for text in reasons_given(source):
                reasons.setdefault(text, path.relative_to(src))
        if path.relative_to(src).parts[0] not in ("app", "ui"):
            continue  # the command line speaks English
        for text in texts_said(source):
            said.setdefault(text, path.relative_to(src))
    for text, path in said.items():
        if text not in keys:
            yield f"{path}: no row for {text!r}"
    for text, path in reasons.items():
        words = text.replace('"', "").strip()
        if not any(words in key.replace('"', "") for key in keys):
            yield f"{path}: no row for the reason {text!r}"
    pieces = sorted({text.replace('"', "") for text in written}, key=len, reverse=True)
    pieces = [piece for piece in pieces if len(piece) > 3]
    for key in sorted(set(keys)):
        if keys.count(key) > 1:
            yield f"two rows for {key!r}"
        if key not in written and not is_composed(key, pieces):
            yield f"nothing says {key!r}"
    shown = listed_characters()
    for row in rows:
        if not all(row):
            yield f"not in all languages: {row!r}"
        if len({tuple(places(text)) for text in row}) > 1:
            yield f"places for parts differ: {row!r}"
        lacks = {c for text in row for c in text if ord(c) not in shown and c != "\n"}
        if lacks:
            yield f"no face has {sorted(lacks)!r} of {row!r}"
    print(f"{len(rows)} rows, {len(said)} texts said by name, {len(reasons)} parts of reasons")
    if len(rows) < 100 or len(said) < 50 or len(reasons) < 80:
        yield "the table or the sources were not understood"


def main():
    found = list(complaints(pathlib.Path(sys.argv[1])))
    print("\n".join(found))
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
