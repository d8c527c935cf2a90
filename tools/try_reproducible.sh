#!/bin/sh
# Builds a tarball twice, in folders of different names, at different times, with different numbers of jobs, another
# user's mask and another language, and compares what is installed, byte for byte.
# tools/try_reproducible.sh TARBALL FOLDER [CMAKE_OPTION...]
set -e
tarball=$(realpath "$1")
rm -rf "$2"
mkdir -p "$2"
folder=$(realpath "$2")
shift 2

# build SOURCE BUILD JOBS [CMAKE_OPTION...] builds and installs into FOLDER/installed-JOBS.
build() {
  source=$1 build=$2 jobs=$3
  shift 3
  mkdir -p "$source"
  tar -C "$source" --strip-components=1 -xf "$tarball"
  cmake -S "$source" -B "$build" -DKERNO_TESTS=OFF -DKERNO_CCACHE=OFF "$@" > "$folder/log-$jobs" 2>&1 &&
    cmake --build "$build" -j "$jobs" >> "$folder/log-$jobs" 2>&1 &&
    DESTDIR="$folder/installed-$jobs" cmake --install "$build" --prefix /usr >> "$folder/log-$jobs" 2>&1 || {
    tail -n 20 "$folder/log-$jobs" >&2
    exit 1
  }
}

unset SOURCE_DATE_EPOCH
build "$folder/one" "$folder/one/b" 1 "$@"
# Compilers write minutes and seconds, and files that were touched have other times.
sleep 2
(
  umask 027
  TZ=Asia/Tokyo LC_ALL=C.UTF-8
  export TZ LC_ALL
  build "$folder/別の 場所/of the source" "$folder/another build, 二" 3 "$@"
)

checked=0
different=""
cd "$folder/installed-1"
for file in $(find . -type f); do
  checked=$((checked + 1))
  cmp -s "$file" "$folder/installed-3/$file" || different="$different $file"
done
missing=$(diff -r "$folder/installed-1" "$folder/installed-3" | grep '^Only in' || true)
if [ "$checked" = 0 ] || [ -n "$different$missing" ]; then
  echo "not the same, of $checked files:$different $missing"
  exit 1
fi
echo "the same bytes: $checked files, among them:"
find . -type f \( -path '*/bin/*' -o -name 'libkerno*' \) -exec sha256sum {} +
