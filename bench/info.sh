#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Speed of `tessorin-cli info` (every row of the details, words and all) beside exiftool's
# default human-readable output, each in one process over the same files.
# usage: bench/info.sh BUILD_DIR [MIN_FILES]
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
printf '%s\n' "${files[@]}" > "$work/info-files.txt"
cat "${images[@]}" > /dev/null

source "$(dirname "$0")/measure.sh"
# Settings are read at each use; give the run a settings folder of its own.
export XDG_CONFIG_HOME="$work/config"
runs=3
read -r one_wall one_cpu < <(TESSORIN_WORKERS=1 fastest $runs "$cli" info "${files[@]}")
read -r ours_wall ours_cpu < <(fastest $runs "$cli" info "${files[@]}")
read -r et_wall et_cpu < <(fastest $runs exiftool -@ "$work/info-files.txt")

echo "files: $count (${#images[@]} sample images, repeated); fastest of $runs runs each"
header
row "info, 1 worker" "$one_wall" "$one_cpu"
row "info, all workers" "$ours_wall" "$ours_cpu"
row "exiftool" "$et_wall" "$et_cpu"
ratios "info / exiftool" "$et_wall" "$et_cpu" "$one_wall" "$one_cpu" "$ours_wall" 20
