#!/usr/bin/env bash
# Runs all native tests over a build that counts, and reports which lines and branches of tessera/ they reach.
#   scripts/coverage.sh [GCOVR_OPTION...]    e.g. --html-details build/coverage/report.html
# Fails below 95 % of lines or 85 % of branches. Branches that only an exception takes don't count: the compiler draws
# one behind every call, and the tests of failing allocations take those that matter.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh --coverage
scripts/build.sh coverage -DTESSERA_BUILD_EXAMPLES=OFF
find build/coverage -name '*.gcda' -delete
scripts/run_suite.py coverage UTC
mkdir -p build/coverage/report
gcovr --root . --filter 'tessera/' --exclude-throw-branches --exclude-unreachable-branches -j 2 \
    --txt build/coverage/report/files.txt --print-summary --fail-under-line 95 --fail-under-branch 85 \
    "$@" build/coverage
