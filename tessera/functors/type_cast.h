#pragma once

#include <string>

#include "tessera/functors/functor.h"

namespace MERVO::Tessera::Func {

/// All of TypeCast but the form in which it takes its target, so that the forms share their code.
template <ContainerID CID>
class TESSERA_API TypeCastBase : public Unary<TypeCastBase<CID>, MutableArgs::SOURCE, MutableArgs::DESTINATION> {
public:
    /// Both types pick the kernel, but at run time: most of the pairs share theirs with others.
    static constexpr bool kValueTypesAlterKernel = false;

    explicit TypeCastBase(MERVO_TESSERA_TYPEID typeId) : target(typeId) {}

    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& src) const override;
    bool CheckParams(const Cursor& src, const Cursor& dst) const override;
    bool MakeTexts(const Cursor& src, std::string* texts) const override;
    template <typename T, typename>
    ErrorCode OnExecute(const Cursor& src, const Cursor& dst) const;

private:
    MERVO_TESSERA_TYPEID target;
};

/**
 * Casts a column to another value type, cell by cell, in either container.
 *
 * Numbers convert as ConvertNumber does; as bool, those are false whose magnitude is at most the type's epsilon, and
 * NaN is true. To text: integers in decimal, float and double as by "%.5e", true as "1" and false as an empty text.
 * From text: as by strtoll, strtoull and strtod in the C locale, an empty text as 0 or NaN; as bool, an empty text is
 * false. DateTime counts as its stamp. Any cell can become a nested table of one cell.
 *
 * It ends where the shorter of the two ranges does. Code 21: the destination is not of the target type. Code 1, with a
 * message in the log: a text beyond the parser's range, a text of blanks as DateTime, and any cell of bool to DateTime
 * or of nested tables to anything else; cells before the failing one are written.
 * @tparam TYPE_ARG how the target is handed in: by value, reference or const reference.
 */
template <ContainerID CID, typename TYPE_ARG>
class TypeCast final : public TypeCastBase<CID> {
public:
    explicit TypeCast(TYPE_ARG typeId) : TypeCastBase<CID>(typeId) {}
};

extern template const UnaryTable<2>
    Unary<TypeCastBase<CONTAINER_ARRAY>, MutableArgs::SOURCE, MutableArgs::DESTINATION>::transformTable;
extern template class TypeCastBase<CONTAINER_ARRAY>;

} // namespace MERVO::Tessera::Func
