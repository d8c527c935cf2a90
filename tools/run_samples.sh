#!/bin/sh
# Writes the sample texts as outlines. usage: run_samples.sh KERNO FOLDER
set -e
kerno=$1
out=$2
mkdir -p "$out"

"$kerno" convert "Kerno 2026: Sphinx of black quartz, judge my vow & pack 8 boxes" \
  --face "DejaVu Sans" --height 100 -o "$out/latin.dxf"
"$kerno" convert "明朝体の見本：龍と鳳凰、あいうえお、カタカナー。" \
  --face IPAMincho --height 100 -o "$out/japanese.dxf"
"$kerno" convert "縦書きの見本、「かぎ括弧」とーと。ABC" \
  --face IPAGothic --vertical --pitch cell --height 100 -o "$out/vertical.dxf"
