#!/usr/bin/env bash
# Configures and builds a preset; prints what the compiler says and nothing else.
#   scripts/build.sh PRESET [CMAKE_ARGUMENT...] [-- TARGET...]
set -euo pipefail
cd "$(dirname "$0")/.."

preset=$1
shift
arguments=()
while (($# > 0)) && [[ $1 != -- ]]; do
    arguments+=("$1")
    shift
done
targets=("${@:2}")

# Clones at other places share one compiler cache.
export CCACHE_BASEDIR=$PWD CCACHE_NOHASHDIR=1
echo "== build $preset"
cmake --preset "$preset" --no-warn-unused-cli --log-level=WARNING "${arguments[@]}" > /dev/null
NINJA_STATUS='' cmake --build --preset "$preset" ${targets[0]:+--target "${targets[@]}"} -- --quiet
