#pragma once

#include <functional>

#include "tessera/functors/functor.h"

namespace MERVO::Tessera::Func {

/// A step of a fold over bools: takes a value into the accumulator. Codes are added up, not stopped at.
using BoolStep = std::function<ErrorCode(bool& accumulator, const bool& value)>;

/**
 * Folds a bool column into another: the accumulator starts as the destination's first bit, takes each source bit, and
 * is written behind each step to the destination's bit of the same place.
 */
template <ContainerID CID, typename CALLABLE = BoolStep&>
class TESSERA_API ApplyFunc final : public Unary<ApplyFunc<CID, CALLABLE>, MutableArgs::SOURCE> {
public:
    /// The callable must outlive the functor.
    explicit ApplyFunc(BoolStep& foldStep) : step(foldStep) {}

    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& src) const override;
    bool CheckParams(const Cursor& src, const Cursor& dst) const override;
    template <typename T>
    ErrorCode OnExecute(const Cursor& src, const Cursor& dst) const;

private:
    BoolStep& step;
};

extern template const UnaryTable<1> Unary<ApplyFunc<CONTAINER_ARRAY, BoolStep&>, MutableArgs::SOURCE>::transformTable;
extern template class ApplyFunc<CONTAINER_ARRAY, BoolStep&>;

} // namespace MERVO::Tessera::Func
