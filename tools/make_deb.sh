#!/bin/sh
# Builds the Debian packages of the last commit and checks them: tools/make_deb.sh [VERSION]
# They go to build/packages; packages of another VERSION than the project's, to be tried, to build/deb.
# Build packages are those of packaging/debian/control; ccache is used where it is.
set -e
cd "$(dirname "$0")/.."
own_version=$(sed -n 's/^project(kerno VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
version="${1:-$own_version}"
work="$PWD/build/deb"
results="$PWD/build/packages"
[ "$version" = "$own_version" ] || results="$work/packages"
# One place for all versions, so that ccache knows each file again.
tree="$work/kerno-$own_version"

rm -rf "$tree"
mkdir -p "$tree" "$results"
rm -f "$work/kerno_$version"[.-]* "$work/"*_"$version"-*.deb
sh tools/make_dist.sh "$work/dist" >/dev/null
cp "$work/dist/kerno-$own_version.tar.xz" "$work/kerno_$version.orig.tar.xz"
tar -xJf "$work/kerno_$version.orig.tar.xz" -C "$tree" --strip-components=1
cp -R "$tree/packaging/debian" "$tree/debian"
/usr/bin/python3 tools/make_debian_changelog.py "$tree/CHANGELOG.md" "$version" > "$tree/debian/changelog"

# The build has a home of its own, but may use the cache of whoever builds.
if [ -d /usr/lib/ccache ]; then
  PATH="/usr/lib/ccache:$PATH"
  export CCACHE_DIR="${CCACHE_DIR:-$(ccache -k cache_dir)}" CCACHE_BASEDIR="$work" CCACHE_NOHASHDIR=1
fi
# Nothing for debuggers, unless options are given.
if [ -z "$DEB_BUILD_OPTIONS" ]; then
  export DEB_BUILD_OPTIONS=noautodbgsym DEB_CFLAGS_STRIP=-g DEB_CXXFLAGS_STRIP=-g
fi
# The packages tell the date of their own list of changes: whoever builds the source package gets the same bytes.
unset SOURCE_DATE_EPOCH
log="$work/kerno-$version.log"
(cd "$tree" && nice -n 5 dpkg-buildpackage --no-sign) > "$log" 2>&1 || {
  tail -n 40 "$log" >&2
  echo "make deb: the build failed; all of it is in $log" >&2
  exit 1
}

as_root=""
[ "$(id -u)" = 0 ] && as_root="--allow-root"
changes=$(ls "$work/kerno_$version"-*.changes)
# One to be tried has the date of the version before it, which would be an error.
[ "$version" != "$own_version" ] || lintian $as_root --display-info --fail-on error,warning "$changes"
cp "$work/kerno_$version"[.-]*[!b] "$work/"*_"$version"-*.deb "$results"
ls -l "$results" | awk '/kerno/ { print $5, $9 }'
