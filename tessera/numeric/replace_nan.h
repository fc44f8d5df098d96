#pragma once

#include <string>
#include <string_view>

#include "tessera/functors/functor.h"

namespace MERVO::Tessera::Func {

/// All of ReplaceNan but the form in which it takes its argument, so that the forms share their code.
template <ContainerID CID>
class TESSERA_API ReplaceNanBase : public Unary<ReplaceNanBase<CID>, MutableArgs::DESTINATION> {
public:
    explicit ReplaceNanBase(std::string_view replaceNum) : replacement(replaceNum) {}

    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& src) const override;
    bool CheckParams(const Cursor& src, const Cursor& dst) const override;
    template <typename T>
    ErrorCode OnExecuteSIMD(const Cursor& src, const Cursor& dst) const;
    template <typename T>
    ErrorCode OnExecute(const Cursor& src, const Cursor& dst) const;

private:
    std::string replacement;
};

/**
 * Fills what is missing in a column with one value, which is given as a text whatever the column's type is: NaN in a
 * float or double column becomes what the text says, all else is copied.
 *
 * The text is parsed as by strtod (in double, narrowed for float), for integers as by strtoll and strtoull, in the C
 * locale: what follows a number is ignored, a text without a number is 0, an empty one NaN or 0. On a DateTime column
 * it must be a time as DateTime::StringToTime takes it, though nothing is replaced there; on columns of bools, strings
 * and nested tables it is not looked at.
 *
 * Code 21: the destination has another length. Code 1: it has another type; or the text is beyond the range of its
 * parser, which the log tells. Code 2: no time.
 * @tparam TEXT how the text is handed in: std::string by value or reference, std::string_view, or const char*. The
 *         functor keeps a copy.
 */
template <ContainerID CID, typename TEXT>
class ReplaceNan final : public ReplaceNanBase<CID> {
public:
    explicit ReplaceNan(TEXT replaceNum) : ReplaceNanBase<CID>(replaceNum) {}
};

extern template const UnaryTable<1> Unary<ReplaceNanBase<CONTAINER_ARRAY>, MutableArgs::DESTINATION>::transformTable;
extern template class ReplaceNanBase<CONTAINER_ARRAY>;

} // namespace MERVO::Tessera::Func
