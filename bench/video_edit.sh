#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Changing the date of a movie of about 100 MB: `tessorin-cli edit -o` beside `exiftool -o` and
# `ffmpeg -c copy` with the new date, each writing a new file next to the movie. The movie is
# made here with FFmpeg (1080p H.264 and AAC, QuickTime tags like a phone's), once, in the build
# folder; two layouts are timed: header after the media (as cameras write) and header first
# (as "fast start" writes, where the chunk offsets have to move).
# usage: bench/video_edit.sh BUILD_DIR [RUNS]
set -euo pipefail

build=$(cd "$1" && pwd)
runs=${2:-3}
cli="$build/bin/tessorin-cli"
[ -x "$cli" ] || { echo "no $cli: build first" >&2; exit 2; }
work="$build/bench/video"
mkdir -p "$work"

movie="$work/movie.mov"
if [ ! -s "$movie" ]; then
  echo "making a movie of about 100 MB (once)..."
  ffmpeg -v error -y -f lavfi -i "testsrc2=size=1920x1080:rate=30" -f lavfi -i "sine=frequency=440:sample_rate=48000" \
    -t 60 -c:v libx264 -preset ultrafast -b:v 13M -maxrate 13M -bufsize 26M -c:a aac -b:a 128k \
    -metadata "com.apple.quicktime.make=Apple" -metadata "com.apple.quicktime.model=iPhone 15" \
    -metadata "com.apple.quicktime.creationdate=2023-05-14T10:20:30+0200" \
    -metadata "com.apple.quicktime.location.ISO6709=+45.4640+009.1900+120.000/" \
    -movflags use_metadata_tags "$movie" < /dev/null
fi
faststart="$work/movie-faststart.mov"
[ -s "$faststart" ] || ffmpeg -v error -y -i "$movie" -map 0 -c copy -movflags use_metadata_tags+faststart "$faststart" < /dev/null

date="2024:01:02 03:04:05"
iso="2024-01-02T03:04:05Z"

# "WALL CPU" seconds of a command, CPU being user plus system time of it and its children.
measure() {
  local TIMEFORMAT='%R %U %S' t
  t=$({ time "$@" > /dev/null 2>&1; } 2>&1) || true
  awk '{ print $1, $2 + $3 }' <<< "$t"
}

# The best of RUNS runs (least disturbed by other work on the machine), each into a clean folder.
best() {
  local name=$1; shift
  local best_wall="" best_cpu="" wall cpu
  for _ in $(seq "$runs"); do
    rm -rf "$work/out" && mkdir -p "$work/out"
    read -r wall cpu < <(measure "$@")
    [ -n "$(ls -A "$work/out")" ] || { echo "$name wrote nothing" >&2; exit 1; }
    if [ -z "$best_wall" ] || awk -v a="$wall" -v b="$best_wall" 'BEGIN { exit !(a < b) }'; then
      best_wall=$wall best_cpu=$cpu
    fi
  done
  echo "$best_wall $best_cpu"
}

ratio() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.1f", a / b }'; }

for input in "$movie" "$faststart"; do
  cat "$input" > /dev/null  # into the page cache, so all three read from memory
  size=$(stat -c %s "$input")
  read -r ours_wall ours_cpu < <(best ours "$cli" edit --date "$date" "$input" -o "$work/out")
  read -r et_wall et_cpu < <(best exiftool exiftool -o "$work/out/et.mov" "-Keys:CreationDate=$date" "$input")
  read -r ff_wall ff_cpu < <(best ffmpeg ffmpeg -v error -y -i "$input" -map 0 -c copy -movflags use_metadata_tags \
    -metadata "com.apple.quicktime.creationdate=$iso" "$work/out/ff.mov")
  rm -rf "$work/out"
  echo "$(basename "$input"): $(awk -v s="$size" 'BEGIN { printf "%.0f", s / 1e6 }') MB, best of $runs"
  printf '  %-28s %8s %8s\n' "" "wall s" "CPU s"
  printf '  %-28s %8.3f %8.3f\n' "tessorin-cli edit -o" "$ours_wall" "$ours_cpu" "exiftool -o" "$et_wall" "$et_cpu" \
    "ffmpeg -c copy" "$ff_wall" "$ff_cpu"
  echo "  ours / exiftool: $(ratio "$et_wall" "$ours_wall")x wall, $(ratio "$et_cpu" "$ours_cpu")x CPU"
  echo "  ours / ffmpeg:   $(ratio "$ff_wall" "$ours_wall")x wall, $(ratio "$ff_cpu" "$ours_cpu")x CPU (goal: faster than both)"
done
