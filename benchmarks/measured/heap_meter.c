#include "benchmarks/measured/heap_meter.h"

#include <errno.h>
#include <malloc.h>
#include <stdlib.h>

/* The C library's own names for what is replaced below. */
extern void* __libc_malloc(size_t bytes);
extern void* __libc_calloc(size_t count, size_t bytes);
extern void* __libc_realloc(void* block, size_t bytes);
extern void* __libc_memalign(size_t alignment, size_t bytes);
extern void __libc_free(void* block);

static size_t held; /* the programs that are measured have one thread */
static size_t peak;

size_t HeapHeld(void) { return held; }
size_t HeapPeak(void) { return peak; }
void RestartHeapPeak(void) { peak = held; }

static void* Took(void* block)
{
    held += malloc_usable_size(block); /* 0 for null */
    peak = held > peak ? held : peak;
    return block;
}

void* malloc(size_t bytes) { return Took(__libc_malloc(bytes)); }
void* calloc(size_t count, size_t bytes) { return Took(__libc_calloc(count, bytes)); }
void* memalign(size_t alignment, size_t bytes) { return Took(__libc_memalign(alignment, bytes)); }
void* aligned_alloc(size_t alignment, size_t bytes) { return memalign(alignment, bytes); }

int posix_memalign(void** block, size_t alignment, size_t bytes)
{
    *block = memalign(alignment, bytes);
    return *block == NULL ? ENOMEM : 0;
}

void free(void* block)
{
    held -= malloc_usable_size(block);
    __libc_free(block);
}

void* realloc(void* block, size_t bytes)
{
    const size_t before = malloc_usable_size(block);
    void* const moved = __libc_realloc(block, bytes);
    if (moved != NULL || bytes == 0) {
        held -= before;
        Took(moved);
    }
    return moved;
}
