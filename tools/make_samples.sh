#!/bin/sh
# Writes three texts in every format, has other programs show each file, and puts the pictures side
# by side on one sheet. usage: make_samples.sh KERNO FOLDER SHEET.png
set -e
kerno=$1
out=$2
sheet=$3
tools=$(dirname "$0")
python=/usr/bin/python3
formats="bmp svg emf dxf ipx x3d"
mkdir -p "$out" "$(dirname "$sheet")"

# The picture of a file ($1.$2) as a reader of its format shows it, as $1-$2.png.
show() {
  case $2 in
    bmp) convert "$1.bmp" "$1-bmp.png" ;;
    svg) rsvg-convert "$1.svg" -b white -o "$1-svg.png" ;;
    emf)
      size=$(identify -format '-w %w -h %h' "$1.bmp")
      # shellcheck disable=SC2086
      emf2svg-conv $size -i "$1.emf" -o "$1-emf.svg"
      rsvg-convert "$1-emf.svg" -b white -o "$1-emf.png"
      ;;
    dxf | x3d)
      "$python" "$tools/render_$2.py" "$1.$2" "$1-$2.svg"
      rsvg-convert "$1-$2.svg" -b white -o "$1-$2.png"
      ;;
    ipx)
      "$kerno" convert --quiet --ipx "$1.ipx" -o "$1-ipx.bmp"
      convert "$1-ipx.bmp" "$1-ipx.png"
      ;;
  esac
}

# One row of the sheet. The arguments: name, height of its tiles, text, options.
row() {
  base=$out/$1
  height=$2
  shift 2
  tiles=""
  for format in $formats; do
    "$kerno" convert --quiet "$@" -o "$base.$format"
    show "$base" "$format"
    tiles="$tiles -label $format $base-$format.png"
  done
  # shellcheck disable=SC2086
  montage -font DejaVu-Sans -pointsize 12 -background white -fill black $tiles \
    -tile x1 -geometry "250x$height>+8+8" "$base-row.png"
}

row latin 60 "Kerno 8O&" --face "DejaVu Serif" --height 500 --scale 0.1
row japanese 70 "龍あ日本" --face IPAMincho --height 600 --scale 0.1
row vertical 350 "縦書き、ー「8」" --face IPAGothic --vertical --pitch cell --height 500 --scale 0.1
convert "$out/latin-row.png" "$out/japanese-row.png" "$out/vertical-row.png" -append -colors 255 "$sheet"
identify -format '%f: %w x %h, %b\n' "$sheet"
