#pragma once

#include <cstddef>
#include <cstdint>

#include "tessera/core/cursor.h"

namespace MERVO::Tessera::Func {

/// Calls body(head, tail) with the cursor's two places, whatever the storage: pointers, bit positions or list
/// positions.
template <typename T, typename Body>
decltype(auto) WithPlaces(const Cursor& cursor, Body&& body)
{
    if (cursor->IsMemoryContiguous()) {
        auto& walk = CursorAs<CONTAINER_ARRAY, T>(cursor);
        return body(walk.mHead, walk.mTail);
    }
    auto& walk = CursorAs<CONTAINER_LIST, T>(cursor);
    return body(walk.mHead, walk.mTail);
}

/// Calls visit(element) for each element of the cursor's range, front to back.
template <typename T, typename Visit>
void ForEachElement(const Cursor& cursor, Visit&& visit)
{
    WithPlaces<T>(cursor, [&visit](auto head, auto tail) {
        for (; head != tail; ++head) {
            visit(*head);
        }
    });
}

/// A place in either container, for loops that pair two cursors: one loop serves all four pairs of containers.
template <typename T>
class AnyPlace {
public:
    /// The head of a cursor's range.
    explicit AnyPlace(const Cursor& cursor) : isList(!cursor->IsMemoryContiguous())
    {
        if (isList) {
            link = CursorAs<CONTAINER_LIST, T>(cursor).mHead;
        } else {
            element = CursorAs<CONTAINER_ARRAY, T>(cursor).mHead;
        }
    }
    decltype(auto) operator*() const
    {
        if constexpr (std::is_same_v<T, bool>) {
            return BitOrNode{*this};
        } else {
            return isList ? *link : *element;
        }
    }
    AnyPlace& operator++()
    {
        if (isList) {
            ++link;
        } else {
            ++element;
        }
        return *this;
    }
    /// Moves by count elements, forward or backward; on a list step by step.
    AnyPlace& operator+=(std::int64_t count)
    {
        if (isList) {
            link += count;
        } else {
            element += static_cast<std::ptrdiff_t>(count);
        }
        return *this;
    }

private:
    /// A bit and a bool in a node have no common reference.
    struct BitOrNode {
        const AnyPlace& place;
        operator bool() const { return place.isList ? *place.link : static_cast<bool>(*place.element); }
        const BitOrNode& operator=(bool value) const
        {
            if (place.isList) {
                *place.link = value;
            } else {
                *place.element = value;
            }
            return *this;
        }
    };

    bool isList;
    typename Iterator<CONTAINER_LIST, T>::Position link;
    typename Iterator<CONTAINER_ARRAY, T>::Position element{};
};

} // namespace MERVO::Tessera::Func
