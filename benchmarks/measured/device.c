/*
 * Tells what the library costs a host in C before it does much: loading it, a small table, and the bytes that tables
 * hold.
 *   tessera_device LIBTESSERA [ROUNDS]    a line for each, between tabs: name, seconds, bytes held more than before
 *
 * Steps whose instructions count stand between two marks for instruction_counter.c; with ROUNDS the small table is made
 * so many times, and the time is the mean.
 */
#define _POSIX_C_SOURCE 200809L

#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

#include "benchmarks/measured/heap_meter.h"
#include "tessera/tessera.h"

enum { ROWS = 100, COLUMNS = 4 };

/* What a host calls for a small table. */
static struct {
    MERVO_TSR_CONTEXT* (*create)(void);
    int32_t (*release)(MERVO_TSR_CONTEXT**);
    int32_t (*fill)(MERVO_TSR_CONTEXT*, const double*, const MERVO_TSR_SHAPE*);
    int32_t (*sum)(MERVO_TSR_CONTEXT*, MERVO_TSR_CONTEXT*);
    int32_t (*read)(MERVO_TSR_CONTEXT*, MERVO_TSR_RESULT*);
} library;

static const char* libraryPath;
static double cells[ROWS * COLUMNS];
static MERVO_TESSERA_TYPEID types[1024];

static void Require(bool holds, const char* what)
{
    if (!holds) {
        fprintf(stderr, "tessera_device: %s failed\n", what);
        exit(1);
    }
}

static void* Load(const char* path)
{
    void* const loaded = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    Require(loaded != NULL, path);
    return loaded;
}

static void LoadRuntime(void) { Load("libstdc++.so.6"); }

static void LoadLibrary(void)
{
    void* const loaded = Load(libraryPath);
    const char* const names[] = {
        "MERVO_TSR_CreateDF", "MERVO_TSR_Release", "ReadDataDouble", "MERVO_TSR_Sum", "MERVO_TSR_GetResultDouble"};
    void* found[sizeof(names) / sizeof(*names)];
    for (size_t i = 0; i < sizeof(names) / sizeof(*names); ++i) {
        found[i] = dlsym(loaded, names[i]);
        Require(found[i] != NULL, names[i]);
    }
    _Static_assert(sizeof(found) == sizeof(library), "a name for each call");
    memcpy(&library, found, sizeof(library));
}

static MERVO_TSR_CONTEXT* Table(uint32_t rows, uint32_t columns)
{
    MERVO_TSR_CONTEXT* table = library.create();
    Require(table != NULL, "CreateDF");
    if (columns != 0) {
        double* const buffer = calloc((size_t)rows * columns, sizeof(double));
        const MERVO_TSR_SHAPE shape = {rows, columns, types};
        Require(library.fill(table, buffer, &shape) == 0, "ReadDataDouble");
        free(buffer);
    }
    return table;
}

static void MakeFillRelease(void)
{
    const MERVO_TSR_SHAPE shape = {ROWS, COLUMNS, types};
    MERVO_TSR_CONTEXT* table = library.create();
    Require(table != NULL && library.fill(table, cells, &shape) == 0 && library.release(&table) == 0, "a small table");
}

static void MakeFillSumReadRelease(void)
{
    double sums[COLUMNS] = {0};
    MERVO_TSR_RESULT result = {(void*[]){sums}, 0, 0};
    const MERVO_TSR_SHAPE shape = {ROWS, COLUMNS, types};
    MERVO_TSR_CONTEXT* table = library.create();
    Require(table != NULL && library.fill(table, cells, &shape) == 0 && library.sum(table, table) == 0 &&
            library.read(table, &result) == 0 && library.release(&table) == 0 && sums[COLUMNS - 1] == ROWS,
        "the sums of a small table");
}

static double Now(void)
{
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return (double)now.tv_sec + (double)now.tv_nsec * 1e-9;
}

static void Mark(void) { Require(write(-1, NULL, 0) == -1, "a mark"); }

static void Step(const char* name, void (*run)(void), int rounds)
{
    const size_t before = HeapHeld();
    const double start = Now();
    Mark();
    for (int i = 0; i < rounds; ++i) {
        run();
    }
    Mark();
    const double seconds = (Now() - start) / rounds;
    printf("%s\t%.9f\t%zu\n", name, seconds, HeapHeld() - before);
}

static void Hold(const char* name, uint32_t rows, uint32_t columns)
{
    const size_t before = HeapHeld();
    MERVO_TSR_CONTEXT* table = Table(rows, columns);
    printf("held by %s\t0\t%zu\n", name, HeapHeld() - before);
    Require(library.release(&table) == 0 && HeapHeld() == before, "giving all memory back");
}

int main(int count, char** arguments)
{
    const int rounds = count > 2 ? atoi(arguments[2]) : 1;
    if (count < 2 || rounds < 1) {
        fputs("usage: tessera_device LIBTESSERA [ROUNDS]\n", stderr);
        return 2;
    }
    libraryPath = arguments[1];
    for (int i = 0; i < ROWS * COLUMNS; ++i) {
        cells[i] = 1;
    }
    for (size_t i = 0; i < sizeof(types) / sizeof(*types); ++i) {
        types[i] = TESSERA_DOUBLE;
    }
    setvbuf(stdout, NULL, _IOLBF, BUFSIZ); /* its buffer is no part of a step */
    puts("start\t0\t0");
    Step("load the C++ runtime", &LoadRuntime, 1);
    Step("load the library", &LoadLibrary, 1);
    Step("make, fill and release 100 rows of 4 doubles, first time", &MakeFillRelease, 1);
    Step("the same, later", &MakeFillRelease, rounds);
    Step("the same with their sums read back, first time", &MakeFillSumReadRelease, 1);
    Step("the same, later", &MakeFillSumReadRelease, rounds);
    Hold("an empty table", 0, 0);
    Hold("1 row of 1 column", 1, 1);
    Hold("1 row of 2 columns", 1, 2);
    Hold("1 row of 101 columns", 1, 101);
    Hold("1000 rows of 1 column", 1000, 1);
    return 0;
}
