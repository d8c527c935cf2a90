#!/bin/sh
# Draws the icons of packaging/icons out of their SVG drawings, one folder for each size: tools/make_icons.sh
# [FOLDER]; another folder leaves those of the sources as they are.
# Small sizes have drawings of their own, whose edges lie on pixels. The results are kept with the sources,
# so that a build needs no renderer.
set -e
cd "$(dirname "$0")/../packaging"
icons="${1:-icons}"

# draw NAME SIZE DRAWING: icons/SIZExSIZE/NAME.png.
draw() {
  mkdir -p "$icons/$2x$2"
  rsvg-convert -w "$2" -h "$2" "$3" -o "$icons/$2x$2/$1.png"
}

program=kerno
for size in 16 22 24 32; do
  draw $program $size icons/kerno-$size.svg
done
parts_file=application-x-kerno-ipx
for size in 16 22 24 32; do
  draw $parts_file $size icons/kerno-ipx-$size.svg
done
for size in 48 64 128 256; do
  draw $program $size kerno.svg
  draw $parts_file $size icons/kerno-ipx.svg
done
