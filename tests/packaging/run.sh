#!/usr/bin/env bash
# Installs a build into an empty prefix and builds hosts against it, as a user would: a C and a C++ program, each by the
# CMake package and by pkg-config, and the programs that the documents print.
#   tests/packaging/run.sh BUILD_FOLDER
set -euo pipefail
cd "$(dirname "$0")/../.."

source=$PWD
build=$(realpath "$1")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
log=$work/log
passed=0
failed=0

check() { # NAME COMMAND...
    local name=$1
    shift
    if "$@" > "$log" 2>&1; then
        passed=$((passed + 1))
        echo "passed: $name"
    else
        failed=$((failed + 1))
        echo "FAILED: $name"
        cat "$log"
    fi
}

# Prints the first block of a language in a document, or with a third argument the block that follows it.
document_block() { # DOCUMENT LANGUAGE [next]
    awk -v language="$2" -v wanted="$#" '
        /^```/ && open { open = 0; next }
        /^```/ { open = 1; if (found || $0 == "```" language) found++; next }
        open && found == wanted - 1' "$1"
}

by_cmake() { # HOST
    cmake -S "$source/tests/packaging/$1" -B "$work/$1" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" &&
        cmake --build "$work/$1" && "$work/$1/host"
}

by_pkg_config() { # COMPILER... SOURCE
    local flags
    flags=$(PKG_CONFIG_PATH=$libraries/pkgconfig pkg-config --cflags --libs tessera)
    # shellcheck disable=SC2086 # the flags are several words
    "$@" -Wall -Wextra -Werror -o "$work/program" $flags && LD_LIBRARY_PATH=$libraries "$work/program"
}

# Builds and runs the first program of a language in a document, and holds its output against the block behind it.
document_program() { # DOCUMENT LANGUAGE SUFFIX COMPILER...
    local file=$work/document.$3
    document_block "$1" "$2" > "$file"
    document_block "$1" "$2" next > "$work/expected"
    [[ -s $file && -s $work/expected ]] || { echo "$1 has no such program, or no output for it"; return 1; }
    by_pkg_config "${@:4}" "$file" > "$work/printed" && diff "$work/printed" "$work/expected"
}

links_stand() {
    local soname
    soname=$(objdump -p "$libraries/libtessera.so" | awk '$1 == "SONAME" {print $2}')
    [[ $soname == libtessera.so.[0-9]* && -L $libraries/libtessera.so && -f $libraries/$soname ]]
}

links_of_documents_stand() {
    local document target failed=0
    for document in docs/*.md; do
        [[ $document == docs/README.md ]] || grep -qF "](${document#docs/})" docs/README.md ||
            { echo "docs/README.md does not link $document"; failed=1; }
    done
    for document in *.md docs/*.md docs/*/*.md; do
        while read -r target; do
            [[ -e $(dirname "$document")/$target ]] || { echo "$document links $target, which is not there"; failed=1; }
        done < <(grep -oE '\]\([^) ]+\.md' "$document" | cut -c 3-)
    done
    return "$failed"
}

# Moved after the installation: no file of it may know where it was put.
cmake --install "$build" --prefix "$work/first" > /dev/null
prefix=$work/moved
mv "$work/first" "$prefix"
libraries=$(dirname "$(find "$prefix" -name libtessera.so)")

check "library and links" links_stand
check "C host, CMake package" by_cmake c_host
check "C++ host, CMake package" by_cmake cpp_host
check "C host, pkg-config" by_pkg_config cc -std=c99 -pedantic tests/packaging/c_host/host.c
check "C++ host, pkg-config" by_pkg_config c++ -std=c++20 tests/packaging/cpp_host/host.cpp
for level in 0 2; do
    check "every functor, compiled with -O$level" by_pkg_config \
        c++ -std=c++20 "-O$level" tests/packaging/cpp_host/every_functor.cpp
done
check "the README's C program" document_program README.md c c cc -std=c99 -pedantic
check "the README's C++ program" document_program README.md cpp cpp c++ -std=c++20
for document in docs/*.md; do
    [[ $document == docs/README.md ]] || check "$document" document_program "$document" cpp cpp c++ -std=c++20
done
check "the comparison's page is what its recorded figures give" benchmarks/rivals/report.py check docs/benchmarks
check "every page of the guide is in its index, and every link leads somewhere" links_of_documents_stand

scripts/run_suite.py --record packaging $passed $failed
((failed == 0))
