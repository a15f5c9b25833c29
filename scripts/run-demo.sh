#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Shows the demo library: the app where there is a display, otherwise the details of each file.
set -euo pipefail
build=${1:-build}
demo="$build/demo"
shopt -s nullglob
files=("$demo"/*.jpg "$demo"/*.png "$demo"/*.heic "$demo"/*.mov "$demo"/*.mp4)
if [ ${#files[@]} -eq 0 ]; then
  echo "No demo album in $demo: build the 'demo' target first." >&2
  exit 1
fi
if [ -x "$build/bin/tessorin" ] && { [ -n "${DISPLAY:-}" ] || [ -n "${WAYLAND_DISPLAY:-}" ]; }; then
  env_line=$(bash "$(dirname "$0")/make-demo-library.sh" "$build")
  exec env $env_line "$build/bin/tessorin"
fi
echo "No display (or no app yet): the details of the demo album follow."
exec "$build/bin/tessorin-cli" info "${files[@]}"
