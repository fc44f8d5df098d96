#pragma once

#include <type_traits>

#include "tessera/functors/functor.h"

namespace MERVO::Tessera::Func {

/// All of ToArray but the forms in which it takes its arguments, so that the forms share their code.
template <ContainerID CID>
class TESSERA_API ToArrayBase : public Nullary<ToArrayBase<CID>, MutableArgs::DESTINATION> {
public:
    /// `wanted` is the element type of the room, or TESSERA_INVALID where only the caller knows it.
    ToArrayBase(void* target, MERVO_TESSERA_TYPEID wanted, std::uint32_t size)
        : room(target), roomType(wanted), roomSize(size)
    {
    }

    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& cursor) const override;
    bool CheckParams(const Cursor& cursor) const override;
    template <typename T>
    ErrorCode OnExecuteSIMD(const Cursor& cursor) const;
    template <typename T>
    ErrorCode OnExecute(const Cursor& cursor) const;

private:
    void* room;
    MERVO_TESSERA_TYPEID roomType;
    std::uint32_t roomSize;
};

/**
 * Copies a column to a caller's room of `size` elements, from the first row on, until either ends.
 *
 * A bool takes a byte. Strings, stamps and nested tables are assigned to objects that the caller has constructed, a
 * nested table deeply. Code 21: a null room, or one of another element type than the column's.
 * @tparam TARGET void*, which trusts the caller that the room is of the column's type, or a pointer to that type.
 * @tparam SIZE   how the size is handed in: uint32 by value, reference or const reference.
 */
template <ContainerID CID, typename TARGET, typename SIZE>
class ToArray final : public ToArrayBase<CID> {
public:
    ToArray(TARGET target, SIZE size) : ToArrayBase<CID>(target, TYPE_ID_OF<std::remove_pointer_t<TARGET>>, size) {}
};

extern template const NullaryTable<1> Nullary<ToArrayBase<CONTAINER_ARRAY>, MutableArgs::DESTINATION>::transformTable;
extern template class ToArrayBase<CONTAINER_ARRAY>;

} // namespace MERVO::Tessera::Func
