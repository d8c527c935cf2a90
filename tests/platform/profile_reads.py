"""Prints the recorded reads of private profiles for the test programs.

usage: profile_reads.py RECORD INI: writes the recorded text to INI (code page 932) and prints one line
for each read: section, key, string, integer, separated by "|".
"""
import json
import sys

record = json.load(open(sys.argv[1], encoding="utf-8"))
with open(sys.argv[2], "wb") as ini:
    ini.write(record["text"].encode("cp932"))
for read in record["reads"]:
    print(read["section"], read["key"], read["string"], read["int"], sep="|")
