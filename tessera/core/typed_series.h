#pragma once

#include <algorithm>
#include <new>
#include <string>
#include <type_traits>
#include <utility>

#include "tessera/core/dynamic_array.h"
#include "tessera/core/element_text.h"
#include "tessera/core/linked_list.h"
#include "tessera/core/memory_room.h"
#include "tessera/core/nested_release.h"
#include "tessera/core/series.h"

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
class Series final : public BaseSeries {
public:
    explicit Series(const SeriesAttr& seriesAttr) : storage(seriesAttr.length), attr(seriesAttr) {}
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
    MERVO_TESSERA_TYPEID GetTypeId() const override { return attr.typeId; }
    void Print(unsigned int begin, unsigned int end) const override
    {
        const unsigned int last = StorageOf<CID, T>::HasBlock(storage) ? std::min(end, Size()) : begin;
        if (begin < last) {
            auto position = PlaceOf(begin);
            for (unsigned int i = begin; i < last; ++i, ++position) {
                PrintText(ElementText(static_cast<const T&>(*position)) + ", ");
            }
        }
        EndPrintedLine();
    }
    std::string GetName() const override { return name; }
    void SetName(const std::string& newName) override { name = newName; }
    void SetName(std::string&& newName) override { name = std::move(newName); }
    Cursor GetIterator() override { return GetIterator(0, Size()); }
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
    SeriesAttr GetAttr() const override { return attr; }

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
    SeriesAttr attr;
    std::string name;
};

} // namespace MERVO::Tessera
