#!/bin/sh
# Installs the Debian packages that building, running and testing need; with "windows" also those for
# building and testing the Windows programs. Does nothing when all are there.
set -e
packages="g++ clang libclang-rt-14-dev cmake ninja-build ccache pkg-config
 qt6-base-dev xvfb xdotool unrtf
 libfreetype-dev libfontconfig-dev libharfbuzz-dev libcli11-dev libagg-dev libpolyclipping-dev
 fonts-dejavu-core fonts-dejavu-extra fonts-ipafont fonts-tlwg-mono-otf fonts-liberation fonts-inter
 libcurl4-openssl-dev libcurl4 ca-certificates openssl curl chromium chromium-driver tidy
 libgtest-dev libgmock-dev libbenchmark-dev nlohmann-json3-dev libicu72
 libxml2-utils assimp-utils
 python3 python3-ezdxf python3-fonttools python3-shapely python3-numpy imagemagick file emf2svg librsvg2-bin icoutils"

if [ "$1" = windows ]; then
  packages="$packages g++-mingw-w64-x86-64-posix binutils-mingw-w64-x86-64 mingw-w64-x86-64-dev googletest
 wine64 wine locales xvfb zip imagemagick"
fi

missing=""
for package in $packages; do
  case "$(dpkg-query -W -f '${Status}' "$package" 2>/dev/null)" in
    "install ok installed") ;;
    *) missing="$missing $package" ;;
  esac
done
[ -n "$missing" ] || exit 0

echo "installing:$missing"
as_root=""
if [ "$(id -u)" != 0 ]; then
  command -v sudo >/dev/null || { echo "setup: run as root, or install sudo" >&2; exit 1; }
  as_root="sudo"
fi
$as_root apt-get update -q
$as_root env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends \
  -o DPkg::Lock::Timeout=600 $missing
