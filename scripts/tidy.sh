#!/usr/bin/env bash
# Runs clang-tidy, and clang's own warnings, over the rooms that differ from a base commit; over all of them without one.
#   scripts/tidy.sh [BASE]    default: where this branch left origin/main
set -euo pipefail
cd "$(dirname "$0")/.."

base=${1:-$(git merge-base origin/main HEAD 2> /dev/null || true)}
if [[ -n $base && $base == "$(git rev-parse HEAD)" ]] && git diff --quiet HEAD -- tessera; then
    base= # on main itself: nothing tells which rooms are new
fi
if [[ -n $base ]]; then
    mapfile -t rooms < <(git diff --name-only "$base" -- tessera | xargs -r -n 1 dirname | sort -u)
else
    rooms=(tessera)
fi
echo "== clang-tidy: ${rooms[*]:-no room changed}"
((${#rooms[@]} > 0)) || exit 0

cmake --preset clang -DTESSERA_BUILD_TESTS=OFF --log-level=WARNING > /dev/null
find "${rooms[@]}" -name '*.cpp' -print0 | sort -zu |
    xargs -0 -r -n 1 -P "$(nproc)" clang-tidy --quiet -p build/clang 2> >(grep -v ' generated\.$' >&2)
