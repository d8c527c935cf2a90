#!/usr/bin/env python3
"""Prints the running text of an RTF file as unrtf reads it, a line for each paragraph.

usage: read_rtf.py FILE
"""
import html
import re
import subprocess
import sys


def main():
    page = subprocess.run(["unrtf", "--html", "--nopict", sys.argv[1]], check=True,
                          capture_output=True).stdout.decode("utf-8")
    body = re.search(r"<body>(.*)</body>", page, re.DOTALL).group(1).replace("\n", "")
    text = re.sub(r"<[^>]*>", "", body.replace("<br>", "\n"))
    # unrtf writes surrogates one by one.
    text = re.sub(r"&#(\d+);", lambda m: chr(int(m.group(1))), text)
    text = text.encode("utf-16-le", "surrogatepass").decode("utf-16-le")
    sys.stdout.buffer.write(html.unescape(text).encode("utf-8"))


main()
