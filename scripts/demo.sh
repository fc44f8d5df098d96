#!/usr/bin/env bash
# Builds the library and runs the example programs, and draws the report.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh --demo
scripts/build.sh release -- weather_report quickstart relations
echo "== examples/quickstart.c"
build/release/examples/quickstart
echo "== examples/relations.c"
build/release/examples/relations
echo "== examples/weather_report"
build/release/examples/weather_report examples/data build/release/examples
examples/weather_report/page.sh build/release/examples
