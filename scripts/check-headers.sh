#!/usr/bin/env bash
# Compiles tessera.h alone as C and as C++, and tells how long an empty host takes to compile with tessera.hpp.
set -euo pipefail
cd "$(dirname "$0")/.."

strict=(-pedantic -Wall -Wextra -Wconversion -Wshadow -Werror -fsyntax-only -I .)
cc -std=c99 "${strict[@]}" -x c tessera/tessera.h
for standard in c++11 c++20; do
    c++ -std=$standard "${strict[@]}" -x c++ tessera/tessera.h
done
echo "tessera.h compiles alone as C99, C++11 and C++20"

TIMEFORMAT='%U'
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
printf '#include "tessera/tessera.hpp"\n\nint main()\n{\n}\n' > "$work/host.cpp"
seconds=$(for _ in 1 2 3; do
    { time c++ -std=c++20 -O2 -Wall -Wextra -Werror -I . -c "$work/host.cpp" -o "$work/host.o"; } 2>&1
done | sort -g | head -n 1)
readonly BUDGET=1
echo "an empty host with tessera.hpp compiles in $seconds s of processor time (budget $BUDGET s)"
# A busy machine takes longer; that the compiler does no more than before, scripts/check-instructions.sh looks after.
if awk "BEGIN { exit !($seconds > 2 * $BUDGET) }"; then
    echo "that is more than twice the budget" >&2
    exit 1
fi
