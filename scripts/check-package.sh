#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Installs the Debian package as a user would, with apt-get (which brings its dependencies), runs
# what it put in /usr/bin, validates its launcher entry and metainfo, removes it and checks that
# nothing of it is left. Needs root; CI runs it after `make package`.
# Usage: scripts/check-package.sh DEB [BUILD_DIR] [CORPUS]
set -euo pipefail
deb=$(realpath "$1")
build=$(realpath "${2:-build}")
corpus=$(realpath "${3:-$(dirname "$0")/../../shared/corpus}")
photo="$corpus/jpeg/gps/DSCN0010.jpg"
movie="$corpus/video/small_video.mp4"
for f in "$photo" "$movie"; do [ -f "$f" ] || { echo "missing sample: $f" >&2; exit 1; }; done

SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi
if dpkg-query -W -f='${Status}' tessorin 2> /dev/null | grep -q 'ok installed'; then
  echo "tessorin is installed already: remove it first" >&2
  exit 1
fi

# Installing and removing run nothing of ours: the control part holds no maintainer script.
control=$(dpkg-deb --ctrl-tarfile "$deb" | tar -t | grep -v '^\./$' | sort | tr '\n' ' ')
if [ "$control" != "./control ./md5sums " ]; then
  echo "the package's control part holds more than control and md5sums: $control" >&2
  exit 1
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
echo "== apt-get install $deb"
DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq "$deb" < /dev/null
dpkg-query -L tessorin | sort > "$work/files"

# The programs run with a home of their own, so that the machine's user gains no library index,
# settings or caches.
mkdir -p "$work/home"
run() { env HOME="$work/home" XDG_CONFIG_HOME="$work/home/.config" XDG_DATA_HOME="$work/home/.local/share" \
          XDG_CACHE_HOME="$work/home/.cache" QT_QPA_PLATFORM=offscreen QT_QUICK_BACKEND=software "$@" < /dev/null; }

echo "== /usr/bin/tessorin-cli --version"
run /usr/bin/tessorin-cli --version | tee "$work/version"
grep -q '^FFmpeg .*libavformat' "$work/version" || { echo "the installed tool finds no FFmpeg module" >&2; exit 1; }
run /usr/bin/tessorin-cli --credits > /dev/null

# The installed tool reads a photo (its place from the installed place data) and a movie (through
# the FFmpeg module in /usr/lib/tessorin/modules) as the tested build does.
for f in "$photo" "$movie"; do
  echo "== /usr/bin/tessorin-cli info $f"
  run /usr/bin/tessorin-cli info "$f" | tee "$work/installed"
  run "$build/bin/tessorin-cli" info "$f" > "$work/built"
  diff -u "$work/built" "$work/installed"
done

echo "== /usr/bin/tessorin --screenshots (offscreen)"
run /usr/bin/tessorin --screenshots "$work/screenshots" "$photo" > "$work/app.log" 2>&1 || { cat "$work/app.log"; exit 1; }
shots=$(find "$work/screenshots" -name '*.png' | wc -l)
echo "$shots screenshots"
[ "$shots" -gt 0 ]

echo "== launcher entry, metainfo, manual pages"
desktop-file-validate /usr/share/applications/org.tessorin.Tessorin.desktop
appstreamcli validate --pedantic --no-net /usr/share/metainfo/org.tessorin.Tessorin.metainfo.xml
man -w tessorin tessorin-cli

echo "== apt-get remove tessorin"
DEBIAN_FRONTEND=noninteractive $SUDO apt-get remove -y -qq tessorin < /dev/null
left=0
while IFS= read -r path; do
  [ -e "$path" ] || [ -L "$path" ] || continue
  # A folder stays when another package has files in it (/usr/bin, the icon theme's folders).
  if [ -d "$path" ] && dpkg-query -S "$path" > /dev/null 2>&1; then continue; fi
  echo "left behind: $path" >&2
  left=1
done < "$work/files"
[ "$left" -eq 0 ]
echo "The package installs, runs and removes cleanly."
