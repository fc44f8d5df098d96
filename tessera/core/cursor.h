#pragma once

#include <cstdint>
#include <memory>

#include "tessera/core/bit_position.h"
#include "tessera/core/linked_list.h"
#include "tessera/core/value_types.h"
#include "tessera/platform/logger.h"

namespace MERVO::Tessera {

/**
 * A cursor on a range of a column: all that a functor sees of it.
 *
 * It does not own the column and must not outlive it.
 */
class TESSERA_API IteratorInterface {
public:
    /// The column's attribute, its length replaced by the element count of the range at the time of making.
    virtual SeriesAttr GetAttr() const = 0;
    /// Elements from the cursor's place to its end, counted anew each time.
    virtual std::uint32_t Length() const = 0;
    virtual bool IsMemoryContiguous() const = 0;
    /// Moves both ends by count elements, forward or backward, without a bounds check.
    virtual void Shift(long long count) = 0;
    virtual ~IteratorInterface() = default;
};

using Cursor = std::unique_ptr<IteratorInterface>;

template <ContainerID CID, typename T>
struct PositionIn {
    using Type = T*;
};

template <>
struct PositionIn<CONTAINER_ARRAY, bool> {
    using Type = BitPosition;
};

template <typename T>
struct PositionIn<CONTAINER_LIST, T> {
    using Type = ListPosition<T>;
};

/// The cursor of one container and value type: [mHead, mTail). Kernels take the places straight from here.
template <ContainerID CID, typename T>
class Iterator final : public IteratorInterface {
public:
    using Position = typename PositionIn<CID, T>::Type;

    Iterator(Position head, Position tail, const SeriesAttr& attr) : mHead(head), mTail(tail), mAttr(attr) {}

    SeriesAttr GetAttr() const override { return mAttr; }
    std::uint32_t Length() const override { return static_cast<std::uint32_t>(mTail - mHead); }
    bool IsMemoryContiguous() const override { return mAttr.containerId == CONTAINER_ARRAY; }
    void Shift(long long count) override
    {
        mHead += static_cast<Distance>(count);
        mTail += static_cast<Distance>(count);
    }
    /// Stands on another range of the same column, as one made for it would.
    void MoveTo(Position head, Position tail)
    {
        mHead = head;
        mTail = tail;
        mAttr.length = Length();
    }

    Position mHead;
    Position mTail;

private:
    using Distance = decltype(mTail - mHead);
    SeriesAttr mAttr;
};

/// The cursor behind the interface; the caller knows container and value type.
template <ContainerID CID, typename T>
Iterator<CID, T>& CursorAs(const Cursor& cursor)
{
    return static_cast<Iterator<CID, T>&>(*cursor);
}

/**
 * Reads the element `index` places behind a cursor's head.
 *
 * On a list the walk is linear, and the index counts as signed: 4294967295 is the element before the head. The caller
 * guarantees a cursor of value type T that is not null.
 * @return the element; a zero value, and an error in the log, where the container is none.
 */
template <typename T>
T GetValueFromIterator(const Cursor& cursor, std::uint32_t index)
{
    const ContainerID container = cursor->GetAttr().containerId;
    switch (container) {
    case CONTAINER_ARRAY: {
        return *(CursorAs<CONTAINER_ARRAY, T>(cursor).mHead + static_cast<std::ptrdiff_t>(index));
    }
    case CONTAINER_LIST: {
        return *(CursorAs<CONTAINER_LIST, T>(cursor).mHead + static_cast<std::int32_t>(index));
    }
    default: {
        LogError("Failed to get value, invalid cid %d", static_cast<int>(container));
        return T{};
    }
    }
}

/**
 * Writes the element `index` places behind a cursor's head, addressed as GetValueFromIterator does.
 *
 * @return false, with an error in the log, for a null cursor or a container that is none.
 */
template <typename T>
bool SetValueToIterator(const Cursor& cursor, const T& value, std::uint32_t index)
{
    if (cursor == nullptr) {
        LogError("Error on set value to Iterator");
        return false;
    }
    const ContainerID container = cursor->GetAttr().containerId;
    switch (container) {
    case CONTAINER_ARRAY: {
        *(CursorAs<CONTAINER_ARRAY, T>(cursor).mHead + static_cast<std::ptrdiff_t>(index)) = value;
        return true;
    }
    case CONTAINER_LIST: {
        *(CursorAs<CONTAINER_LIST, T>(cursor).mHead + static_cast<std::int32_t>(index)) = value;
        return true;
    }
    default: {
        LogError("Failed to set value, invalid cid %d", static_cast<int>(container));
        return false;
    }
    }
}

} // namespace MERVO::Tessera
