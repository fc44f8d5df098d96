/* A host in C with a logger of its own: loads a buffer, casts it, sums it, and makes one call that must be refused. */
#include <stdarg.h>
#include <stdio.h>
#include <string.h>

#include "tessera/tessera.h"

static int errorsLogged = 0;
static char lastError[256];

void ORLELogStr(int level, const char* tag, const char* format, ...);

void ORLELogStr(int level, const char* tag, const char* format, ...)
{
    va_list arguments;
    if (level != 1 || strcmp(tag, "MERVO_TSR") != 0) {
        return;
    }
    va_start(arguments, format);
    vsnprintf(lastError, sizeof lastError, format, arguments);
    va_end(arguments);
    ++errorsLogged;
}

static int fail(const char* what)
{
    fprintf(stderr, "%s; last error: %s\n", what, lastError);
    return 1;
}

int main(void)
{
    const int32_t cells[6] = {1, 10, 2, 20, 3, 30};
    const MERVO_TESSERA_TYPEID types[2] = {TESSERA_INT32, TESSERA_DOUBLE};
    const MERVO_TSR_SHAPE shape = {3, 2, types};
    double sums[2] = {0, 0};
    void* rows[1];
    MERVO_TSR_RESULT result = {0, 0, 0};
    MERVO_TSR_CONTEXT* table = MERVO_TSR_CreateDF();
    MERVO_TSR_CONTEXT* sum = MERVO_TSR_CreateDF();

    if (ReadDataInt32(table, cells, &shape) != 0 || MERVO_TSR_Sum(sum, table) != 0) {
        return fail("loading and summing failed");
    }
    rows[0] = sums;
    result.rows = rows;
    if (MERVO_TSR_GetResultDouble(sum, &result) != 0 || result.rowCount != 1 || result.colCount != 2) {
        return fail("reading back failed");
    }
    if (sums[0] != 6.0 || sums[1] != 60.0) {
        return fail("the sums are wrong");
    }
    if (errorsLogged != 0) {
        return fail("an error was logged though nothing failed");
    }
    if (MERVO_TSR_Sum(sum, NULL) != 33 || errorsLogged == 0 || strstr(lastError, "MERVO_TSR_Sum") == NULL) {
        return fail("a null handle was not refused through this host's logger");
    }
    if (MERVO_TSR_Release(&sum) != 0 || MERVO_TSR_Release(&table) != 0 || table != NULL) {
        return fail("releasing failed");
    }
    return 0;
}
