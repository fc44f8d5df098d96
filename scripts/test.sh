#!/usr/bin/env bash
# Builds for this machine and runs all tests, in three time zones; then builds hosts against the installed library.
set -euo pipefail
cd "$(dirname "$0")/.."

[[ -n ${TESSERA_HOLD_TOTAL:-} ]] || rm -f build/test_counts.txt
scripts/setup.sh
scripts/build.sh release
status=0
scripts/run_suite.py release UTC America/New_York Asia/Kolkata || status=1
tests/packaging/run.sh build/release || status=1
scripts/run_suite.py --total
exit $status
