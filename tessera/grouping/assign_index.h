#pragma once

#include <type_traits>
#include <vector>

#include "tessera/functors/functor.h"

namespace MERVO::Tessera::Func {

/// All of AssignIndex but the form in which it takes its list, so that the forms share their code.
template <ContainerID CID>
class TESSERA_API AssignIndexBase : public Unary<AssignIndexBase<CID>, MutableArgs::DESTINATION> {
public:
    static constexpr bool kValueTypesAlterKernel = false;

    explicit AssignIndexBase(const std::vector<std::uint32_t>& sourceRows) : rows(sourceRows) {}

    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& src) const override;
    bool CheckParams(const Cursor& src, const Cursor& dst) const override;
    template <typename T>
    ErrorCode OnExecute(const Cursor& src, const Cursor& dst) const;

private:
    const std::vector<std::uint32_t>& rows;
};

/**
 * Takes elements by a list of rows in which some may be missing: element k of the destination is the source's at
 * rows[k], and where that is NO_ROW the value of missing_cell.h.
 *
 * Working set: copies of columns in lists. Code 21: a row beyond the source, other value types, or a destination that
 * is not as long as the list; 3: no memory. The list outlives the functor.
 * @tparam INDEX how the list is handed in, const std::vector<std::uint32_t>&.
 */
template <ContainerID CID, typename INDEX>
class AssignIndex final : public AssignIndexBase<CID> {
    static_assert(std::is_reference_v<INDEX>);

public:
    explicit AssignIndex(INDEX sourceRows) : AssignIndexBase<CID>(sourceRows) {}
};

extern template const UnaryTable<1> Unary<AssignIndexBase<CONTAINER_ARRAY>, MutableArgs::DESTINATION>::transformTable;
extern template class AssignIndexBase<CONTAINER_ARRAY>;

} // namespace MERVO::Tessera::Func
