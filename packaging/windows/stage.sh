#!/bin/sh
# Puts what Windows users get into a new folder: packaging/windows/stage.sh BUILD FOLDER [with-library]
# The programs and the library are stripped, and signed where SIGN_KEY is set. All times are
# SOURCE_DATE_EPOCH.
set -e
build=$1
folder=$2
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/../.." && pwd)
rm -rf "$folder"
mkdir -p "$folder"
cp "$build/src/cli/kerno.exe" "$build/src/ui/win32/kerno-desktop.exe" "$folder/"
x86_64-w64-mingw32-strip "$folder"/*.exe
if [ "$3" = with-library ]; then
  mkdir "$folder/library"
  for file in src/api/kerno.dll src/api/libkerno.dll.a src/api/kerno.def; do
    cp "$build/$file" "$folder/library/"
  done
  cp "$root/src/api/kerno.h" "$folder/library/"
  x86_64-w64-mingw32-strip "$folder/library/kerno.dll"
fi
if [ -n "$SIGN_KEY" ]; then
  find "$folder" -name '*.exe' -o -name '*.dll' | xargs -d '\n' sh "$here/sign.sh"
fi
for file in README.md LICENSE CHANGELOG.md; do
  if [ -f "$root/$file" ]; then cp "$root/$file" "$folder/"; fi
done
cp -r "$root/docs" "$root/examples" "$folder/"
find "$folder" -name __pycache__ -prune -exec rm -r {} +
find "$folder" -exec touch -h -d "@$SOURCE_DATE_EPOCH" {} +
chmod -R u=rwX,go=rX "$folder"
