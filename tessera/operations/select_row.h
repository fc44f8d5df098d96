#pragma once

#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

#include "tessera/functors/functor.h"

namespace MERVO::Tessera::Func {

/// All of SelectRow but the form in which it takes its list, so that the forms share their code.
template <ContainerID CID>
class TESSERA_API SelectRowBase : public Unary<SelectRowBase<CID>, MutableArgs::DESTINATION> {
public:
    static constexpr bool kValueTypesAlterKernel = false;

    explicit SelectRowBase(const std::vector<std::uint32_t>& positions) : index(positions) {}

    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& src) const override;
    bool CheckParams(const Cursor& src, const Cursor& dst) const override;
    template <typename T>
    ErrorCode OnExecuteSIMD(const Cursor& src, const Cursor& dst) const;
    template <typename T>
    ErrorCode OnExecute(const Cursor& src, const Cursor& dst) const;

private:
    const std::vector<std::uint32_t>& index;
};

/**
 * Takes elements by a list of positions: element i of the destination is the source's at index[i]. Repeats and any
 * order are allowed; an empty list takes nothing.
 *
 * Code 21: a position is not below the source's length, the value types differ, or the destination is not as long as
 * the list. The list outlives the functor.
 * @tparam INDEX how the list is handed in: std::vector<std::uint32_t>& or the same as const.
 */
template <ContainerID CID, typename INDEX>
class SelectRow final : public SelectRowBase<CID> {
    static_assert(std::is_reference_v<INDEX>);

public:
    explicit SelectRow(INDEX positions) : SelectRowBase<CID>(positions) {}
};

extern template const UnaryTable<1> Unary<SelectRowBase<CONTAINER_ARRAY>, MutableArgs::DESTINATION>::transformTable;
extern template class SelectRowBase<CONTAINER_ARRAY>;

} // namespace MERVO::Tessera::Func
