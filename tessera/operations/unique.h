#pragma once

#include <vector>

#include "tessera/functors/functor.h"

namespace MERVO::Tessera::Func {

/**
 * Tells where each distinct element of a column comes first: its positions are put into the list, in their order, in
 * place of what it held.
 *
 * All NaN count as one value, and so do 0.0 and -0.0; strings are compared by bytes, stamps by time. Working set: some
 * 32 bytes per distinct number or 56 per distinct string; or 4 bytes per element where their range is small; a copy of
 * a list. Code 1: nested tables, or no element; 3: no memory.
 * @tparam INDEX how the list is handed in: std::vector<std::uint32_t>&.
 */
template <ContainerID CID, typename INDEX>
class TESSERA_API Unique final : public Nullary<Unique<CID, INDEX>, MutableArgs::SOURCE> {
public:
    static constexpr bool kValueTypesAlterKernel = false;

    explicit Unique(INDEX positions) : index(positions) {}

    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& cursor) const override;
    bool CheckParams(const Cursor& cursor) const override;
    template <typename T>
    ErrorCode OnExecute(const Cursor& cursor) const;

private:
    INDEX index;
};

extern template const NullaryTable<1>
    Nullary<Unique<CONTAINER_ARRAY, std::vector<std::uint32_t>&>, MutableArgs::SOURCE>::transformTable;
extern template class Unique<CONTAINER_ARRAY, std::vector<std::uint32_t>&>;

} // namespace MERVO::Tessera::Func
