#!/usr/bin/env python3
"""Writes inputs for a fuzzer, changed from its seeds by chance: the same ones each time.

usage: mutate.py FOLDER COUNT [--words FILE] SEED...    (a seed is a file or a folder of files)
"""
import argparse
import pathlib
import random
import re
import shutil

NUMBERS = [b"0", b"-1", b"1e308", b"-1.7e308", b"4.9e-324", b"nan", b"inf", b"2147483647", b"-2147483648", b"65536",
           b"99999999999999999999"]
BYTES = [0, 1, 0x7F, 0x80, 0xFF, 0x0A, 0x0D, 0x1A, 0x20, 0x22, 0x2C, 0x5C]
MOST_CHANGES, LONGEST_PIECE = 6, 64


def files_of(seeds):
    for seed in map(pathlib.Path, seeds):
        yield from sorted(p for p in seed.rglob("*") if p.is_file()) if seed.is_dir() else [seed]


def words_of(file):
    for quoted in re.findall(r'"((?:[^"\\]|\\.)*)"', file.read_text("ascii")) if file else []:
        yield quoted.encode("ascii").decode("unicode_escape").encode("latin-1")


def piece_of(data, chance):
    start = chance.randrange(len(data) + 1)
    return start, min(len(data), start + chance.randint(1, LONGEST_PIECE))


def changed(data, inputs, words, chance):
    start, end = piece_of(data, chance)
    kind = chance.randrange(8)
    if kind == 0:
        return data[:start] + data[end:]
    if kind == 1:
        return data[:end] + data[start:end] * chance.randint(1, 4) + data[end:]
    if kind == 2:
        return data[:start] + bytes(chance.sample(data[start:end], end - start)) + data[end:]
    if kind == 3:
        return data[:start] + chance.choice(words) + data[start:]
    if kind == 4:
        other = chance.choice(inputs)
        first, last = piece_of(other, chance)
        return data[:start] + other[first:last] + data[end:]
    if kind == 5 and (numbers := list(re.finditer(rb"-?[0-9][0-9.]*", data))):
        number = chance.choice(numbers)
        return data[:number.start()] + chance.choice(NUMBERS) + data[number.end():]
    if not data:
        return bytes([chance.choice(BYTES)])
    at = min(start, len(data) - 1)
    byte = data[at] ^ 1 << chance.randrange(8) if kind == 6 else chance.choice(BYTES)
    return data[:at] + bytes([byte]) + data[at + 1:]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("count", type=int)
    parser.add_argument("--words", type=pathlib.Path)
    parser.add_argument("seeds", nargs="+")
    given = parser.parse_args()
    chance = random.Random(given.folder.name)
    inputs = [file.read_bytes() for file in files_of(given.seeds)]
    words = list(words_of(given.words)) or NUMBERS
    shutil.rmtree(given.folder, ignore_errors=True)
    given.folder.mkdir(parents=True)
    for number, seed in enumerate(inputs):
        (given.folder / f"seed-{number}").write_bytes(seed)
    for number in range(given.count):
        data = chance.choice(inputs)
        for _ in range(chance.randint(1, MOST_CHANGES)):
            data = changed(data, inputs, words, chance)
        (given.folder / f"{number:05}").write_bytes(data)


if __name__ == "__main__":
    main()
