#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# The files album against its goals: a photo's rows ready within 100 ms of choosing it (a
# 12-megapixel HEIC and JPEG), a grid thumbnail within 10 ms (the first 100 of the samples).
# usage: bench/albums.sh BUILD_DIR
set -euo pipefail

build=$(cd "$1" && pwd)
bench="$build/bin/albums_bench"
[ -x "$bench" ] || { echo "no $bench: build first" >&2; exit 2; }
samples="$(cd "$(dirname "$0")/.." && pwd)/../shared/corpus"
[ -d "$samples" ] || { echo "sample media not found at $samples" >&2; exit 2; }
# libtiff and libjpeg talk about the damaged samples on standard error; the figures are on
# standard output.
QT_QPA_PLATFORM=offscreen "$bench" "$samples" 2> /dev/null
