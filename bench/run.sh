#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Reading speed of `tessorin-cli props` beside exiftool and exiv2, each in one process over the
# same list of files (the sample images, repeated): ours with one worker thread and with one per
# core. Then writing, movies, details and the library scan. Prints files per second and ratios.
# usage: bench/run.sh BUILD_DIR [MIN_FILES]
set -euo pipefail

build=$(cd "$1" && pwd)
min_files=${2:-2000}
samples="$(cd "$(dirname "$0")/.." && pwd)/../shared/corpus"
[ -d "$samples" ] || { echo "sample media not found at $samples" >&2; exit 2; }
cli="$build/bin/tessorin-cli"
[ -x "$cli" ] || { echo "no $cli: build first" >&2; exit 2; }
source "$(dirname "$0")/measure.sh"

mapfile -t images < <(find "$samples" -type f ! -path '*/video/*' ! -path '*/malformed/*' ! -name '*.md' | sort)
files=()
while [ ${#files[@]} -lt "$min_files" ]; do files+=("${images[@]}"); done
count=${#files[@]}
work="$build/bench"
mkdir -p "$work"
printf '%s\n' "${files[@]}" > "$work/files.txt"
cat "${images[@]}" > /dev/null  # into the page cache, so all three read from memory

runs=3
read -r one_wall one_cpu < <(TESSORIN_WORKERS=1 fastest $runs "$cli" props "${files[@]}")
read -r ours_wall ours_cpu < <(fastest $runs "$cli" props "${files[@]}")
read -r et_wall et_cpu < <(fastest $runs exiftool -j -n -@ "$work/files.txt")
read -r exiv2_wall exiv2_cpu < <(fastest $runs exiv2 -pa "${files[@]}")

echo "files: $count (${#images[@]} sample images, repeated); workers: $(nproc) cores; fastest of $runs runs each"
header
row "props, 1 worker" "$one_wall" "$one_cpu"
row "props, all workers" "$ours_wall" "$ours_cpu"
row "exiftool -j -n" "$et_wall" "$et_cpu"
row "exiv2 -pa" "$exiv2_wall" "$exiv2_cpu"
ratios "props / exiftool" "$et_wall" "$et_cpu" "$one_wall" "$one_cpu" "$ours_wall" 20
ratios "props / exiv2" "$exiv2_wall" "$exiv2_cpu" "$one_wall" "$one_cpu" "$ours_wall" 2

# Writing: a date and a place set on 500 JPEG and HEIC files, ours beside exiftool.
echo
bash "$(dirname "$0")/photo_edit.sh" "$build"

# Movies: the date of a 100 MB movie changed, ours beside exiftool and ffmpeg.
echo
bash "$(dirname "$0")/video_edit.sh" "$build"

# Details: every row of each file in words, ours beside exiftool's default output.
echo
bash "$(dirname "$0")/info.sh" "$build"

# The library's first scan of 2,000 files, with one worker and with all.
if [ -x "$build/bin/library_bench" ]; then
  echo
  TESSORIN_WORKERS=1 "$build/bin/library_bench" "$samples" 2000 --no-exiftool | head -3
  "$build/bin/library_bench" "$samples" 2000 | head -4
fi

# The files album: a photo's rows after choosing it, and grid thumbnails.
echo
bash "$(dirname "$0")/albums.sh" "$build"

# The library's album: 10,000 items to the first screen of thumbnails, cold and warm cache.
echo
bash "$(dirname "$0")/library_screens.sh" "$build"
