#pragma once

#include <algorithm>
#include <new>
#include <type_traits>
#include <utility>

#include "tessera/core/dynamic_array.h"
#include "tessera/core/element_text.h"
#include "tessera/core/linked_list.h"
#include "tessera/core/memory_room.h"
#include "tessera/core/named_series.h"
#include "tessera/core/nested_release.h"

namespace MERVO::Tessera {

template <typename T>
class ListStorage : public LinkedList<T> {
public:
    explicit ListStorage(std::uint32_t length)
    {
        if (!HasRoomFor(length, sizeof(ListNode<T>))) { // node by node, the system would not refuse it
            throw std::bad_alloc();
        }
        for (std::uint32_t i = 0; i < length; ++i) {
            this->Append();
        }
    }
};

/// What a container needs to know of its storage; the one place where the two differ.
template <ContainerID CID, typename T>
struct StorageOf {
    using Type = DynamicArray<T>;
    using Distance = std::uint32_t;
    static std::uint32_t Count(const Type& storage) { return storage.size; }
    static bool HasBlock(const Type& storage) { return storage.data != nullptr; }
};

template <typename T>
struct StorageOf<CONTAINER_LIST, T> {
    using Type = ListStorage<T>;
    using Distance = std::int32_t;
    static std::uint32_t Count(const Type& storage) { return storage.CountNodes(); }
    static bool HasBlock(const Type&) { return true; }
};

/// The column class of one value type and container.
template <typename T, ContainerID CID>
class Series final : public NamedSeries {
public:
    explicit Series(const SeriesAttr& seriesAttr) : NamedSeries(seriesAttr), storage(seriesAttr.length) {}
    Series(const SeriesAttr& seriesAttr, RawCells cells) : NamedSeries(seriesAttr), storage(seriesAttr.length, cells) {}
    Series(const SeriesAttr& seriesAttr, Block<T> cells)
        : NamedSeries(seriesAttr), storage(seriesAttr.length, std::move(cells))
    {
    }
    Series(const Series&) = delete;
    Series& operator=(const Series&) = delete;
    ~Series() override
    {
        if constexpr (HOLDS_TABLES) {
            const bool hasCells = StorageOf<CID, T>::HasBlock(storage);
            release.Begin(storage.begin(), hasCells ? storage.end() : storage.begin());
        }
    }

    std::uint32_t Size() const override { return StorageOf<CID, T>::Count(storage); }
    void Print(unsigned int begin, unsigned int end) const override
    {
        const unsigned int last = StorageOf<CID, T>::HasBlock(storage) ? std::min(end, Size()) : begin;
        if (begin < last) {
            auto position = PlaceOf(begin);
            for (unsigned int i = begin; i < last; ++i, ++position) {
                PrintElement(ElementText(static_cast<const T&>(*position)));
            }
        }
        EndPrintedLine();
    }
    using NamedSeries::GetIterator;
    Cursor GetIterator(unsigned int begin, unsigned int end) override
    {
        if (attr.length != 0 && !StorageOf<CID, T>::HasBlock(storage)) {
            return nullptr;
        }
        const auto head = PlaceOf(begin);
        const auto tail = PlaceOf(end);
        const auto length = static_cast<std::uint32_t>(tail - head);
        return Cursor(new (std::nothrow) Iterator<CID, T>(head, tail, WithLength(attr, length)));
    }

    /// The first cell of an array, null without a block.
    T* FirstCell() { return storage.data; }
    /// Takes it that the cells have been destroyed, all of them; nothing but that may follow for the column.
    void Forget() { storage.Forget(); }

private:
    using Storage = typename StorageOf<CID, T>::Type;
    struct Nothing {};
    static constexpr bool HOLDS_TABLES = std::is_same_v<T, DataFrame>;

    auto PlaceOf(unsigned int row) const
    {
        return storage.begin() + static_cast<typename StorageOf<CID, T>::Distance>(row);
    }

    [[no_unique_address]] std::conditional_t<HOLDS_TABLES, NestedRelease, Nothing> release; // ends behind the storage
    mutable Storage storage; // a cursor writes, and is all that leaves a column
};

} // namespace MERVO::Tessera
