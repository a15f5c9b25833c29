#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# The photo library at a million files, to show how each figure grows past 100,000: the library
# bench (without exiftool, which would take hours) and the album's first screen. Not part of
# `make bench` or CI: it makes a million hard links and takes the better part of an hour.
# usage: bench/library_million.sh BUILD_DIR
set -euo pipefail
here=$(dirname "$0")
bash "$here/library.sh" "$1" 1000000 --no-exiftool
bash "$here/library_screens.sh" "$1" 1000000
