#pragma once

#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

#include "tessera/functors/functor.h"

namespace MERVO::Tessera::Func {

/// All of GroupTransform but the form in which it takes its list, so that the forms share their code.
template <ContainerID CID>
class TESSERA_API GroupTransformBase : public Unary<GroupTransformBase<CID>, MutableArgs::DESTINATION> {
public:
    explicit GroupTransformBase(const std::vector<std::uint32_t>& groupBegins) : begins(groupBegins) {}

    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& src) const override;
    bool CheckParams(const Cursor& src, const Cursor& dst) const override;
    template <typename T>
    ErrorCode OnExecute(const Cursor& src, const Cursor& dst) const;

private:
    const std::vector<std::uint32_t>& begins;
};

/**
 * Gives each row of a group the group's value: element g of the source goes to the destination's next begins[g + 1] -
 * begins[g] rows, until the source or the list ends.
 *
 * Code 21: the value types differ, there is no group, or the destination is not as long as the last begin says; 3: no
 * memory. The list outlives the functor.
 * @tparam BEGINS how the list is handed in: std::vector<std::uint32_t>& or the same as const. It holds the rows at
 *         which groups begin, in ascending order, and the number of rows behind them.
 */
template <ContainerID CID, typename BEGINS>
class GroupTransform final : public GroupTransformBase<CID> {
    static_assert(std::is_reference_v<BEGINS>);

public:
    explicit GroupTransform(BEGINS groupBegins) : GroupTransformBase<CID>(groupBegins) {}
};

extern template const UnaryTable<1>
    Unary<GroupTransformBase<CONTAINER_ARRAY>, MutableArgs::DESTINATION>::transformTable;
extern template class GroupTransformBase<CONTAINER_ARRAY>;

} // namespace MERVO::Tessera::Func
