#!/usr/bin/env bash
# Makes the reference of all classes and calls from their docstrings: build/reference/html/index.html. A warning fails.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh --docs
mkdir -p build/reference
doxygen docs/Doxyfile
echo "reference: build/reference/html/index.html"
