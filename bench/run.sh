#!/usr/bin/env bash
# Reading speed of `tessorin-cli props` beside exiftool and exiv2, each in one process over the
# same list of files (the sample images, repeated). Prints files per second and our ratios.
# usage: bench/run.sh BUILD_DIR [MIN_FILES]
set -euo pipefail

build=$(cd "$1" && pwd)
min_files=${2:-2000}
samples="$(cd "$(dirname "$0")/.." && pwd)/../shared/corpus"
[ -d "$samples" ] || { echo "sample media not found at $samples" >&2; exit 2; }
cli="$build/bin/tessorin-cli"
[ -x "$cli" ] || { echo "no $cli: build first" >&2; exit 2; }

mapfile -t images < <(find "$samples" -type f ! -path '*/video/*' ! -path '*/malformed/*' ! -name '*.md' | sort)
files=()
while [ ${#files[@]} -lt "$min_files" ]; do files+=("${images[@]}"); done
count=${#files[@]}
work="$build/bench"
mkdir -p "$work"
printf '%s\n' "${files[@]}" > "$work/files.txt"
cat "${images[@]}" > /dev/null  # into the page cache, so all three read from memory

# "WALL CPU" seconds of a command, CPU being user plus system time: on a shared machine the
# wall clock also counts other people's work. Its output and exit status are not the point.
measure() {
  local TIMEFORMAT='%R %U %S' t
  t=$({ time "$@" > /dev/null 2>&1; } 2>&1) || true
  awk '{ print $1, $2 + $3 }' <<< "$t"
}

read -r ours_wall ours_cpu < <(measure "$cli" props "${files[@]}")
read -r et_wall et_cpu < <(measure exiftool -j -n -@ "$work/files.txt")
read -r exiv2_wall exiv2_cpu < <(measure exiv2 -pa "${files[@]}")

rate() { awk -v n="$count" -v s="$1" 'BEGIN { printf "%.0f", n / s }'; }
ratio() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.2f", a / b }'; }
echo "files: $count (${#images[@]} sample images, repeated)"
printf '%-20s %8s %8s %12s %12s\n' "" "wall s" "CPU s" "files/s" "files/CPU s"
for row in "tessorin-cli props:$ours_wall:$ours_cpu" "exiftool -j -n:$et_wall:$et_cpu" "exiv2 -pa:$exiv2_wall:$exiv2_cpu"; do
  IFS=: read -r name wall cpu <<< "$row"
  printf '%-20s %8.2f %8.2f %12s %12s\n' "$name" "$wall" "$cpu" "$(rate "$wall")" "$(rate "$cpu")"
done
echo "ours / exiftool: $(ratio "$et_wall" "$ours_wall")x wall, $(ratio "$et_cpu" "$ours_cpu")x CPU (goal: at least 20x)"
echo "ours / exiv2:    $(ratio "$exiv2_wall" "$ours_wall")x wall, $(ratio "$exiv2_cpu" "$ours_cpu")x CPU (goal: at least 1x)"

# Writing: a date and a place set on 500 JPEG and HEIC files, ours beside exiftool.
echo
bash "$(dirname "$0")/photo_edit.sh" "$build"

# Movies: the date of a 100 MB movie changed, ours beside exiftool and ffmpeg.
echo
bash "$(dirname "$0")/video_edit.sh" "$build"

# Details: every row of each file in words, ours beside exiftool's default output.
echo
bash "$(dirname "$0")/info.sh" "$build"

# The files album: a photo's rows after choosing it, and grid thumbnails.
echo
bash "$(dirname "$0")/albums.sh" "$build"

# The library's album: 10,000 items to the first screen of thumbnails, cold and warm cache.
echo
bash "$(dirname "$0")/library_screens.sh" "$build"
