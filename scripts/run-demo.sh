#!/usr/bin/env bash
# Shows the demo library: the app where there is a display, otherwise the files' properties.
set -euo pipefail
build=${1:-build}
demo="$build/demo"
shopt -s nullglob
files=("$demo"/*.jpg "$demo"/*.png "$demo"/*.heic "$demo"/*.mov)
if [ -x "$build/bin/tessorin" ] && { [ -n "${DISPLAY:-}" ] || [ -n "${WAYLAND_DISPLAY:-}" ]; }; then
  exec "$build/bin/tessorin" "${files[@]}"
fi
echo "No display (or no app yet): the demo library's properties follow."
exec "$build/bin/tessorin-cli" props "${files[@]}"
