#pragma once

#include <vector>

#include "tessera/functors/functor.h"

namespace MERVO::Tessera::Func {

/// All of FillKey but the form in which it takes its lists, so that the forms share their code.
template <ContainerID CID>
class TESSERA_API FillKeyBase : public Binary<FillKeyBase<CID>, MutableArgs::DESTINATION> {
public:
    static constexpr bool kValueTypesAlterKernel = false;

    FillKeyBase(const std::vector<std::uint32_t>& leftRows, const std::vector<std::uint32_t>& rightRows)
        : left(leftRows), right(rightRows)
    {
    }

    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& lhs, const Cursor& rhs) const override;
    bool CheckParams(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const override;
    template <typename T>
    ErrorCode OnExecute(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const;

private:
    const std::vector<std::uint32_t>& left;
    const std::vector<std::uint32_t>& right;
};

/**
 * Takes elements of two columns by two lists of rows: element k of the destination is the left operand's at row
 * left[k], and where that is NO_ROW the right operand's at row right[k].
 *
 * Working set: copies of columns in lists. Code 21: a row beyond its column or missing on both sides, other value
 * types, or a destination that is not as long as both lists; 3: no memory. The lists outlive the functor.
 * @tparam ARGS how the lists are handed in, twice std::vector<std::uint32_t>&.
 */
template <ContainerID CID, typename... ARGS>
class FillKey final : public FillKeyBase<CID> {
public:
    explicit FillKey(ARGS... lists) : FillKeyBase<CID>(lists...) {}
};

extern template const BinaryTable<1> Binary<FillKeyBase<CONTAINER_ARRAY>, MutableArgs::DESTINATION>::transformTable;
extern template class FillKeyBase<CONTAINER_ARRAY>;

} // namespace MERVO::Tessera::Func
