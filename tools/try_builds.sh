#!/bin/sh
# Builds the tarball as distributions might, and compares what the programs write: the recorded digests of "convert",
# and drawings of "cut", which have to be those of the first row. One line for each row.
# Rows of one tarball may come from several runs; another tarball begins again.
# tools/try_builds.sh TARBALL FOLDER [ROW...]     rows: all that are named below, or those given
set -u
tarball=$(realpath "$1")
mkdir -p "$2"
folder=$(realpath "$2")
shift 2
wanted=" $* "
jobs=${JOBS:-2}

digest=$(sha256sum < "$tarball")
if [ "$digest" != "$(cat "$folder/tarball" 2>/dev/null)" ]; then
  rm -f "$folder/sums" "$folder/results"
  echo "$digest" > "$folder/tarball"
fi
rm -rf "$folder/source"
mkdir "$folder/source"
tar -C "$folder/source" --strip-components=1 -xf "$tarball" || exit 1

# draw KERNO FOLDER writes drawings of "cut" whose numbers went through each stage.
draw() {
  mkdir -p "$2"
  (
    export FONTCONFIG_FILE="$folder/source/tests/fonts.conf" SOURCE_DATE_EPOCH=1700000000
    export XDG_CONFIG_HOME="$folder/home"
    cut() { "$kerno" cut --quiet "$@" || exit 1; }
    kerno=$1
    cut "Öffnungszeiten 9–17 h & more" --face "DejaVu Sans" --style Bold --fit 120mm \
      -o "$2/latin.dxf" -o "$2/latin.svg" -o "$2/latin.pdf" -o "$2/latin.plt"
    cut "切文字の見本" --face IPAMincho --cap-height 33.3mm --offset 0.15mm --angle 12.3 --tolerance 0.003mm \
      -o "$2/arcs.dxf" -o "$2/arcs.svg" -o "$2/arcs.x3d"
    cut "שלום 123 नमस्ते" --face "DejaVu Sans" --fallback "Lohit Devanagari" --em 12mm --slant 9 --curves curves \
      -o "$2/scripts.dxf" -o "$2/scripts.svg" -o "$2/scripts.emf"
    cut "縦書き、ーと「」" --face IPAGothic --vertical --em 10mm --curves lines --mirror -o "$2/vertical.dxf" -o "$2/vertical.ipx"
    cut "Panel 12 V" --stroke-font rowmans --cap-height 5mm --angle 7 -o "$2/strokes.dxf" -o "$2/strokes.plt"
    cut --count 9 --text "No. {n:03}" --face "DejaVu Serif" --cap-height 6mm --sheet 150x100mm --frame 40x15mm \
      --corner 3mm --numbers -o "$2/plates-{sheet}.dxf"
    # These tell which program wrote them, and when that was built.
    sed -i '/^EXE /d; /^X3D Exporter/d' "$2/arcs.x3d"
    sed -i '1s/"[^"]*"//' "$2/vertical.ipx"
    cd "$2" && sha256sum ./*.* > sums
  )
}

# row NAME COMPILER FLAGS LINK_FLAGS [OPTION...] builds and compares.
failures=0
row() {
  name=$1
  [ "$wanted" = "  " ] || case $wanted in *" $name "*) ;; *) return ;; esac
  case $2 in gcc) cc=gcc cxx=g++ ;; *) cc=clang cxx=clang++ ;; esac
  flags=$3 link=$4
  shift 4
  build="$folder/$name"
  rm -rf "$build"
  mkdir "$build"
  begun=$(date +%s)
  result=built
  env CC=$cc CXX=$cxx CFLAGS="$flags" CXXFLAGS="$flags" LDFLAGS="$link" \
    cmake -S "$folder/source" -B "$build" -DCMAKE_BUILD_TYPE=None -DKERNO_TESTS=OFF "$@" > "$build/log" 2>&1 &&
    cmake --build "$build" -j "$jobs" --target kerno >> "$build/log" 2>&1 || result="NOT BUILT"
  seconds=$(($(date +%s) - begun))
  warnings=$(grep -c 'warning:' "$build/log")
  if [ "$result" = built ]; then
    result="built in $seconds s, $warnings warnings"
    if FONTCONFIG_FILE="$folder/source/tests/fonts.conf" python3 "$folder/source/tests/cli/output_digests_test.py" \
      "$build/src/cli/kerno" > "$build/digests" 2>&1; then
      result="$result, convert as recorded"
    else
      result="$result, CONVERT DIFFERS"
      failures=$((failures + 1))
    fi
    [ -f "$folder/sums" ] && reference="as in the first row" || reference="(the first row)"
    if ! draw "$build/src/cli/kerno" "$build/drawings" 2>> "$build/log"; then
      result="$result, CUT FAILED"
      failures=$((failures + 1))
    else
      [ -f "$folder/sums" ] || cp "$build/drawings/sums" "$folder/sums"
      if cmp -s "$folder/sums" "$build/drawings/sums"; then
        result="$result, cut $reference"
      else
        result="$result, CUT DIFFERS"
        failures=$((failures + 1))
      fi
    fi
  else
    failures=$((failures + 1))
  fi
  printf '%-22s %s\n' "$name" "$result" | tee -a "$folder/results"
}

fortify="-Wp,-D_FORTIFY_SOURCE=2 -D_GLIBCXX_ASSERTIONS -fstack-protector-strong"
row gcc-O2 gcc "-O2 $fortify" "-Wl,-z,relro -Wl,-z,now"
row clang-O2 clang "-O2 $fortify" ""
row gcc-O3-lto gcc "-O3 -Wp,-D_FORTIFY_SOURCE=2 -flto=auto" "-flto=auto"
row gcc-O0 gcc "-O0 $fortify" ""
row clang-O0 clang "-O0 $fortify" ""
row clang-O3-lto clang "-O3 -Wp,-D_FORTIFY_SOURCE=2 -flto" "-flto -fuse-ld=lld"
row gcc-O2-fortify3 gcc "-O2 -Wp,-D_FORTIFY_SOURCE=3" ""
row gcc-O1 gcc "-O1 $fortify" ""
row gcc-O3 gcc "-O3 $fortify" ""
row clang-O1 clang "-O1 $fortify" ""
row clang-O3 clang "-O3 $fortify" ""
row gcc-O2-native gcc "-O2 -march=native" ""
row clang-O2-native clang "-O2 -march=native" ""
row gcc-plain gcc "" ""
[ "$failures" = 0 ] || { echo "$failures faults; $folder/ROW/log tells more"; exit 1; }
