#pragma once

#include "tessera/functors/functor.h"

namespace MERVO::Tessera::Func {

/// What IsNan and IsNanInt have in common; MARK is the type of their marks.
template <ContainerID CID, typename MARK>
class TESSERA_API NanMarker : public Unary<NanMarker<CID, MARK>, MutableArgs::SOURCE> {
public:
    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& src) const override;
    bool CheckParams(const Cursor& src, const Cursor& dst) const override;
    template <typename T>
    ErrorCode OnExecute(const Cursor& src, const Cursor& dst) const;
};

/**
 * Tells of each element of a column whether it is missing, as a column of bools. Missing is a float or double that is
 * NaN; no element of another type ever is, be it an empty text.
 *
 * It ends where the shorter of the two ranges does. Code 21: the destination is not of bools. Code 1, with a message in
 * the log: nested tables.
 */
template <ContainerID CID>
class IsNan final : public NanMarker<CID, bool> {
};

/// The same with int32 marks, 1 for missing and 0 for present, which can be added. Code 21: the destination is not
/// of int32.
template <ContainerID CID>
class IsNanInt final : public NanMarker<CID, std::int32_t> {
};

extern template const UnaryTable<1> Unary<NanMarker<CONTAINER_ARRAY, bool>, MutableArgs::SOURCE>::transformTable;
extern template class NanMarker<CONTAINER_ARRAY, bool>;
extern template const UnaryTable<1>
    Unary<NanMarker<CONTAINER_ARRAY, std::int32_t>, MutableArgs::SOURCE>::transformTable;
extern template class NanMarker<CONTAINER_ARRAY, std::int32_t>;

} // namespace MERVO::Tessera::Func
