#include "tessera/functors/functor_base.h"

namespace MERVO::Tessera::Func {
namespace {

Error KernelOutcome(ErrorCode code, const FunctorBase& functor)
{
    return code == ERROR_NONE ? Error{} : Error{code, "Error on calling functor: " + functor.GetName()};
}

std::uint32_t TypeNumber(const Cursor& cursor) { return static_cast<std::uint32_t>(cursor->GetAttr().typeId); }

std::string TypeName(const Cursor& cursor) { return GetTypeNameById(cursor->GetAttr().typeId); }

/// Guards the tables of kernels against a cursor of no value type; a functor of one entry has no axis.
std::size_t EntryOf(std::uint32_t row, std::uint32_t column, std::size_t entryCount)
{
    const std::size_t entry = std::size_t{row} * ValueTypes::COUNT + column;
    return row < ValueTypes::COUNT && column < ValueTypes::COUNT ? entry : entryCount;
}

} // namespace

Error NullaryBase::Dispatch(const Cursor& cursor, const NullaryEntry* table, std::size_t entryCount) const
{
    if (cursor == nullptr) {
        return {ERROR_BAD_VALUE, "nullptr error in binary functor" + GetName()};
    }
    if (!CheckParams(cursor)) {
        LogError("Functor %s check param error, dst [size %zu, type %d]", GetName().c_str(),
            std::size_t{cursor->Length()}, static_cast<int>(cursor->GetAttr().typeId));
        return {ERROR_PARAMETERS_REFUSED, "Check param failed in functor: " + GetName()};
    }
    const std::size_t entry = entryCount == 1 ? 0 : EntryOf(0, TypeNumber(cursor), entryCount);
    return KernelOutcome(entry < entryCount ? table[entry](this, cursor) : ERROR_GENERAL, *this);
}

bool UnaryBase::ReduceGroups(const Cursor&, const RowGroups&, const Cursor&) const { return false; }

bool UnaryBase::ReducesColumns() const { return false; }

bool UnaryBase::ReduceColumns(std::span<const Cursor>, std::span<const Cursor>) const { return false; }

bool UnaryBase::MakeTexts(const Cursor&, std::string*) const { return false; }

Error UnaryBase::Dispatch(
    const Cursor& src, const Cursor& dst, bool check, Axes axes, const UnaryEntry* table, std::size_t entryCount) const
{
    if (dst == nullptr || src == nullptr) {
        return {ERROR_BAD_VALUE, "nullptr error in unary functor" + GetName()};
    }
    if (check) {
        if (!CheckParams(src, dst)) {
            LogError("Functor %s check param error, src [size %zu, type %s], dst [size %zu, type %s]",
                GetName().c_str(), std::size_t{src->Length()}, TypeName(src).c_str(), std::size_t{dst->Length()},
                TypeName(dst).c_str());
            return {ERROR_PARAMETERS_REFUSED, "Check param failed in functor: " + GetName()};
        }
        row = axes.rowBySource ? TypeNumber(src) : 0;
        column = axes.columnByDestination ? TypeNumber(dst) : axes.columnBySource ? TypeNumber(src) : 0;
    }
    const std::size_t entry = EntryOf(row, column, entryCount);
    return KernelOutcome(entry < entryCount ? table[entry](this, src, dst) : ERROR_GENERAL, *this);
}

Error BinaryBase::Dispatch(const Cursor& lhs, const Cursor& rhs, const Cursor& dst, MutableArgs selector,
    const BinaryEntry* table, std::size_t entryCount) const
{
    if (dst == nullptr || rhs == nullptr || lhs == nullptr) {
        return {ERROR_BAD_VALUE, "nullptr error in binary functor" + GetName()};
    }
    if (!CheckParams(lhs, rhs, dst)) {
        LogError(
            "Functor %s check param error, lhs [size %zu, type %s], rhs [size %zu, type %s], dst [size %zu, type %s]",
            GetName().c_str(), std::size_t{lhs->Length()}, TypeName(lhs).c_str(), std::size_t{rhs->Length()},
            TypeName(rhs).c_str(), std::size_t{dst->Length()}, TypeName(dst).c_str());
        return {ERROR_PARAMETERS_REFUSED, "Check param failed in binary functor" + GetName()};
    }
    const Cursor& selecting = selector == MutableArgs::SOURCE ? lhs : selector == MutableArgs::SECOND ? rhs : dst;
    const std::size_t entry = entryCount == 1 ? 0 : EntryOf(0, TypeNumber(selecting), entryCount);
    return KernelOutcome(entry < entryCount ? table[entry](this, lhs, rhs, dst) : ERROR_GENERAL, *this);
}

} // namespace MERVO::Tessera::Func
