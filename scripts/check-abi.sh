#!/usr/bin/env bash
# Holds the flat calls and records of tessera.h, as compilers lay them out for this machine and for 32-bit ARM, against
# the descriptions in tests/abi.
#   scripts/check-abi.sh [--update]    the option records today's
set -euo pipefail
cd "$(dirname "$0")/.."

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

describe() { # COMPILER: what an object says whose calls are those of the header, and that mentions each of its types
    local object=$work/$1.so
    "$1" -std=c99 -E -P tessera/tessera.h |
        sed -e 's/);$/) { __builtin_trap(); }/' -e 's/^} \(MERVO_[A-Z_]*\);$/& \1* anyOf_\1;/' |
        "$1" -std=c99 -g -fPIC -fvisibility=hidden -shared -nostdlib -x c - -o "$object"
    abidw --load-all-types --no-corpus-path --no-comp-dir-path --no-show-locs --no-parameter-names "$object"
}

status=0
for machine in x86_64-linux-gnu arm-linux-gnueabihf; do
    recorded=tests/abi/$machine.abi
    describe $machine-gcc > "$work/$machine.abi"
    if [[ ${1:-} == --update ]]; then
        cp "$work/$machine.abi" "$recorded"
    fi
    if abidiff --harmless --leaf-changes-only --non-reachable-types "$recorded" "$work/$machine.abi"; then
        calls=$(grep -c '<function-decl' "$recorded")
        records=$(grep -c '<class-decl.* size-in-bits' "$recorded")
        echo "$machine: $calls flat calls and $records records, laid out as recorded"
    else
        echo "the flat surface is not that of $recorded; scripts/check-abi.sh --update records it" >&2
        status=1
    fi
done
exit $status
