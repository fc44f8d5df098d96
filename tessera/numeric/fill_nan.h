#pragma once

#include <string_view>

#include "tessera/functors/functor.h"

namespace MERVO::Tessera::Func {

/// All of FillNan but the form in which it takes its argument, so that the forms share their code.
template <ContainerID CID>
class TESSERA_API FillNanBase : public Unary<FillNanBase<CID>, MutableArgs::SOURCE> {
public:
    explicit FillNanBase(std::string_view fillType)
        : isForward(fillType == "ffill"), isKnown(isForward || fillType == "bfill")
    {
    }

    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& src) const override;
    bool CheckParams(const Cursor& src, const Cursor& dst) const override;
    template <typename T>
    ErrorCode OnExecuteSIMD(const Cursor& src, const Cursor& dst) const;
    template <typename T>
    ErrorCode OnExecute(const Cursor& src, const Cursor& dst) const;

private:
    bool isForward;
    bool isKnown;
};

/**
 * Fills what is missing in a column from its neighbours: each NaN becomes the last present element before it ("ffill")
 * or the next one behind it ("bfill"). NaN at the begin, or the end, has none there and stays.
 *
 * Integers, strings and DateTime are copied. Code 21: another fill type, another type or length of the destination, or
 * a column without elements. Code 1, with a message in the log: bools and nested tables.
 * @tparam TEXT how the fill type is handed in: std::string by value or reference, std::string_view, or const char*. It
 *         is read when the functor is made.
 */
template <ContainerID CID, typename TEXT>
class FillNan final : public FillNanBase<CID> {
public:
    explicit FillNan(TEXT fillType) : FillNanBase<CID>(fillType) {}
};

extern template const UnaryTable<1> Unary<FillNanBase<CONTAINER_ARRAY>, MutableArgs::SOURCE>::transformTable;
extern template class FillNanBase<CONTAINER_ARRAY>;

} // namespace MERVO::Tessera::Func
