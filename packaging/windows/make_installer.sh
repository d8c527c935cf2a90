#!/bin/sh
# Makes the installer: packaging/windows/make_installer.sh BUILD VERSION SETUP_FILE
# SIGN_KEY and the other variables of sign.sh sign the programs, the uninstaller and the installer.
set -e
build=$(realpath "$1")
version=$2
setup=$(realpath -m "$3")
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/../.." && pwd)
SOURCE_DATE_EPOCH=$(sh "$here/source_date.sh")
export SOURCE_DATE_EPOCH
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

stage=$work/stage
sh "$here/stage.sh" "$build" "$stage"
cp "$build/src/setup/kerno-setup-helper.exe" "$work/"
x86_64-w64-mingw32-strip "$work/kerno-setup-helper.exe"
sign=""
if [ -n "$SIGN_KEY" ]; then
  sign=-DSIGN="sh '$here/sign.sh'"
  sh "$here/sign.sh" "$work/kerno-setup-helper.exe"
fi

# What is installed, and what the uninstaller removes: the same list, in one order.
names=$work/names
(cd "$stage" && find . -type f | sed 's,^\./,,' | LC_ALL=C sort) >"$names"
(cat "$names" && echo uninstall.exe) >"$stage/installed.txt"
echo installed.txt >>"$names"
while IFS= read -r name; do
  folder=$(dirname "$name" | tr / '\\')
  [ "$folder" = . ] && folder="" || folder="\\$folder"
  printf 'SetOutPath "${STAGED}%s"\nFile "%s/%s"\n' "$folder" "$stage" "$name"
done <"$names" >"$work/files.nsh"

# The licence with its paragraphs as lines, which the page breaks by its own width.
awk 'BEGIN { RS = ""; ORS = "\n\n" } { gsub(/\n/, " "); print }' "$root/LICENSE" >"$work/licence.txt"

# The picture beside the last page.
convert -size 164x314 'gradient:#f4f6f8-#c9d6e2' \
  \( "$root/packaging/icons/256x256/kerno.png" -resize 112x112 \) -gravity north -geometry +0+56 -composite \
  -depth 8 -type TrueColor -define bmp:format=bmp3 "$work/wizard.bmp"

# The installer keeps the times of its files.
find "$work" -exec touch -d "@$SOURCE_DATE_EPOCH" {} +
makensis -V2 -WX -NOCD -INPUTCHARSET UTF8 ${sign:+"$sign"} -DVERSION="$version" -DSTAGE="$stage" \
  -DFILES="$work/files.nsh" -DHELPER="$work/kerno-setup-helper.exe" \
  -DICON="$build/resources/kerno.ico" -DWIZARD="$work/wizard.bmp" -DLICENCE="$work/licence.txt" \
  -DSIZE_KB="$(du -sk --apparent-size "$stage" | cut -f 1)" -DOUT_FILE="$work/kerno-setup.exe" -DTEXTS="$here/texts.nsh" \
  "$here/kerno.nsi" >"$work/makensis.log" 2>&1 || { cat "$work/makensis.log" >&2; exit 1; }
[ -z "$SIGN_KEY" ] || sh "$here/sign.sh" "$work/kerno-setup.exe"
mkdir -p "$(dirname "$setup")"
cp "$work/kerno-setup.exe" "$setup"
if [ -n "$SIGN_KEY" ]; then echo "$setup"; else echo "$setup (not signed: no SIGN_KEY)"; fi
