#!/usr/bin/env bash
# Runs the tests of four threads at once under the thread sanitizer.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
scripts/build.sh tsan -DTESSERA_BUILD_EXAMPLES=OFF -- threads_tests
TSAN_OPTIONS=halt_on_error=1:suppressions=tests/threads/suppressions.txt build/tsan/tests/threads_tests --gtest_brief=1
