#!/bin/sh
# Makes a sign with kerno and OpenSCAD.
#
# usage: sign.sh raised|engraved|stencil FILE TEXT [OPTION OF KERNO CUT...]
#   FILE: what OpenSCAD exports, .stl, .off, .3mf or .png. Beside it stay the drawing (.dxf), what was measured of it
#   (.values.scad) and the sign (.scad), which OpenSCAD's window opens and a second run leaves as it was edited. KERNO
#   and OPENSCAD of the environment name the programs where they are not in PATH.
set -eu

fail() {
  echo "sign.sh: $1" >&2
  exit 1
}

[ $# -ge 3 ] || { sed -n '2,8s/^# \{0,1\}//p' "$0" >&2; exit 2; }
variant=$1 file=$2 text=$3
shift 3
case $variant in
  raised | engraved | stencil) ;;
  *) fail "$variant: is none of raised, engraved, stencil" ;;
esac
case $file in
  *.stl | *.off | *.3mf | *.png) ;;
  *) fail "$file: ends in none of .stl, .off, .3mf, .png" ;;
esac
kerno=${KERNO:-kerno} openscad=${OPENSCAD:-openscad}
for program in "$kerno" "$openscad"; do
  command -v "$program" >/dev/null || fail "$program: is not installed, or not in PATH"
done
case $file in
  -*) file=./$file ;;
esac
here=$(CDPATH='' cd -- "$(dirname -- "$0")" && pwd)
stem=${file%.*}
values=$(basename -- "$stem").values.scad
case $here$values in
  *">"*) fail "$here, $values: OpenSCAD includes nothing whose name has a \">\"" ;;
esac
if [ -e "$stem.scad" ] && ! grep -qF "include <$values>" "$stem.scad"; then
  fail "$stem.scad: is no sign of this script and stays as it is; give FILE another name"
fi

# What is made takes the place of what is there once it is whole.
made=$stem.new
trap 'rm -f "$made.dxf" "$made.boxes"' EXIT
rm -f "$made.dxf"

# OpenSCAD 2021.01 takes the ends of arcs for corners and knows the form r2000 alone. Paths of the layer "Cut inside"
# are counters. A text that is empty or a face that is missing ends the script here, with kerno's own message.
told=$(printf '%s' "$text" | "$kerno" cut --text-file=- "$@" --curves lines --dxf r2000 --unit mm --layer Cut \
  --layers depth -o "$made.dxf")
[ -f "$made.dxf" ] || fail "kerno wrote no drawing; of its options, --help and those of a series write none here"

# The box of the letters, and for each counter the smallest letter around it. The codes 1 and 2 say that there is no path
# and that one is open.
awk '
  function finish() {
    if (kind != "LWPOLYLINE" || !points) return
    if (!closed) open = 1
    n++; left[n] = l; right[n] = r; bottom[n] = b; top[n] = t; counter[n] = layer == "Cut inside"
    if (n == 1 || l < L) L = l
    if (n == 1 || r > R) R = r
    if (n == 1 || b < B) B = b
    if (n == 1 || t > T) T = t
  }
  NR % 2 { code = $1 + 0; next }
  { sub(/\r$/, "") }
  code == 0 { finish(); kind = $0; points = 0 }
  code == 8 { layer = $0 }
  code == 70 { closed = $1 % 2 }
  code == 10 { x = $1 + 0; if (!points || x < l) l = x; if (!points || x > r) r = x }
  code == 20 { y = $1 + 0; if (!points || y < b) b = y; if (!points || y > t) t = y; points++ }
  END {
    if (!n) exit 1
    if (open) exit 2
    printf "box = [%.6f, %.6f, %.6f, %.6f];\ncounters = [", L, B, R, T
    for (i = 1; i <= n; i++) {
      if (!counter[i]) continue
      best = 0
      for (j = 1; j <= n; j++)
        if (!counter[j] && left[j] <= left[i] && right[j] >= right[i] && bottom[j] <= bottom[i] && top[j] >= top[i] &&
            (!best || right[j] - left[j] < right[best] - left[best])) best = j
      if (best) printf "%s[%.6f, %.6f, %.6f]", some++ ? ", " : "", (left[i] + right[i]) / 2, bottom[best], top[best]
    }
    print "];"
  }' "$made.dxf" >"$made.boxes" || case $? in
  1) fail "the text has no outlines" ;;
  *) fail "the text has open paths, as those of stroke fonts are: they enclose nothing that a sign could have" ;;
esac

quoted() {
  printf '%s' "$1" | sed 's/[\\"]/\\&/g'
}
mv -f "$made.dxf" "$stem.dxf"
printf '%s\n' "$stem.dxf${told#"$made.dxf"}"
{
  echo "include <$here/sign.scad>"
  echo "drawing = \"$(quoted "$(basename -- "$stem")").dxf\";"
  echo "variant = \"$variant\";"
  cat "$made.boxes"
} >"$stem.values.scad"
if [ ! -e "$stem.scad" ]; then
  {
    echo "include <$values>"
    echo "// What is written last holds: values of $here/sign.scad can be changed here, such as margin = 12;"
  } >"$stem.scad"
fi

case $file in
  *.png) set -- --camera=0,0,0,35,0,10,500 --autocenter --viewall --colorscheme=Tomorrow --imgsize 1600,600 ;;
  *) set -- ;;
esac
"$openscad" "$@" -o "$file" "$stem.scad"
