#!/bin/sh
# The time that files of packages get, in seconds since 1970: SOURCE_DATE_EPOCH, in a tarball that of its
# commit, in a clone that of the last one.
root=$(cd "$(dirname "$0")/../.." && pwd)
written=$(head -n 1 "$root/cmake/source-date.txt")
case $written in
  *[!0-9]* | "") written=$(git -C "$root" log -1 --format=%ct) ;;
esac
echo "${SOURCE_DATE_EPOCH:-$written}"
