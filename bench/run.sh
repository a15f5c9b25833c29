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

# Seconds that a command takes; its output and exit status are not the point here.
seconds() {
  local start end
  start=$(date +%s.%N)
  "$@" > /dev/null 2>&1 || true
  end=$(date +%s.%N)
  awk -v a="$start" -v b="$end" 'BEGIN { print b - a }'
}

ours=$(seconds "$cli" props "${files[@]}")
exiftool=$(seconds exiftool -j -n -@ "$work/files.txt")
exiv2=$(seconds exiv2 -pa "${files[@]}")

rate() { awk -v n="$count" -v s="$1" 'BEGIN { printf "%.0f", n / s }'; }
ratio() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.2f", a / b }'; }
echo "files:             $count (${#images[@]} sample images, repeated)"
printf '%-18s %8.2f s  %9s files/s\n' "tessorin-cli props" "$ours" "$(rate "$ours")" \
  "exiftool -j -n" "$exiftool" "$(rate "$exiftool")" "exiv2 -pa" "$exiv2" "$(rate "$exiv2")"
echo "ours / exiftool:   $(ratio "$exiftool" "$ours")x  (goal: at least 20x)"
echo "ours / exiv2:      $(ratio "$exiv2" "$ours")x  (goal: at least 1x)"
