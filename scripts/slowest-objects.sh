#!/usr/bin/env bash
# Prints the objects of a build that took longest to compile.
#   scripts/slowest-objects.sh PRESET
set -euo pipefail
cd "$(dirname "$0")/.."

echo "== slowest 10 objects of build/$1, in seconds"
awk '$4 ~ /\.o$/ {taken[$4] = ($2 - $1) / 1000} END {for (object in taken) printf "%8.2f %s\n", taken[object], object}' \
    "build/$1/.ninja_log" | sort -rg | head -n 10
