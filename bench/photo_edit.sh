#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Writing speed of `tessorin-cli edit -o` beside `exiftool -o`: the same date and place set on
# the same photos (JPEG and HEIC samples copied to distinct names), each tool in one process.
# usage: bench/photo_edit.sh BUILD_DIR [FILES]
set -euo pipefail

build=$(cd "$1" && pwd)
count=${2:-500}
samples="$(cd "$(dirname "$0")/.." && pwd)/../shared/corpus"
[ -d "$samples" ] || { echo "sample media not found at $samples" >&2; exit 2; }
cli="$build/bin/tessorin-cli"
[ -x "$cli" ] || { echo "no $cli: build first" >&2; exit 2; }

mapfile -t jpegs < <(find "$samples/jpeg" -type f -iname '*.jpg' | sort)
mapfile -t heics < <(find "$samples/heif" -type f -iname '*.heic' | sort)
work="$build/bench/photo_edit"
rm -rf "$work"
mkdir -p "$work/src" "$work/ours" "$work/exiftool" "$work/config"
for ((i = 0; i < count; i++)); do
  if ((i % 2 == 0)); then f=${jpegs[$((i / 2 % ${#jpegs[@]}))]}; ext=jpg
  else f=${heics[$((i / 2 % ${#heics[@]}))]}; ext=heic; fi
  cp "$f" "$(printf '%s/src/photo_%04d.%s' "$work" "$i" "$ext")"
done
files=("$work"/src/*)
cat "${files[@]}" > /dev/null  # into the page cache, so both read from memory

source "$(dirname "$0")/measure.sh"
date="2021:06:01 12:00:00"
# Each run writes into an emptied folder: both tools make new files every time.
edit() {
  rm -rf "$1" && mkdir -p "$1"
  "$cli" edit --date "$date" --location "48.8584, 2.2945" "${files[@]}" -o "$1"
}
exiftool_edit() {
  rm -rf "$1" && mkdir -p "$1"
  exiftool -q -q -o "$1/" "-DateTimeOriginal=$date" \
    -GPSLatitude=48.8584 -GPSLatitudeRef=N -GPSLongitude=2.2945 -GPSLongitudeRef=E "${files[@]}"
}
runs=5
# The tool keeps recent dates and places in the settings: keep the bench's out of the user's.
export XDG_CONFIG_HOME="$work/config"
# The tools take turns run by run, so that a slow spell of the shared machine falls on each alike.
one="" ours="" et=""
for ((i = 0; i < runs; i++)); do
  one=$(faster "$one" "$(TESSORIN_WORKERS=1 measure edit "$work/ours1")")
  ours=$(faster "$ours" "$(measure edit "$work/ours")")
  et=$(faster "$et" "$(measure exiftool_edit "$work/exiftool")")
done
read -r one_wall one_cpu <<< "$one"
read -r ours_wall ours_cpu <<< "$ours"
read -r et_wall et_cpu <<< "$et"

written() { find "$1" -type f | wc -l; }
echo "files: $count (half JPEG, half HEIC; written: ours $(written "$work/ours"), exiftool $(written "$work/exiftool")); fastest of $runs runs each"
header
row "edit -o, 1 worker" "$one_wall" "$one_cpu"
row "edit -o, all workers" "$ours_wall" "$ours_cpu"
row "exiftool -o" "$et_wall" "$et_cpu"
ratios "edit / exiftool" "$et_wall" "$et_cpu" "$one_wall" "$one_cpu" "$ours_wall" 10
