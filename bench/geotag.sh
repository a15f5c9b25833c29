#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Geotagging speed of `tessorin-cli edit --geotag` beside `exiftool -geotag`: 500 photos taken one
# a minute (copies of a camera JPEG with their own capture times) placed on a 10,000-point GPX
# track, one point a second, each tool in one process. Also checks that both placed every photo.
# usage: bench/geotag.sh BUILD_DIR [PHOTOS] [POINTS]
set -euo pipefail

build=$(cd "$1" && pwd)
count=${2:-500}
points=${3:-10000}
samples="$(cd "$(dirname "$0")/.." && pwd)/../shared/corpus"
[ -f "$samples/jpeg/Canon_40D.jpg" ] || { echo "sample media not found at $samples" >&2; exit 2; }
cli="$build/bin/tessorin-cli"
[ -x "$cli" ] || { echo "no $cli: build first" >&2; exit 2; }

work="$build/bench/geotag"
rm -rf "$work"
mkdir -p "$work/src" "$work/ours" "$work/exiftool" "$work/config"
# Camera clocks are read as UTC by both tools.
export TZ=UTC

python3 - "$work/track.gpx" "$points" <<'PY'
import sys, datetime
path, n = sys.argv[1], int(sys.argv[2])
start = datetime.datetime(2024, 5, 1, 8, 0, 0)
with open(path, "w") as f:
    f.write('<?xml version="1.0"?>\n<gpx version="1.1" xmlns="http://www.topografix.com/GPX/1/1"><trk><trkseg>\n')
    for i in range(n):
        t = (start + datetime.timedelta(seconds=i)).strftime("%Y-%m-%dT%H:%M:%SZ")
        f.write(f'<trkpt lat="{45 + i * 1e-5:.7f}" lon="{9 + i * 2e-5:.7f}"><ele>{100 + i % 50}</ele><time>{t}</time></trkpt>\n')
    f.write("</trkseg></trk></gpx>\n")
PY
cp "$samples/jpeg/Canon_40D.jpg" "$work/template.jpg"
# Photos spread over the track; the copies get their capture times from exiftool, once.
span=$((points * 9 / 10))
for ((i = 0; i < count; i++)); do
  s=$((i * span / count + 3))
  printf -v name '%s/src/photo_%04d.jpg' "$work" "$i"
  cp "$work/template.jpg" "$name"
  echo "-overwrite_original"
  echo "-DateTimeOriginal=$(date -u -d "2024-05-01 08:00:00 UTC + $s seconds" '+%Y:%m:%d %H:%M:%S')"
  echo "$name"
  echo "-execute"
done > "$work/args"
exiftool -q -q -@ "$work/args" > /dev/null
files=("$work"/src/*)
cat "${files[@]}" "$work/track.gpx" > /dev/null

measure() {
  local TIMEFORMAT='%R %U %S' t
  t=$({ time "$@" > /dev/null 2>&1; } 2>&1) || true
  awk '{ print $1, $2 + $3 }' <<< "$t"
}

read -r ours_wall ours_cpu < <(XDG_CONFIG_HOME="$work/config" measure "$cli" edit --geotag "$work/track.gpx" \
  "${files[@]}" -o "$work/ours")
read -r et_wall et_cpu < <(measure exiftool -q -q -o "$work/exiftool/" "-geotag=$work/track.gpx" "${files[@]}")

placed() { exiftool -q -q -if '$GPSLatitude' -p '$FileName' "$1" 2> /dev/null | wc -l; }
rate() { awk -v n="$count" -v s="$1" 'BEGIN { printf "%.0f", n / s }'; }
ratio() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.2f", a / b }'; }
echo "photos: $count on a track of $points points (placed: ours $(placed "$work/ours"), exiftool $(placed "$work/exiftool"))"
printf '%-26s %8s %8s %12s %12s\n' "" "wall s" "CPU s" "photos/s" "photos/CPU s"
for row in "tessorin-cli edit --geotag:$ours_wall:$ours_cpu" "exiftool -geotag:$et_wall:$et_cpu"; do
  IFS=: read -r name wall cpu <<< "$row"
  printf '%-26s %8.2f %8.2f %12s %12s\n' "$name" "$wall" "$cpu" "$(rate "$wall")" "$(rate "$cpu")"
done
echo "ours / exiftool: $(ratio "$et_wall" "$ours_wall")x wall, $(ratio "$et_cpu" "$ours_cpu")x CPU (goal: at least 10x)"
