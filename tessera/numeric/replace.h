#pragma once

#include <type_traits>

#include "tessera/functors/functor.h"

namespace MERVO::Tessera::Func {

/// A value to look for or to put in its place: a bool, a number or a string, wherever it lies.
struct ReplaceArgument {
    const void* cell = nullptr;
    MERVO_TESSERA_TYPEID type = TESSERA_INVALID;
};

/// All of Replace but the types of its arguments, so that all of them share their code.
template <ContainerID CID>
class TESSERA_API ReplaceBase : public Unary<ReplaceBase<CID>, MutableArgs::DESTINATION> {
public:
    static constexpr bool kValueTypesAlterKernel = false;

    ReplaceBase() = default;
    ReplaceBase(const ReplaceBase&) = delete; // the arguments may lie within the object
    ReplaceBase& operator=(const ReplaceBase&) = delete;

    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& src) const override;
    bool CheckParams(const Cursor& src, const Cursor& dst) const override;
    template <typename T>
    ErrorCode OnExecute(const Cursor& src, const Cursor& dst) const;

protected:
    void SetArguments(ReplaceArgument sought, ReplaceArgument substitute)
    {
        oldArgument = sought;
        newArgument = substitute;
    }

private:
    ReplaceArgument oldArgument;
    ReplaceArgument newArgument;
};

/**
 * Puts a new value in place of every element that has an old one; all others are copied.
 *
 * Both values are converted to the column's type first, as a cast of a cell would be; but a text is parsed as a number
 * for bools too, of which 0 is false. In a column of doubles an element counts as old if it differs by less than 2^-52,
 * in one of floats by less than 2^-23, so infinities and NaN stay; elsewhere it must be equal, DateTime by its stamp.
 *
 * Code 21: lengths or value types differ. Code 5, with a message in the log: the old value is NaN, in a column of
 * floats or doubles. Code 1, with a message: a text out of the column's range, or a value that is no time for a column
 * of times. Code 1: nested tables. Then no element is written.
 * @tparam OLD how the old value is handed in: a bool, a number or a string, by value or reference. What is handed in by
 *         reference is read when the functor runs.
 */
template <ContainerID CID, typename OLD, typename NEW>
class Replace final : public ReplaceBase<CID> {
public:
    Replace(OLD sought, NEW substitute) : oldValue(static_cast<OLD&&>(sought)), newValue(static_cast<NEW&&>(substitute))
    {
        this->SetArguments(ArgumentOf(oldValue), ArgumentOf(newValue));
    }

private:
    template <typename T>
    static ReplaceArgument ArgumentOf(const T& value)
    {
        static_assert(Arithmetic<T> || std::is_same_v<T, std::string>);
        return {&value, TYPE_ID_OF<T>};
    }
    static ReplaceArgument ArgumentOf(const ReplaceArgument& argument) { return argument; }

    OLD oldValue;
    NEW newValue;
};

extern template const UnaryTable<1> Unary<ReplaceBase<CONTAINER_ARRAY>, MutableArgs::DESTINATION>::transformTable;
extern template class ReplaceBase<CONTAINER_ARRAY>;

} // namespace MERVO::Tessera::Func
