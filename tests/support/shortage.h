#pragma once

#include <functional>
#include <optional>

#include "tests/support/failing_allocation.h"
#include "tests/support/handle.h"
#include "tests/support/same_tables.h"

namespace MERVO::Tessera {

/// The tables that an operation works on, made anew for each run, and what the run leaves.
struct Scene {
    Scene();
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;
    ~Scene();

    /// What an operation may only read.
    std::array<const Handle*, 6> Sources() const
    {
        return {&numbers, &mixed, &texts, &rowMarks, &columnMarks, &places};
    }
    /// All that a run left: dst's table, what it made, and what `tell` tells.
    std::vector<DataFrame> Outcome() const;

    Handle numbers;     ///< 15 rows by 3 columns of doubles, with NaN
    Handle mixed;       ///< 15 rows by 5: an integer key, long texts, moments, doubles with NaN, nested tables
    Handle texts;       ///< 15 rows by 1: long texts that are numbers
    Handle rowMarks;    ///< 15 bools
    Handle columnMarks; ///< a row of 5 bools
    Handle places;      ///< 15 row numbers
    Handle dst;         ///< "old", a column of texts
    MERVO_TSR_CONTEXT* made = nullptr;
    MERVO_TSR_GROUP_ARRAY* array = nullptr;
    std::optional<DataFrame> result;
    std::vector<void*> room; ///< for rows that are read
    std::function<DataFrame()> tell;
};

void PutMixedIntoDst(Scene& scene);

/// A call, under the name by which it is counted; what follows a blank tells forms of one call apart.
struct Operation {
    const char* name;
    std::function<ErrorCode(Scene&)> run;
    std::function<void(Scene&)> prepare = {}; ///< what the caller does before
    bool writesThrough = false;               ///< into dst's cells, one after the other
};

inline void PrintTo(const Operation& operation, std::ostream* stream) { *stream << operation.name; }
/// Names a case of an operation and a shortage.
std::string ShortageCaseName(const testing::TestParamInfo<std::tuple<Operation, Shortage>>& tested);

/**
 * Runs an operation as often as it allocates, and fails another allocation each time.
 *
 * Demands of each run that nothing is thrown; that it gives the result, whole and right, or a code; that its sources
 * stay as they were, and its destination holds what it held, or the result, or the failure; that the next run gives the
 * result; and that no block is left behind.
 * @param mayThrow whether std::bad_alloc may leave a run once all allocations fail.
 */
void FailEachAllocation(const Operation& operation, Shortage shortage, bool mayThrow);

} // namespace MERVO::Tessera
