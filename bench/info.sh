#!/usr/bin/env bash
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

seconds() {
  local start end
  start=$(date +%s.%N)
  "$@" > /dev/null 2>&1 || true
  end=$(date +%s.%N)
  awk -v a="$start" -v b="$end" 'BEGIN { print b - a }'
}

# Settings are read at each use; give the run a settings folder of its own.
export XDG_CONFIG_HOME="$work/config"
ours=$(seconds "$cli" info "${files[@]}")
exiftool=$(seconds exiftool -@ "$work/info-files.txt")

rate() { awk -v n="$count" -v s="$1" 'BEGIN { printf "%.0f", n / s }'; }
echo "files:             $count (${#images[@]} sample images, repeated)"
printf '%-18s %8.2f s  %9s files/s\n' "tessorin-cli info" "$ours" "$(rate "$ours")" \
  "exiftool" "$exiftool" "$(rate "$exiftool")"
echo "ours / exiftool:   $(awk -v a="$exiftool" -v b="$ours" 'BEGIN { printf "%.2f", a / b }')x  (goal: at least 20x)"
