#pragma once

#include "tests/support/digest.h"
#include "tests/support/handle.h"

namespace MERVO::Tessera {

/// What a reader of the flat surface hands out, with its code.
template <typename T>
void AddRead(Digest& digest, MERVO_TSR_CONTEXT* handle, int32_t (*read)(MERVO_TSR_CONTEXT*, MERVO_TSR_RESULT*),
    std::uint32_t rows, std::uint32_t columns)
{
    std::vector<T> cells(std::size_t{rows} * columns);
    std::vector<void*> buffers;
    for (std::uint32_t row = 0; row < rows; ++row) {
        buffers.push_back(cells.data() + std::size_t{row} * columns);
    }
    MERVO_TSR_RESULT result{buffers.data(), 0, 0};
    digest.Add(read(handle, &result));
    digest.Add(result.rowCount);
    digest.Add(result.colCount);
    for (const T& cell : cells) {
        digest.Add(cell);
    }
}

inline void AddArray(Digest& digest, MERVO_TSR_GROUP_ARRAY* groups)
{
    digest.Add(groups == nullptr);
    for (std::uint32_t g = 0; groups != nullptr && g < groups->count; ++g) {
        AddTable(digest, *groups->entries[g].dataFrame);
    }
    MERVO_TSR_ReleaseGroupArray(&groups);
}

/// Loads a table and runs each kind of flat call once; returns the digest of all codes and cells.
inline std::string DigestOfFlatCalls(std::uint32_t rows, std::uint64_t seed)
{
    using Target = MERVO_TSR_CONTEXT*;
    using Source = MERVO_TSR_CONTEXT*;
    Digest digest;
    Random random(seed);
    std::vector<double> cells(std::size_t{rows} * 5);
    for (double& cell : cells) {
        const std::uint32_t drawn = random.Below(90);
        cell = drawn == 0 ? std::numeric_limits<double>::quiet_NaN() : drawn - 7.25;
    }
    const MERVO_TESSERA_TYPEID types[] = {
        TESSERA_DOUBLE, TESSERA_FLOAT, TESSERA_INT16, TESSERA_DATETIME, TESSERA_STRING};
    const MERVO_TSR_SHAPE shape{rows, 5, types};
    const Handle table;
    digest.Add(ReadDataDouble(table.Get(), cells.data(), &shape));
    const std::uint32_t someRows[] = {1, rows - 2};
    const std::uint32_t numbers[] = {0, 3};
    const Handle window(table.Table().Slice({someRows[0], someRows[1]}, {numbers[0], numbers[1]}));

    const auto run = [&](auto... calls) {
        const auto one = [&](auto call) {
            const Handle result;
            digest.Add(call(result.Get(), window.Get()));
            AddTable(digest, result.Table());
        };
        (one(calls), ...);
    };
    run(MERVO_TSR_Sum, MERVO_TSR_Mean, MERVO_TSR_Max, MERVO_TSR_Min, MERVO_TSR_Ptp, MERVO_TSR_IdxMax, MERVO_TSR_IsNan,
        MERVO_TSR_Interpolate, MERVO_TSR_DeepCopy, MERVO_TSR_TypeCastString, MERVO_TSR_TypeCastDataFrame);
    run([](Target dst, Source src) { return MERVO_TSR_Var(dst, src, 1); },
        [](Target dst, Source src) { return MERVO_TSR_Std(dst, src, 0); },
        [](Target dst, Source src) { return MERVO_TSR_Moment(dst, src, 3); },
        [](Target dst, Source src) { return MERVO_TSR_Kstat(dst, src, 4); },
        [](Target dst, Source src) { return MERVO_TSR_Skew(dst, src, true, false); },
        [](Target dst, Source src) { return MERVO_TSR_Kurt(dst, src, true, true); },
        [](Target dst, Source src) { return MERVO_TSR_RollingSum(dst, src, 4, false, 2); },
        [](Target dst, Source src) { return MERVO_TSR_RollingMean(dst, src, 9, true, 1); },
        [](Target dst, Source src) { return MERVO_TSR_FillNan(dst, src, "bfill", 5); },
        [](Target dst, Source src) { return MERVO_TSR_ReplaceNan(dst, src, "0.5", 3); },
        [](Target dst, Source src) { return MERVO_TSR_ReplaceDouble(dst, src, -7.25, 1); },
        [](Target dst, Source src) { return MERVO_TSR_Round(dst, src, 1); },
        [](Target dst, Source src) { return MERVO_TSR_Diff(dst, src, -2); },
        [](Target dst, Source src) { return MERVO_TSR_DropNanRow(dst, src, true); },
        [](Target dst, Source src) { return MERVO_TSR_SortValue(dst, src, false); },
        [](Target dst, Source src) { return MERVO_TSR_Unique(dst, src, 2); },
        [](Target dst, Source src) { return MERVO_TSR_IsIn(src, src, dst); },
        [](Target dst, Source src) { return MERVO_TSR_InsertRow(src, src, dst, 3); },
        [](Target dst, Source src) { return MERVO_TSR_RollingSum(dst, src, 3, false, 9); });
    run([&](Target dst, Source) { return MERVO_TSR_DropRowByIndex(dst, table.Get(), someRows, 2); },
        [&](Target dst, Source) { return MERVO_TSR_DropColByIndex(dst, table.Get(), numbers, 2); },
        [&](Target dst, Source) { return MERVO_TSR_Sum(dst, table.Get()); },
        [&](Target dst, Source) {
            const std::uint32_t key = 2;
            const MERVO_TSR_MERGE_KEYS keys{&key, &key, 1};
            const Handle left(table.Table().SelectRow({2, 9, 3, 0, 9, 5}));
            return static_cast<std::int32_t>(MERVO_TSR_Merge(dst, left.Get(), table.Get(), &keys, TESSERA_JOIN_OUTER));
        });

    AddRead<double>(digest, window.Get(), MERVO_TSR_GetResultDouble, rows - 3, 3);
    const std::uint32_t text[] = {4, 5};
    MERVO_TSR_CONTEXT* texts = MERVO_TSR_Slice(table.Get(), someRows, text, 2, 2);
    AddRead<std::string>(digest, texts, MERVO_TSR_GetResultString, rows - 3, 1);
    MERVO_TSR_Release(&texts);
    AddArray(digest, MERVO_TSR_Resample(table.Get(), 3, 10, true, true));
    const std::uint32_t key = 2;
    AddArray(digest, MERVO_TSR_GroupBy(table.Get(), &key, 1));
    const Handle copy(DataFrame(*window.Get()->dataFrameRef));
    AddArray(digest, MERVO_TSR_GroupBy_Transform(copy.Get(), &key, 1, 2));
    return digest.Hex();
}

} // namespace MERVO::Tessera
