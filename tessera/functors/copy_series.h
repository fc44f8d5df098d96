#pragma once

#include "tessera/functors/functor.h"

namespace MERVO::Tessera::Func {

/// Copies elements into an existing column of the same length and value type; nested tables are copied deeply.
template <ContainerID CID>
class TESSERA_API CopySeries final : public Unary<CopySeries<CID>, MutableArgs::DESTINATION> {
public:
    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& src) const override;
    bool CheckParams(const Cursor& src, const Cursor& dst) const override;
    template <typename T>
    ErrorCode OnExecuteSIMD(const Cursor& src, const Cursor& dst) const;
    template <typename T>
    ErrorCode OnExecute(const Cursor& src, const Cursor& dst) const;
};

extern template const UnaryTable<1> Unary<CopySeries<CONTAINER_ARRAY>, MutableArgs::DESTINATION>::transformTable;
extern template class CopySeries<CONTAINER_ARRAY>;

} // namespace MERVO::Tessera::Func
