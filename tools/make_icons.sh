#!/bin/sh
# Draws the icons of packaging/icons out of their SVG drawings, one folder for each size: tools/make_icons.sh
# [FOLDER]; another folder leaves those of the sources as they are.
# Small sizes have drawings of their own, whose edges lie on pixels. The results are kept with the sources,
# so that a build needs no renderer.
set -e
cd "$(dirname "$0")/../packaging"
icons="${1:-icons}"

# draw NAME SIZE DRAWING [BORDER]: icons/SIZExSIZE/NAME.png, with that many empty pixels on each side.
draw() {
  border="${4:-0}"
  inner=$(($2 - 2 * border))
  mkdir -p "$icons/$2x$2"
  rsvg-convert -w "$inner" -h "$inner" --page-width "$2" --page-height "$2" --left "$border" --top "$border" \
    "$3" -o "$icons/$2x$2/$1.png"
}

program=kerno
draw $program 16 icons/kerno-16.svg
draw $program 22 icons/kerno-22.svg
draw $program 24 icons/kerno-22.svg 1
draw $program 32 icons/kerno-32.svg
parts_file=application-x-kerno-ipx
draw $parts_file 16 icons/kerno-ipx-16.svg
draw $parts_file 22 icons/kerno-ipx-16.svg 3
draw $parts_file 24 icons/kerno-ipx-16.svg 4
draw $parts_file 32 icons/kerno-ipx-16.svg
for size in 48 64 128 256; do
  draw $program $size kerno.svg
  draw $parts_file $size icons/kerno-ipx.svg
done
