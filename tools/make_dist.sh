#!/bin/sh
# Packs the last commit as kerno-VERSION.tar.xz and .tar.gz, the same bytes each time:
# tools/make_dist.sh FOLDER
set -e
folder=$1
cd "$(dirname "$0")/.."
if [ "$(git rev-parse --show-toplevel 2>/dev/null)" != "$(pwd -P)" ]; then
  echo "make dist: this is no git clone; a tarball is made out of a commit" >&2
  exit 1
fi
if [ -n "$(git status --porcelain)" ]; then
  echo "make dist: packs the last commit, without the changes that are not committed" >&2
fi
version=$(git show HEAD:CMakeLists.txt | sed -n 's/^project(kerno VERSION \([0-9.]*\).*/\1/p')
name=kerno-$version
mkdir -p "$folder"
# Names in order, the time of the commit, no owners.
git -c tar.umask=0022 archive --format=tar --prefix="$name/" --output="$folder/$name.tar" HEAD
gzip --no-name --best --keep --force "$folder/$name.tar"
xz --threads=1 --force "$folder/$name.tar"
ls "$folder/$name.tar.xz" "$folder/$name.tar.gz"
