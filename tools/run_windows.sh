#!/bin/sh
# Runs a Windows program under Wine: tools/run_windows.sh PROGRAM [ARGUMENT...]. The prefix is the
# build's own (KERNO_WINEPREFIX, else build/windows/wineprefix), made at the first use, in a Japanese
# locale when the machine has one or can make one.
set -e
root=$(cd "$(dirname "$0")/.." && pwd)
wine=""
for candidate in /usr/lib/wine/wine64 /usr/lib/x86_64-linux-gnu/wine/wine64; do
  [ -x "$candidate" ] && wine=$candidate && break
done
[ -n "$wine" ] || wine=$(command -v wine64 || command -v wine) ||
  { echo "run_windows: Wine is not installed (tools/setup.sh windows)" >&2; exit 1; }

WINEPREFIX=${KERNO_WINEPREFIX:-$root/build/windows/wineprefix}
WINEDEBUG=-all,err+virtual,err+module,err+process,err+server,err+seh
WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe="
export WINEPREFIX WINEDEBUG WINEDLLOVERRIDES

# The locale lies beside the prefix, so that no right to install it is needed.
locales=$(dirname "$WINEPREFIX")/locales
mkdir -p "$locales"
if [ ! -d "$locales/ja_JP.utf8" ]; then
  localedef -i ja_JP -f UTF-8 "$locales/ja_JP.utf8" >/dev/null 2>&1 || true
fi
if [ -d "$locales/ja_JP.utf8" ]; then
  LOCPATH=$locales
  LANG=ja_JP.UTF-8
  LC_ALL=ja_JP.UTF-8
  export LOCPATH LANG LC_ALL
fi

server=$(dirname "$wine")/wineserver64
[ -x "$server" ] || server=$(dirname "$wine")/wineserver
[ -x "$server" ] || server=$(command -v wineserver || echo :)

# Wine's heap starts at a random place above the loader. Now and then (more often, the larger the
# heap) it lies over 0x7ffe0000, where Windows programs expect the system's shared data, and Wine
# ends with 1 before the program starts. Without random places, and without wishes for a larger heap,
# it lies well below.
unset GLIBC_TUNABLES MALLOC_TOP_PAD_
fixed="setarch $(uname -m) -R"
$fixed true >/dev/null 2>&1 || fixed=""  # some containers forbid it

# The server's place follows TMPDIR: whoever changes that gets a second server over the same prefix.
# Starting the server costs a second: it stays for a while, so that the next program finds it. The
# while is longer than any pause of the tests, for who connects to a server that is about to end is
# turned away. Wine's own processes start here, away from our output: whoever reads that would wait
# for them, too.
runs() {
  [ -f "$WINEPREFIX/ready" ] && "$server" -k0 >/dev/null 2>&1
}
start() {
  "$server" -p600 >/dev/null 2>&1 9>&- || true  # an old one may still be ending
  $fixed "$wine" cmd /c exit </dev/null >"$WINEPREFIX.log" 2>&1 9>&-
}
if ! runs; then
  mkdir -p "$WINEPREFIX"
  exec 9>"$WINEPREFIX.lock"
  flock 9
  if ! runs; then
    tries=1
    until start; do
      if [ "$tries" -ge 3 ]; then
        echo "run_windows: Wine did not start in $WINEPREFIX:" >&2
        cat "$WINEPREFIX.log" >&2
        exit 1
      fi
      tries=$((tries + 1))
      sleep 2
    done
    touch "$WINEPREFIX/ready"
  fi
  exec 9>&-
fi
exec $fixed "$wine" "$@"
