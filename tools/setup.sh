#!/bin/sh
# Installs the Debian packages that building, running and testing need, and those of the groups that are named:
# tools/setup.sh [windows] [packages] [programs] [desktop]
#   windows   to build and test the Windows programs
#   packages  to make and try what users install
#   programs  large programs that open our drawings
#   desktop   what stands around a window: an input method, a print server, assistive technology
# Does nothing when all are there. The tests see the faces of the font packages alone: tests/fonts.conf names them.
set -e
packages="g++ clang libclang-rt-14-dev cmake ninja-build ccache pkg-config
 qt6-base-dev qt6-gtk-platformtheme qt6-translations-l10n xvfb xdotool unrtf
 libfreetype-dev libfontconfig-dev libharfbuzz-dev libharfbuzz-bin libfribidi-dev libfribidi-bin
 libcli11-dev libagg-dev libpolyclipping-dev
 fonts-dejavu-core fonts-dejavu-extra fonts-ipafont fonts-vlgothic fonts-tlwg-mono-otf fonts-liberation
 fonts-inter fonts-inter-variable fonts-cantarell fonts-crosextra-caladea fonts-dancingscript fonts-kaushanscript
 fonts-lobstertwo fonts-lohit-deva fonts-gargi fonts-khmeros unicode-data
 hershey-fonts-data librecad-data
 libcurl4-openssl-dev libcurl4 ca-certificates openssl curl chromium tidy
 libgtest-dev libgmock-dev libbenchmark-dev nlohmann-json3-dev libicu72
 libexpat1-dev libxml2-utils assimp-utils
 python3 python3-ezdxf python3-fonttools python3-shapely python3-numpy python3-mypy imagemagick file emf2svg librsvg2-bin icoutils
 hp2xx qpdf poppler-utils parallel git xz-utils
 man-db mandoc desktop-file-utils appstream shared-mime-info libglib2.0-bin bash-completion zsh fish"

sources=""
for group in "$@"; do
  case $group in
    windows)
      packages="$packages g++-mingw-w64-x86-64-posix binutils-mingw-w64-x86-64 mingw-w64-x86-64-dev googletest
 wine64 wine locales xvfb zip imagemagick dpkg-dev"
      sources="libpolyclipping harfbuzz fribidi"
      ;;
    packages)
      packages="$packages dpkg-dev debhelper dh-python fakeroot lintian debootstrap nsis osslsigncode lld"
      ;;
    programs)
      packages="$packages inkscape python3-lxml python3-cssselect freecad-python3 librecad openscad"
      ;;
    desktop)
      packages="$packages dbus-daemon openbox x11-utils ibus ibus-kkc at-spi2-core python3-gi gir1.2-atspi-2.0
 gir1.2-gtk-3.0 cups-daemon cups-client poppler-utils imagemagick xvfb xdotool"
      ;;
    *)
      echo "setup: no group \"$group\": windows, packages, programs, desktop" >&2
      exit 2
      ;;
  esac
done
source_cache="${XDG_CACHE_HOME:-$HOME/.cache}/kerno-sources"

as_root=""
become_root() {
  [ "$(id -u)" = 0 ] && return
  command -v sudo >/dev/null || { echo "setup: run as root, or install sudo" >&2; exit 1; }
  as_root="sudo"
}

# source_package NAME unpacks a Debian source package into the cache folder, once. It has package lists
# of its own, made from the machine's, which stay as they are.
source_package() {
  [ -d "$source_cache/$1" ] && return
  echo "fetching the source of $1"
  lists="$source_cache/apt"
  mkdir -p "$lists/lists/partial" "$lists/archives/partial" "$lists/unpacked"
  keys=/usr/share/keyrings/debian-archive-keyring.gpg
  . /etc/os-release
  mirror=$(apt-get indextargets --format '$(SITE)' "Codename: $VERSION_CODENAME" | head -n 1)
  echo "deb-src [signed-by=$keys] $mirror $VERSION_CODENAME main" > "$lists/sources.list"
  own="-q -o Dir::Etc::SourceList=$lists/sources.list -o Dir::Etc::SourceParts=/dev/null
 -o Dir::State::Lists=$lists/lists -o Dir::Cache=$lists -o APT::Sandbox::User="
  rm -rf "$lists/unpacked"
  mkdir "$lists/unpacked"
  apt-get $own update
  (cd "$lists/unpacked" && apt-get $own source "$1")
  mv "$lists/unpacked"/*/ "$source_cache/$1"
}

missing=""
for package in $packages; do
  case "$(dpkg-query -W -f '${Status}' "$package" 2>/dev/null)" in
    "install ok installed") ;;
    *) missing="$missing $package" ;;
  esac
done
if [ -n "$missing" ]; then
  echo "installing:$missing"
  become_root
  $as_root apt-get update -q
  $as_root env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends \
    -o DPkg::Lock::Timeout=600 $missing
fi
for package in $sources; do
  source_package "$package"
done
