#!/bin/sh
# Packs the Windows programs with the readme, the licence and what the readme links to:
# tools/make_windows_zip.sh BUILD_FOLDER ZIP
set -e
build=$1
zip_file=$(realpath -m "$2")
root=$(cd "$(dirname "$0")/.." && pwd)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
mkdir "$folder/kerno"
cp "$build/src/cli/kerno.exe" "$build/src/ui/win32/kerno-desktop.exe" "$folder/kerno/"
x86_64-w64-mingw32-strip "$folder/kerno/"*.exe
cp "$root/README.md" "$root/LICENSE" "$folder/kerno/"
cp -r "$root/docs" "$root/examples" "$folder/kerno/"
rm -f "$zip_file"
(cd "$folder" && zip -q -r "$zip_file" kerno)
echo "$zip_file"
