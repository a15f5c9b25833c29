#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# The photo library over 10,000 files from the sample media (or FILES, 100000 for a large
# library), beside exiftool -fast2 -j -r unless --no-exiftool.
# usage: bench/library.sh BUILD_DIR [FILES] [--no-exiftool]
set -euo pipefail
build=$(cd "$1" && pwd)
samples="$(cd "$(dirname "$0")/.." && pwd)/../shared/corpus"
[ -d "$samples" ] || { echo "sample media not found at $samples" >&2; exit 2; }
"$build/bin/library_bench" "$samples" "${2:-10000}" ${3:+"$3"}
