#pragma once

#include <vector>

#include "tessera/core/date_time.h"
#include "tessera/functors/functor.h"

namespace MERVO::Tessera::Func {

/// Sets each cell to what stands for no value: NaN, 0, false, an empty text or table, the moment 0.
template <ContainerID CID>
class TESSERA_API NanRows final : public Nullary<NanRows<CID>, MutableArgs::DESTINATION> {
public:
    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& cursor) const override;
    bool CheckParams(const Cursor& cursor) const override;
    template <typename T>
    ErrorCode OnExecute(const Cursor& cursor) const;
};

/// All of ApplyGroupOtherCol but the form in which it takes its argument.
template <ContainerID CID>
class TESSERA_API ApplyGroupOtherColBase : public Unary<ApplyGroupOtherColBase<CID>, MutableArgs::DESTINATION> {
public:
    static constexpr bool kValueTypesAlterKernel = false;

    explicit ApplyGroupOtherColBase(const std::vector<std::int32_t>& rows) : sampleRows(rows) {}

    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& src) const override;
    bool CheckParams(const Cursor& src, const Cursor& dst) const override;
    template <typename T>
    ErrorCode OnExecute(const Cursor& src, const Cursor& dst) const;

private:
    const std::vector<std::int32_t>& sampleRows;
};

/**
 * Takes elements by sample rows: element i of the destination is the source's at sampleRows[i]; where that is -1, the
 * destination keeps what it holds.
 *
 * Code 21: the value types differ, the destination is not as long as the sample rows, or a row is not in the source; 3:
 * no memory.
 * @tparam ARGS std::vector<std::int32_t>&, which outlives the functor.
 */
template <ContainerID CID, typename... ARGS>
class ApplyGroupOtherCol final : public ApplyGroupOtherColBase<CID> {
public:
    explicit ApplyGroupOtherCol(ARGS... arguments) : ApplyGroupOtherColBase<CID>(arguments...) {}
};

/// All of ApplyGroupTimeLabel but the form in which it takes its arguments.
template <ContainerID CID>
class TESSERA_API ApplyGroupTimeLabelBase : public Unary<ApplyGroupTimeLabelBase<CID>, MutableArgs::DESTINATION> {
public:
    ApplyGroupTimeLabelBase(const std::vector<std::int32_t>& rows, const std::vector<std::uint32_t>& counts,
        bool isLabelledByStart, bool includesStart, const DateTime& windowWidth)
        : sampleRows(rows), sampleCounts(counts), labelLeft(isLabelledByStart), closedLeft(includesStart),
          gap(windowWidth)
    {
    }

    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& src) const override;
    bool CheckParams(const Cursor& src, const Cursor& dst) const override;
    template <typename T>
    ErrorCode OnExecute(const Cursor& src, const Cursor& dst) const;

private:
    const std::vector<std::int32_t>& sampleRows;
    const std::vector<std::uint32_t>& sampleCounts;
    bool labelLeft;
    bool closedLeft;
    DateTime gap;
};

/**
 * Writes the label of each window to all of its rows: its start, or its end. The first window is laid out by the
 * source's moment at the first sample row, as TimeResample does it. A label that no moment can have, before the first
 * one or behind the last one, becomes that one.
 *
 * Code 21: a column that is not of moments; no sample rows or counts; a first row of -1, or one that is not in the
 * source; more rows other than -1 than the source has; a width below zero; or counts whose sum is not the number of
 * sample rows, which is also the destination's length.
 * @tparam ARGS std::vector<std::int32_t>& for the sample rows, std::vector<std::uint32_t>& for the counts, bool& (true:
 *         the label is the start), bool& (true: windows include their start), DateTime& for the width.
 */
template <ContainerID CID, typename... ARGS>
class ApplyGroupTimeLabel final : public ApplyGroupTimeLabelBase<CID> {
public:
    explicit ApplyGroupTimeLabel(ARGS... arguments) : ApplyGroupTimeLabelBase<CID>(arguments...) {}
};

extern template const NullaryTable<1> Nullary<NanRows<CONTAINER_ARRAY>, MutableArgs::DESTINATION>::transformTable;
extern template class NanRows<CONTAINER_ARRAY>;
extern template const UnaryTable<1>
    Unary<ApplyGroupOtherColBase<CONTAINER_ARRAY>, MutableArgs::DESTINATION>::transformTable;
extern template class ApplyGroupOtherColBase<CONTAINER_ARRAY>;
extern template const UnaryTable<1>
    Unary<ApplyGroupTimeLabelBase<CONTAINER_ARRAY>, MutableArgs::DESTINATION>::transformTable;
extern template class ApplyGroupTimeLabelBase<CONTAINER_ARRAY>;

} // namespace MERVO::Tessera::Func
