#!/usr/bin/env bash
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

# "WALL CPU" seconds of a command, CPU being user plus system time: on a shared machine the
# wall clock also counts other people's work.
measure() {
  local TIMEFORMAT='%R %U %S' t
  t=$({ time "$@" > /dev/null 2>&1; } 2>&1) || true
  awk '{ print $1, $2 + $3 }' <<< "$t"
}

date="2021:06:01 12:00:00"
# The tool keeps recent dates and places in the settings: keep the bench's out of the user's.
read -r ours_wall ours_cpu < <(XDG_CONFIG_HOME="$work/config" measure "$cli" edit --date "$date" \
  --location "48.8584, 2.2945" "${files[@]}" -o "$work/ours")
read -r et_wall et_cpu < <(measure exiftool -q -q -o "$work/exiftool/" "-DateTimeOriginal=$date" \
  -GPSLatitude=48.8584 -GPSLatitudeRef=N -GPSLongitude=2.2945 -GPSLongitudeRef=E "${files[@]}")

written() { find "$1" -type f | wc -l; }
rate() { awk -v n="$count" -v s="$1" 'BEGIN { printf "%.0f", n / s }'; }
ratio() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.2f", a / b }'; }
echo "files: $count (half JPEG, half HEIC; written: ours $(written "$work/ours"), exiftool $(written "$work/exiftool"))"
printf '%-22s %8s %8s %12s %12s\n' "" "wall s" "CPU s" "files/s" "files/CPU s"
for row in "tessorin-cli edit -o:$ours_wall:$ours_cpu" "exiftool -o:$et_wall:$et_cpu"; do
  IFS=: read -r name wall cpu <<< "$row"
  printf '%-22s %8.2f %8.2f %12s %12s\n' "$name" "$wall" "$cpu" "$(rate "$wall")" "$(rate "$cpu")"
done
echo "ours / exiftool: $(ratio "$et_wall" "$ours_wall")x wall, $(ratio "$et_cpu" "$ours_cpu")x CPU (goal: at least 10x)"
