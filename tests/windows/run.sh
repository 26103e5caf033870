#!/usr/bin/env bash
# run.sh <loader> <folder>: runs the folder's LibraryTest.exe under Wine, by its loader for 64 bits ("wine64")
# or for 32 bits ("wine"). Ends with 77 where this machine cannot run such programs, and says why.
set -uo pipefail
loader=$1
folder=$2

skip() {
  echo "Skipped: $1"
  exit 77
}

# Debian keeps the loaders off the path.
wine=/usr/lib/wine/$loader
[[ -x $wine ]] || wine=$(command -v "$loader") || skip "$loader is not installed"

export WINEPREFIX=$folder/wine WINEDEBUG=-all
# No box that offers to download anything, no entries in the user's menus.
export WINEDLLOVERRIDES='mscoree,mshtml=;winemenubuilder.exe=d'
unset DISPLAY WAYLAND_DISPLAY

run() { (cd "$folder" && timeout 90 "$wine" "$@" </dev/null 2>&1 | tr -d '\r'); }
runs() { [[ $(run Alive.exe) == *alive* ]]; }
stop() { "$(dirname "$wine")/wineserver" -k 2>/dev/null; }
trap stop EXIT

# Wine fills a new folder with 700 MB of copies, which no program here needs. Told that it is busy with
# that already, it takes its libraries from where they are.
mkdir -p "$WINEPREFIX"
echo disable >"$WINEPREFIX/.update-timestamp"
export WINEBOOTSTRAPMODE=1
if ! runs; then
  # Another release of Wine may insist.
  stop
  rm -rf "$WINEPREFIX"
  unset WINEBOOTSTRAPMODE
  if ! runs; then
    stop
    rm -rf "$WINEPREFIX"
    skip "$wine runs no program here"
  fi
fi

output=$(run LibraryTest.exe)
code=$?
echo "$output"
if ((code != 0)) || ! grep -qE '^[1-9][0-9]* checks, all passed$' <<<"$output"; then
  echo "Failed: ended with $code"
  exit 1
fi
