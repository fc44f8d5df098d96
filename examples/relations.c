/* What machines made in the course of a day: totals by machine, shares of what was planned, and hours. Flat calls
 * alone. */

#include <stdio.h>
#include <stdlib.h>

#include "tessera/tessera.h"

enum { TIME, MACHINE, MADE, COLUMNS };

/* Every call returns a code; what went wrong stands in the log. */
static void StopOnFailure(int32_t code, const char* what)
{
    if (code != 0) {
        fprintf(stderr, "relations: %s failed with code %d\n", what, (int)code);
        exit(EXIT_FAILURE);
    }
}

/* For calls that give a handle or an array, which is null after a failure. */
static void* NotNull(void* pointer, const char* what)
{
    StopOnFailure(pointer == NULL, what);
    return pointer;
}

static MERVO_TSR_CONTEXT* LoadTexts(
    const char* const* texts, uint32_t rows, uint32_t columns, const MERVO_TESSERA_TYPEID* types)
{
    const MERVO_TSR_SHAPE shape = {rows, columns, types};
    MERVO_TSR_CONTEXT* table = NotNull(MERVO_TSR_CreateDF(), "creating a table");
    StopOnFailure(ReadDataString(table, texts, &shape), "loading");
    return table;
}

/* The number in the first row of a column. */
static double FirstCell(const MERVO_TSR_CONTEXT* table, uint32_t column)
{
    const uint32_t rows[2] = {0, 1};
    const uint32_t columns[2] = {column, column + 1};
    MERVO_TSR_CONTEXT* window = NotNull(MERVO_TSR_Slice(table, rows, columns, 2, 2), "slicing");
    MERVO_TSR_CONTEXT* number = NotNull(MERVO_TSR_CreateDF(), "creating a table");
    double cell = 0;
    void* row[1] = {&cell};
    MERVO_TSR_RESULT result = {row, 0, 0};
    StopOnFailure(MERVO_TSR_TypeCastDouble(number, window), "casting");
    StopOnFailure(MERVO_TSR_GetResultDouble(number, &result), "reading");
    StopOnFailure(MERVO_TSR_Release(&window), "releasing a window");
    StopOnFailure(MERVO_TSR_Release(&number), "releasing a number");
    return cell;
}

/* What all rows of a table have in a column of numbers, added up. */
static double Total(const MERVO_TSR_CONTEXT* table, uint32_t column)
{
    MERVO_TSR_CONTEXT* sums = NotNull(MERVO_TSR_CreateDF(), "creating a table");
    StopOnFailure(MERVO_TSR_Sum(sums, table), "summing");
    const double total = FirstCell(sums, column);
    StopOnFailure(MERVO_TSR_Release(&sums), "releasing sums");
    return total;
}

static void PrintByMachine(MERVO_TSR_CONTEXT* log)
{
    const uint32_t key = MACHINE;
    MERVO_TSR_GROUP_ARRAY* machines = NotNull(MERVO_TSR_GroupBy(log, &key, 1), "grouping"); /* reorders the log */
    for (uint32_t g = 0; g < machines->count; ++g) {
        MERVO_TSR_CONTEXT* group = &machines->entries[g];
        printf("machine %.0f made %.0f\n", FirstCell(group, MACHINE), Total(group, MADE));
    }
    MERVO_TSR_ReleaseGroupArray(&machines);
}

static void PrintPlanned(MERVO_TSR_CONTEXT* log)
{
    const char* const texts[] = {"1", "10", "2", "5", "4", "20"};
    const MERVO_TESSERA_TYPEID types[] = {TESSERA_INT32, TESSERA_INT32};
    MERVO_TSR_CONTEXT* plan = LoadTexts(texts, 3, 2, types);

    const uint32_t left = MACHINE;
    const uint32_t right = 0;
    const MERVO_TSR_MERGE_KEYS keys = {&left, &right, 1};
    MERVO_TSR_CONTEXT* planned = NotNull(MERVO_TSR_CreateDF(), "creating a table");
    StopOnFailure((int32_t)MERVO_TSR_Merge(planned, log, plan, &keys, TESSERA_JOIN_INNER), "merging");
    printf(
        "machines with a plan made %.0f of %.0f\n", Total(planned, MADE), Total(log, MADE)); /* behind key and time */
    StopOnFailure(MERVO_TSR_Release(&plan), "releasing the plan");
    StopOnFailure(MERVO_TSR_Release(&planned), "releasing the merged table");
}

static void PrintByHour(MERVO_TSR_CONTEXT* log)
{
    enum { HOUR = 60 * 60 };
    MERVO_TSR_GROUP_ARRAY* hours = NotNull(MERVO_TSR_Resample(log, TIME, HOUR, true, true), "resampling");
    for (uint32_t h = 0; h < hours->count; ++h) {
        MERVO_TSR_CONTEXT* hour = &hours->entries[h];
        const double made = Total(hour, MADE);
        if (made == made) { /* an hour without rows has one of NaN */
            printf("hour %u: %.0f\n", (unsigned)h, made);
        } else {
            printf("hour %u: nothing\n", (unsigned)h);
        }
    }
    MERVO_TSR_ReleaseGroupArray(&hours);
}

int main(void)
{
    const char* const texts[] = {
        "2026-03-02 08:05:00",
        "2",
        "4", //
        "2026-03-02 08:40:00",
        "1",
        "7", //
        "2026-03-02 10:15:00",
        "3",
        "2", //
        "2026-03-02 10:50:00",
        "2",
        "5",
    };
    const MERVO_TESSERA_TYPEID types[COLUMNS] = {TESSERA_DATETIME, TESSERA_INT32, TESSERA_DOUBLE};
    MERVO_TSR_CONTEXT* log = LoadTexts(texts, 4, COLUMNS, types);
    PrintByMachine(log);
    PrintPlanned(log);
    PrintByHour(log);
    StopOnFailure(MERVO_TSR_Release(&log), "releasing the log");
    return EXIT_SUCCESS;
}
