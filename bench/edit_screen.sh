#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# The edit screen's save of 24 photos in each mode: wall time (goal for "New Picture": under 2 s)
# and the longest stall of the GUI thread while it runs (goal: under 50 ms).
# usage: bench/edit_screen.sh BUILD_DIR
set -euo pipefail

build=$(cd "$1" && pwd)
bench="$build/bin/edit_screen_bench"
[ -x "$bench" ] || { echo "no $bench: build first" >&2; exit 2; }
samples="$(cd "$(dirname "$0")/.." && pwd)/../shared/corpus"
[ -d "$samples" ] || { echo "sample media not found at $samples" >&2; exit 2; }
QT_QPA_PLATFORM=offscreen "$bench" "$samples"
