#pragma once

#include "tessera/functors/functor.h"

namespace MERVO::Tessera::Func {

/// All of InsertRow but the form in which it takes its argument, so that the forms share their code.
template <ContainerID CID>
class TESSERA_API InsertRowBase : public Binary<InsertRowBase<CID>, MutableArgs::DESTINATION> {
public:
    explicit InsertRowBase(std::uint32_t row) : index(row) {}

    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& lhs, const Cursor& rhs) const override;
    bool CheckParams(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const override;
    template <typename T>
    ErrorCode OnExecuteSIMD(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const;
    template <typename T>
    ErrorCode OnExecute(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const;

private:
    std::uint32_t index;
};

/**
 * Splices one column into another: InsertRow(rows, base) gives the first `index` elements of base, all of rows, and the
 * rest of base. Nested tables are copied deeply.
 *
 * Code 21: the value types of the three columns differ, or the destination is not as long as both others together. Code
 * 5, with a message in the log: index is beyond the length of base.
 * @tparam INDEX how the index is handed in: uint32 by value, reference or const reference.
 */
template <ContainerID CID, typename INDEX>
class InsertRow final : public InsertRowBase<CID> {
public:
    explicit InsertRow(INDEX row) : InsertRowBase<CID>(row) {}
};

extern template const BinaryTable<1> Binary<InsertRowBase<CONTAINER_ARRAY>, MutableArgs::DESTINATION>::transformTable;
extern template class InsertRowBase<CONTAINER_ARRAY>;

} // namespace MERVO::Tessera::Func
