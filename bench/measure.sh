# SPDX-License-Identifier: GPL-3.0-or-later
# Shared by the bench scripts: timing a command and printing rows and ratios.

# "WALL CPU" seconds of a command, CPU being user plus system time: on a shared machine the
# wall clock also counts other people's work. Its output and exit status are not the point.
measure() {
  local TIMEFORMAT='%R %U %S' t
  t=$({ time "$@" > /dev/null 2>&1; } 2>&1) || true
  awk '{ print $1, $2 + $3 }' <<< "$t"
}

# The faster of two "WALL CPU" pairs (the second when the first is empty).
faster() {
  if [ -z "$1" ] || awk -v a="${2%% *}" -v b="${1%% *}" 'BEGIN { exit !(a < b) }'; then echo "$2"; else echo "$1"; fi
}

# The fastest of N runs, as "WALL CPU": on a shared machine other work only ever slows a run
# down, so the fastest run is the nearest to the command's own cost. Each tool gets as many.
fastest() {
  local n=$1 best="" i
  shift
  for ((i = 0; i < n; i++)); do best=$(faster "$best" "$(measure "$@")"); done
  echo "$best"
}

rate() { awk -v n="$count" -v s="$1" 'BEGIN { printf "%.0f", n / s }'; }
ratio() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.2f", a / b }'; }
header() { printf '%-26s %8s %8s %12s %12s\n' "" "wall s" "CPU s" "files/s" "files/CPU s"; }
row() { printf '%-26s %8.2f %8.2f %12s %12s\n' "$1" "$2" "$3" "$(rate "$2")" "$(rate "$3")"; }
# NAME THEIR_WALL THEIR_CPU ONE_WALL ONE_CPU ALL_WALL GOAL: one worker by wall and CPU time,
# all workers by wall time (their CPU time is spread over the cores).
ratios() {
  printf '%-18s 1 worker %sx wall, %sx CPU; all workers %sx wall (goal: at least %sx)\n' "$1:" \
    "$(ratio "$2" "$4")" "$(ratio "$3" "$5")" "$(ratio "$2" "$6")" "$7"
}
