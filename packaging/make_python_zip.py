#!/usr/bin/env python3
"""Puts the Python package and the library into a folder, and both into a zip that is the same each time.

usage: make_python_zip.py LIBRARY FOLDER PACKAGES
"""
import os
import pathlib
import shutil
import subprocess
import sys
import time
import zipfile

EARLIEST = 315532800  # 1980-01-01, the first moment that a zip can tell


def main():
    library, folder, packages = map(pathlib.Path, sys.argv[1:])
    source = pathlib.Path(__file__).resolve().parents[1]
    shutil.rmtree(folder, ignore_errors=True)
    shutil.copytree(source / "python" / "kerno", folder / "kerno", ignore=shutil.ignore_patterns("__pycache__"))
    shutil.copy(library, folder / "kerno" / library.name)
    shutil.copy(source / "LICENSE", folder / "kerno" / "LICENSE")
    told = subprocess.run([sys.executable, "-B", "-c", "import kerno; print(kerno.__version__)"], check=True,
                          capture_output=True, text=True, env={**os.environ, "PYTHONPATH": str(folder)})
    packages.mkdir(parents=True, exist_ok=True)
    name = packages / f"kerno-python-{told.stdout.strip()}.zip"
    moment = time.gmtime(max(EARLIEST, int(os.environ.get("SOURCE_DATE_EPOCH") or EARLIEST)))[:6]
    with zipfile.ZipFile(name, "w", zipfile.ZIP_DEFLATED) as archive:
        for file in sorted(path for path in folder.rglob("*") if path.is_file()):
            entry = zipfile.ZipInfo(str(file.relative_to(folder)), moment)
            entry.external_attr = 0o100644 << 16
            archive.writestr(entry, file.read_bytes(), zipfile.ZIP_DEFLATED)
    print(f"{folder}: PYTHONPATH={folder.resolve()} /usr/bin/python3\n{name}: {name.stat().st_size} bytes")


if __name__ == "__main__":
    main()
