#pragma once

#include "tessera/functors/functor.h"

namespace MERVO::Tessera::Func {

/**
 * Takes the elements of the second operand by the positions that the first one, a column of uint32, holds: element i of
 * the result is the source's at position i. Repeats and any order are allowed; the result is as long as the positions,
 * in their container.
 *
 * Working set: copies of operands in lists. Code 21: positions of another value type, a result of another length or
 * value type, no positions, or an empty source; 4: a position beyond the source; 3: no memory.
 */
template <ContainerID CID>
class TESSERA_API Reorder final : public Binary<Reorder<CID>, MutableArgs::DESTINATION> {
public:
    static constexpr bool kValueTypesAlterKernel = false;

    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& lhs, const Cursor& rhs) const override;
    bool CheckParams(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const override;
    template <typename T>
    ErrorCode OnExecute(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const;
};

extern template const BinaryTable<1> Binary<Reorder<CONTAINER_ARRAY>, MutableArgs::DESTINATION>::transformTable;
extern template class Reorder<CONTAINER_ARRAY>;

} // namespace MERVO::Tessera::Func
