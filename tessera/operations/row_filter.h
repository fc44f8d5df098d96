#pragma once

#include <cstdint>
#include <string>

#include "tessera/functors/functor.h"

namespace MERVO::Tessera::Func {

/// What SelectRowByBool and DropRowByBool have in common; `wanted` is the mark of a row that stays.
namespace RowFilter {

/// The source's attribute without the rows that go, whose number it tells; no attribute for a filter that isn't bool.
SeriesAttr GetDstAttr(
    const Cursor& filter, const Cursor& src, bool wanted, const char* refusal, std::uint32_t& goingRows);
bool CheckParams(const Cursor& filter, const Cursor& src, const Cursor& dst, std::uint32_t goingRows);
ErrorCode Execute(const Cursor& filter, const Cursor& src, bool wanted, const Cursor& dst);

} // namespace RowFilter

/**
 * Keeps the elements whose bit in a filter is set, in their order.
 *
 * The sources are the filter, a column of bools, and the column to select from. GetDstAttr counts the rows that go; it
 * is asked before each run, as the apply paths do. The walk ends where the filter, the source or the destination does.
 * Code 21: the lengths don't fit that count, or the value types differ; 1: the filter is not bool.
 */
template <ContainerID CID>
class TESSERA_API SelectRowByBool final : public Binary<SelectRowByBool<CID>, MutableArgs::SECOND> {
public:
    static constexpr bool kValueTypesAlterKernel = false;

    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& filter, const Cursor& src) const override;
    bool CheckParams(const Cursor& filter, const Cursor& src, const Cursor& dst) const override;
    template <typename T>
    ErrorCode OnExecute(const Cursor& filter, const Cursor& src, const Cursor& dst) const;

private:
    mutable std::uint32_t goingRows = 0;
};

/// As SelectRowByBool, for the elements whose bit is clear.
template <ContainerID CID>
class TESSERA_API DropRowByBool final : public Binary<DropRowByBool<CID>, MutableArgs::SECOND> {
public:
    static constexpr bool kValueTypesAlterKernel = false;

    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& filter, const Cursor& src) const override;
    bool CheckParams(const Cursor& filter, const Cursor& src, const Cursor& dst) const override;
    template <typename T>
    ErrorCode OnExecute(const Cursor& filter, const Cursor& src, const Cursor& dst) const;

private:
    mutable std::uint32_t goingRows = 0;
};

extern template const BinaryTable<1> Binary<SelectRowByBool<CONTAINER_ARRAY>, MutableArgs::SECOND>::transformTable;
extern template class SelectRowByBool<CONTAINER_ARRAY>;
extern template const BinaryTable<1> Binary<DropRowByBool<CONTAINER_ARRAY>, MutableArgs::SECOND>::transformTable;
extern template class DropRowByBool<CONTAINER_ARRAY>;

} // namespace MERVO::Tessera::Func
