#pragma once

#include <vector>

#include "tessera/core/date_time.h"
#include "tessera/functors/functor.h"

namespace MERVO::Tessera::Func {

/// All of TimeResample but the form in which it takes its arguments, so that the forms share their code.
template <ContainerID CID>
class TESSERA_API TimeResampleBase : public Nullary<TimeResampleBase<CID>, MutableArgs::DESTINATION> {
public:
    TimeResampleBase(const std::vector<std::uint32_t>& positions, const DateTime& windowWidth, bool includesStart,
        std::vector<std::int32_t>& rows, std::vector<std::uint32_t>& counts)
        : index(positions), gap(windowWidth), closedLeft(includesStart), sampleRows(rows), sampleCounts(counts)
    {
    }

    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& cursor) const override;
    bool CheckParams(const Cursor& cursor) const override;
    template <typename T>
    ErrorCode OnExecute(const Cursor& cursor) const;

private:
    const std::vector<std::uint32_t>& index;
    DateTime gap;
    bool closedLeft;
    std::vector<std::int32_t>& sampleRows;
    std::vector<std::uint32_t>& sampleCounts;
};

/**
 * Cuts the rows of a column of moments into windows of one width.
 *
 * Rows come in the order of `index`, which is by time. The first window starts at the first row's time, or, where
 * windows include their end instead of their start, ends there. Each window gives the rows in it; one without rows in
 * front of the last row gives -1. The rows are appended to the sample rows, and how many a window gave to the sample
 * counts. A row that comes before an earlier one in time may find no window, and then no row behind it does.
 *
 * Windows are counted before anything is appended, in 64 bits: their bounds may lie outside the range of moments. Code
 * 3, with a message: more rows than 32 bits count or than memory can hold, or no memory; 4: a position beyond the
 * column; 5: a width below one second; 1: another value type. Nothing is appended then. Working set: 8 bytes per row.
 * @tparam ARGS std::vector<std::uint32_t>& for the index, const DateTime& for the width, bool& (true: windows include
 *         their start), std::vector<std::int32_t>& for the sample rows, std::vector<std::uint32_t>& for the counts.
 */
template <ContainerID CID, typename... ARGS>
class TimeResample final : public TimeResampleBase<CID> {
public:
    explicit TimeResample(ARGS... arguments) : TimeResampleBase<CID>(arguments...) {}
};

extern template const NullaryTable<1>
    Nullary<TimeResampleBase<CONTAINER_ARRAY>, MutableArgs::DESTINATION>::transformTable;
extern template class TimeResampleBase<CONTAINER_ARRAY>;

} // namespace MERVO::Tessera::Func
