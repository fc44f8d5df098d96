#!/usr/bin/env bash
# Holds what libtessera.so exports against tests/exported_symbols.txt, and its flat calls against tessera.h.
#   scripts/check-symbols.sh [--update]    the option records today's list
set -euo pipefail
cd "$(dirname "$0")/.."
export LC_ALL=C

library=build/release/libtessera.so
recorded=tests/exported_symbols.txt
[[ -f $library ]] || scripts/build.sh release -- tessera

exported=$(mktemp)
trap 'rm -f "$exported"' EXIT
nm --dynamic --defined-only --format=just-symbols "$library" | c++filt |
    sed 's/std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >/std::string/g' |
    sort -u > "$exported"
if [[ ${1:-} == --update ]]; then
    cp "$exported" "$recorded"
fi

status=0
flat='(MERVO_TSR_|ReadData)[A-Za-z0-9_]+'
if ! diff <(grep -xE "$flat" "$exported") \
    <(grep -E '^MERVO_TSR_API ' tessera/tessera.h | grep -oE "$flat\(" | tr -d '(' | sort -u); then
    echo "the exported flat calls (<) are not those that tessera.h declares (>)" >&2
    status=1
fi
if ! diff "$exported" "$recorded"; then
    echo "the exported symbols (<) are not those of $recorded (>); scripts/check-symbols.sh --update records them" >&2
    status=1
fi
((status != 0)) || echo "$(wc -l < "$exported") exported symbols, all of them intended"
exit $status
