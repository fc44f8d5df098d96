#pragma once

#include <stddef.h>

/*
 * What the process holds on the heap, in C for hosts in C. heap_meter.c puts functions of its own in front of malloc
 * and its kin, so that the library's blocks count however they were got: also those that it keeps for later.
 */

#ifdef __cplusplus
extern "C" {
#endif

/** Bytes that are held now, with what malloc adds to round blocks up. */
size_t HeapHeld(void);
/** The most that was held at a time since the program started or RestartHeapPeak was called. */
size_t HeapPeak(void);
void RestartHeapPeak(void);

#ifdef __cplusplus
}
#endif
