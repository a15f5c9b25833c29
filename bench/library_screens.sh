#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# An album of 10,000 library items (or FILES, 100000 for a large library) opened in the grid, to
# its first screen of thumbnails, with a cold and a warm thumbnail cache.
# usage: bench/library_screens.sh BUILD_DIR [FILES]
set -euo pipefail
build=$(cd "$1" && pwd)
samples="$(cd "$(dirname "$0")/.." && pwd)/../shared/corpus"
[ -d "$samples" ] || { echo "sample media not found at $samples" >&2; exit 2; }
"$build/bin/library_screens_bench" "$samples" "${2:-10000}"
