#!/bin/sh
# Packs the Windows programs and the library with documents and examples: packaging/windows/make_zip.sh BUILD ZIP
# Two runs on the same programs give the same bytes.
set -e
build=$(realpath "$1")
zip_file=$(realpath -m "$2")
here=$(cd "$(dirname "$0")" && pwd)
SOURCE_DATE_EPOCH=$(sh "$here/source_date.sh")
TZ=UTC  # the times of a zip have no zone
export SOURCE_DATE_EPOCH TZ
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
sh "$here/stage.sh" "$build" "$work/kerno" with-library
mkdir -p "$(dirname "$zip_file")"
rm -f "$zip_file"
(cd "$work" && find kerno | LC_ALL=C sort | zip -q -X -@ "$zip_file")
if [ -n "$SIGN_KEY" ]; then echo "$zip_file"; else echo "$zip_file (not signed: no SIGN_KEY)"; fi
