#!/usr/bin/env bash
# Builds the library and runs the two example programs.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
scripts/build.sh release -- weather_report quickstart
echo "== examples/quickstart.c"
build/release/examples/quickstart
echo "== examples/weather_report"
build/release/examples/weather_report examples/data build/release/examples
