#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Runs one libFuzzer target for a given time on a work corpus seeded with the sample images.
# usage: run-fuzz.sh BUILD_DIR TARGET SECONDS
# The work corpus and every crash, hang or out-of-memory input stay in BUILD_DIR/fuzz-TARGET/.
# Exits non-zero when this run found any.
set -euo pipefail

if [ $# -ne 3 ]; then
  echo "usage: $0 BUILD_DIR TARGET SECONDS" >&2
  exit 2
fi
build=$(cd "$1" && pwd)
target=$2
seconds=$3
samples="$(cd "$(dirname "$0")/.." && pwd)/../shared/corpus"
if [ ! -d "$samples" ]; then
  echo "sample media not found at $samples" >&2
  exit 2
fi

work="$build/fuzz-$target"
corpus="$work/corpus"
artifacts="$work/artifacts"
mkdir -p "$corpus" "$artifacts"

# Seeds: the target's own seed folder when it has one (fuzz/seeds/TARGET), otherwise every still
# image of the samples, malformed ones included; movies are refused at the first bytes, so they
# teach the image reader nothing. Named by content, so reruns add no duplicates.
seeds="$(cd "$(dirname "$0")/.." && pwd)/fuzz/seeds/$target"
if [ -d "$seeds" ]; then seed_find=(find "$seeds" -type f -print0)
else seed_find=(find "$samples" -type f ! -path '*/video/*' ! -name '*.md' -print0); fi
[[ $target == fuzz_movie_* ]] && seed_find=(true)
"${seed_find[@]}" |
  while IFS= read -r -d '' f; do
    cp "$f" "$corpus/$(sha1sum "$f" | cut -c1-40)"
  done

# The movie targets start, instead, from the sample movies and from remuxes of them that FFmpeg writes with
# other layouts (header first, fragments, user data, iTunes and 3GPP items). The writer's inputs
# begin with two bytes of wishes (see fuzz_movie_writer.cpp).
if [[ $target == fuzz_movie_* ]]; then
  made="$work/made"
  mkdir -p "$made"
  src="$samples/video/apple_meta.mov"
  remux() { ffmpeg -v error -y -i "$src" -map 0 -c copy "$@" < /dev/null || true; }
  remux -movflags faststart "$made/faststart.mov"
  remux -movflags frag_keyframe+empty_moov+use_metadata_tags "$made/fragmented.mp4"
  remux -metadata title=T -metadata artist=A -metadata comment=C -f mp4 "$made/itunes.mp4"
  remux -metadata title=T -metadata copyright=C -metadata location=+10.0000+020.0000/ -f mov "$made/userdata.mov"
  remux -metadata title=T -metadata author=A -f 3gp "$made/3gpp.3gp"
  find "$samples/video" "$made" -type f -print0 |
    while IFS= read -r -d '' f; do
      if [ "$target" = fuzz_movie_writer ]; then
        for wishes in '\x00\x00' '\x18\x00' '\x3a\x50' '\x41\x00' '\x26\xff'; do
          { printf "$wishes"; cat "$f"; } > "$work/seed"
          cp "$work/seed" "$corpus/$(sha1sum "$work/seed" | cut -c1-40)"
        done
      else
        cp "$f" "$corpus/$(sha1sum "$f" | cut -c1-40)"
      fi
    done
fi

stamp="$work/.started"
touch "$stamp"
# A forked worker per input batch lets the run go on after a finding, so one run collects all
# of them; the parent stops after SECONDS.
UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1 \
  "$build/bin/$target" "$corpus" \
    -fork=1 -ignore_crashes=1 -ignore_timeouts=1 -ignore_ooms=1 \
    -max_total_time="$seconds" -rss_limit_mb=2048 -timeout=10 -print_funcs=0 \
    -artifact_prefix="$artifacts/" 2>&1 | tee "$work/last-run.log" || true

found=$(find "$artifacts" -type f -newer "$stamp" | sort)
if [ -n "$found" ]; then
  echo "fuzzing found inputs that crash, hang or exhaust memory:" >&2
  echo "$found" >&2
  exit 1
fi
echo "no crashes in $seconds s of fuzzing"
