#!/bin/bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Non-blank lines of test code (every tests/ folder and testsupport) and of the rest of the code,
# and the tests' share of both together.
cd "$(dirname "$0")/.." || exit 1
count() { xargs -r cat | grep -cv '^[[:space:]]*$'; }
tests=$( { find src app cli tools -path '*/tests/*' \( -name '*.cpp' -o -name '*.h' \); \
           find testsupport \( -name '*.cpp' -o -name '*.h' \); } | count)
code=$(find src app cli tools \( -name '*.cpp' -o -name '*.h' -o -name '*.qml' \) -not -path '*/tests/*' | count)
all=$((tests + code))
echo "tests $tests, code $code, tests' share $(( 1000 * tests / all / 10 )).$(( 1000 * tests / all % 10 ))%"
