/* Typed buffers in, a sum and a cast, and typed buffers out again, through the flat calls alone. */

#include <stdio.h>
#include <stdlib.h>

#include "tessera/tessera.h"

enum { ROWS = 3, COLUMNS = 2 };

/* Every call returns a code; what went wrong stands in the log. */
static void StopOnFailure(int32_t code, const char* what)
{
    if (code != 0) {
        fprintf(stderr, "quickstart: %s failed with code %d\n", what, (int)code);
        exit(EXIT_FAILURE);
    }
}

static MERVO_TSR_CONTEXT* CreateTable(void)
{
    MERVO_TSR_CONTEXT* table = MERVO_TSR_CreateDF();
    if (table == NULL) {
        fprintf(stderr, "quickstart: no memory for a table\n");
        exit(EXIT_FAILURE);
    }
    return table;
}

int main(void)
{
    /* Row by row: a temperature and a humidity each. */
    const double readings[ROWS * COLUMNS] = {21.5, 40.0, 22.0, 38.5, 20.75, 41.25};
    const MERVO_TESSERA_TYPEID types[COLUMNS] = {TESSERA_DOUBLE, TESSERA_DOUBLE};
    const MERVO_TSR_SHAPE shape = {ROWS, COLUMNS, types};

    MERVO_TSR_CONTEXT* table = CreateTable();
    MERVO_TSR_CONTEXT* sums = CreateTable();
    MERVO_TSR_CONTEXT* whole = CreateTable();

    StopOnFailure(ReadDataDouble(table, readings, &shape), "loading");
    StopOnFailure(MERVO_TSR_Sum(sums, table), "summing");
    StopOnFailure(MERVO_TSR_TypeCastInt32(whole, table), "casting");

    /* A reader wants a buffer for each row. */
    double sumCells[COLUMNS];
    void* sumRows[1] = {sumCells};
    MERVO_TSR_RESULT sumResult = {sumRows, 0, 0};
    StopOnFailure(MERVO_TSR_GetResultDouble(sums, &sumResult), "reading the sums");
    printf("sums of %u columns: %.2f and %.2f\n", (unsigned)sumResult.colCount, sumCells[0], sumCells[1]);

    int32_t wholeCells[ROWS][COLUMNS];
    void* wholeRows[ROWS] = {wholeCells[0], wholeCells[1], wholeCells[2]};
    MERVO_TSR_RESULT wholeResult = {wholeRows, 0, 0};
    StopOnFailure(MERVO_TSR_GetResultInt32(whole, &wholeResult), "reading the whole numbers");
    for (uint32_t r = 0; r < wholeResult.rowCount; ++r) {
        printf("row %u in whole numbers: %d and %d\n", (unsigned)r, (int)wholeCells[r][0], (int)wholeCells[r][1]);
    }

    StopOnFailure(MERVO_TSR_Release(&table), "releasing the table");
    StopOnFailure(MERVO_TSR_Release(&sums), "releasing the sums");
    StopOnFailure(MERVO_TSR_Release(&whole), "releasing the whole numbers");
    return EXIT_SUCCESS;
}
