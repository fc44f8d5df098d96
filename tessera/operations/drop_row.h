#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <type_traits>

#include "tessera/functors/functor.h"

namespace MERVO::Tessera {

class DroppedRows;

namespace Func {

/// All of DropRow but the form in which it takes the rows, so that the forms share their code.
template <ContainerID CID>
class TESSERA_API DropRowBase : public Unary<DropRowBase<CID>, MutableArgs::DESTINATION> {
public:
    static constexpr bool kValueTypesAlterKernel = false;

    explicit DropRowBase(const std::set<std::uint32_t>& rows) : listed(&rows) {}
    explicit DropRowBase(const DroppedRows& rows) : marked(&rows) {}

    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& src) const override;
    bool CheckParams(const Cursor& src, const Cursor& dst) const override;
    template <typename T>
    ErrorCode OnExecute(const Cursor& src, const Cursor& dst) const;

private:
    std::uint32_t Count() const;

    const std::set<std::uint32_t>* listed = nullptr;
    const DroppedRows* marked = nullptr;
};

/**
 * Leaves out the elements at given positions.
 *
 * Code 21: the value types differ, or the destination is not as long as what is left; 1: a position is not below the
 * source's length; 3: no memory for a bit per element; 5: no cursor.
 * The rows outlive the functor.
 * @tparam ROWS how the rows are handed in: std::set<std::uint32_t>&, the same as const, or const DroppedRows&.
 */
template <ContainerID CID, typename ROWS>
class DropRow final : public DropRowBase<CID> {
    static_assert(std::is_reference_v<ROWS>);

public:
    explicit DropRow(ROWS rows) : DropRowBase<CID>(rows) {}
};

extern template const UnaryTable<1> Unary<DropRowBase<CONTAINER_ARRAY>, MutableArgs::DESTINATION>::transformTable;
extern template class DropRowBase<CONTAINER_ARRAY>;

} // namespace Func
} // namespace MERVO::Tessera
