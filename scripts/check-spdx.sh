#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Every source file names its licence in an SPDX line at its top, so that a file taken out of
# the tree still says under which terms it may be used. Prints the files without one and fails
# when there is any. New files count too, before they are committed.
set -euo pipefail
cd "${1:-$(dirname "$0")/..}"
if git rev-parse --is-inside-work-tree > /dev/null 2>&1; then
  list() { git ls-files --cached --others --exclude-standard; }
else
  list() { find . -path './build*' -prune -o -type f -print | sed 's|^\./||'; }
fi
missing=0
while IFS= read -r f; do
  case "$f" in
    *.cpp | *.h | *.qml | *.sh | *.cmake | CMakeLists.txt | */CMakeLists.txt | Makefile | .ci/run | *.1 | cli/completion/*) ;;
    *) continue ;;
  esac
  [ -f "$f" ] || continue
  if ! awk 'NR <= 3 && /SPDX-License-Identifier: [A-Za-z0-9]/ { found = 1 } NR == 3 { exit } END { exit !found }' "$f"; then
    echo "$f: no SPDX-License-Identifier line in its first three lines"
    missing=1
  fi
done < <(list)
exit $missing
