#pragma once

#include "tessera/functors/functor.h"

namespace MERVO::Tessera::Func {

/**
 * Tells of each element of a column whether it is among those of another one: IsIn(source, compare) gives a bool column
 * of the source's length.
 *
 * Both columns have one value type; they need not be of one length. 0.0 and -0.0 are the same, and so are all NaN.
 * Strings are compared by their bytes, DateTime by its stamp. Working set: a hash table of the distinct elements of
 * compare with 18 to 36 bytes for each, 8 more in columns of 64 bits, and 32 more of strings. Of fewer than 4096 of
 * them it is up to 80 KiB more.
 *
 * Code 21, with a message in the log: the value types differ, compare has no elements, or the destination is no bool
 * column of the source's length. Code 1, with a message: nested tables. Throws std::bad_alloc when memory is short.
 */
template <ContainerID CID>
class TESSERA_API IsIn final : public Binary<IsIn<CID>, MutableArgs::SOURCE> {
public:
    static constexpr bool kValueTypesAlterKernel = false;

    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& lhs, const Cursor& rhs) const override;
    bool CheckParams(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const override;
    template <typename T>
    ErrorCode OnExecute(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const;
};

extern template const BinaryTable<1> Binary<IsIn<CONTAINER_ARRAY>, MutableArgs::SOURCE>::transformTable;
extern template class IsIn<CONTAINER_ARRAY>;

} // namespace MERVO::Tessera::Func
