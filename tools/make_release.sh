#!/bin/sh
# Makes all that is published of a version, out of a fresh clone of the last commit:
# tools/make_release.sh FOLDER     writes FOLDER/release-VERSION/ and its SHA256SUMS
set -e
cd "$(dirname "$0")/.."
if [ "$(git rev-parse --show-toplevel 2>/dev/null)" != "$(pwd -P)" ]; then
  echo "make release: this is no git clone; a release is made out of a commit" >&2
  exit 1
fi
changed=$(git status --porcelain)
if [ -n "$changed" ]; then
  echo "make release: these files are not committed, and a release has what is committed:" >&2
  echo "$changed" >&2
  exit 1
fi
version=$(sed -n 's/^project(kerno VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
newest=$(sed -n 's/^## //p' CHANGELOG.md | head -n 1)
case $newest in
  "$version - "*) ;;
  *) echo "make release: CHANGELOG.md begins with \"$newest\", the version is $version" >&2; exit 1 ;;
esac

mkdir -p "$1"
release=$(realpath "$1")/release-$version
clone=$release.clone
rm -rf "$release" "$clone"
# In a clone the source does not tell its date: all that is made tells that of the commit.
SOURCE_DATE_EPOCH=$(git log -1 --format=%ct)
export SOURCE_DATE_EPOCH
git clone --quiet --no-hardlinks . "$clone"
for target in dist deb windows-zip windows-installer python; do
  echo "make release: $target"
  make --no-print-directory -C "$clone" "$target" > "$release.log" 2>&1 || {
    tail -n 20 "$release.log" >&2
    echo "make release: \"make $target\" failed in $clone; $release.log has all that it said" >&2
    exit 1
  }
done
mkdir "$release"
cp "$clone"/build/dist/* "$release/"
cp -R "$clone"/build/packages/* "$release/"
cd "$release"
# These tell when and on what machine the packages were built; all else is the same each time.
rm -f ./*.buildinfo ./*.changes
find . -type f ! -name SHA256SUMS -printf '%P\n' | LC_ALL=C sort | xargs -d '\n' sha256sum > SHA256SUMS
rm -rf "$clone" "$release.log"
echo "$release"
cat SHA256SUMS
