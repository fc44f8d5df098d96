#include "tessera/numeric/is_in.h"

#include <algorithm>
#include <array>
#include <bit>
#include <limits>
#include <string>

#include "tessera/core/block_vector.h"
#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"
#include "tessera/core/key_filter.h"
#include "tessera/core/key_hash.h"
#include "tessera/core/key_numbers.h"
#include "tessera/core/text_key.h"
#include "tessera/functors/cell_blocks.h"

namespace MERVO::Tessera::Func {
namespace {

// ---- Cells as keys, which are equal where the cells are

using Text = const std::string*;

template <typename T>
[[gnu::always_inline]] inline auto KeyOf(T cell)
{
    if constexpr (std::is_floating_point_v<T>) {
        using Key = std::conditional_t<sizeof(T) == sizeof(std::uint32_t), std::uint32_t, std::uint64_t>;
        const T settled = cell == cell ? cell + T{0} : std::numeric_limits<T>::quiet_NaN(); // -0.0 + 0.0 is 0.0
        return std::bit_cast<Key>(settled);
    } else if constexpr (std::is_same_v<T, Text>) {
        return TextKey(*cell);
    } else if constexpr (sizeof(T) > sizeof(std::uint32_t)) {
        return cell;
    } else {
        return std::uint32_t{cell};
    }
}

// ---- Sets of keys

template <typename Key>
class KeySet {
public:
    void Add(const Key& key, std::uint32_t hash)
    {
        if (numbers.FindOrAdd(hash, IsKey{keys, key}) == keys.size()) {
            keys.push_back(key);
        }
    }
    bool Has(const Key& key, std::uint32_t hash) const
    {
        return numbers.Find(hash, IsKey{keys, key}) != KeyNumbers::NONE;
    }
    const KeyNumbers& Numbers() const { return numbers; }

private:
    struct IsKey {
        bool operator()(std::uint32_t number) const { return keys[number] == key; }
        const BlockVector<Key>& keys;
        const Key& key;
    };
    KeyNumbers numbers;
    BlockVector<Key> keys;
};

/// The hash of such a key is as good as the key.
template <>
class KeySet<std::uint32_t> {
public:
    void Add(std::uint32_t, std::uint32_t hash) { numbers.FindOrAdd(hash, IS_KEY); }
    bool Has(std::uint32_t, std::uint32_t hash) const { return numbers.Find(hash, IS_KEY) != KeyNumbers::NONE; }
    const KeyNumbers& Numbers() const { return numbers; }

private:
    static constexpr auto IS_KEY = [](std::uint32_t) { return true; };
    KeyNumbers numbers;
};

/// Asks for the memory in which a text lies some way behind one, in an array also beyond the end of a block.
void PrefetchBehind(Text cell)
{
    constexpr std::uintptr_t DISTANCE = 512 * sizeof(std::string);
    __builtin_prefetch(reinterpret_cast<const void*>(reinterpret_cast<std::uintptr_t>(cell) + DISTANCE));
}

/// Asks for the memory of all of a block's keys before it needs the first, as a large set is in no cache.
template <typename Cell, typename Set>
void AddBlock(const Cell* cells, std::uint32_t count, Set& set)
{
    std::array<std::uint32_t, CellBlocks::LONGEST> hashes;
    for (std::uint32_t i = 0; i < count; ++i) {
        hashes[i] = HashOf(KeyOf(cells[i]));
        set.Numbers().Prefetch(hashes[i]);
    }
    for (std::uint32_t i = 0; i < count; ++i) {
        set.Add(KeyOf(cells[i]), hashes[i]);
    }
}

/// Most cells are told by the filter; only the others meet jumps that no processor can predict.
template <typename Cell, typename Set>
void FindInBlock(const Set& set, const KeyFilter& filter, const Cell* cells, std::uint32_t count, bool* results)
{
    std::array<std::uint16_t, CellBlocks::LONGEST> candidates;
    std::array<std::uint32_t, CellBlocks::LONGEST> hashes; // of the candidates
    std::uint32_t candidateCount = 0;
    for (std::uint32_t i = 0; i < count; ++i) {
        if constexpr (std::is_same_v<Cell, Text>) {
            PrefetchBehind(cells[i]);
        }
        const std::uint32_t hash = HashOf(KeyOf(cells[i]));
        candidates[candidateCount] = static_cast<std::uint16_t>(i);
        hashes[candidateCount] = hash;
        candidateCount += filter.MayHave(hash) ? 1 : 0;
    }
    std::fill_n(results, count, false);
    for (std::uint32_t k = 0; k < candidateCount; ++k) {
        const std::uint32_t i = candidates[k];
        results[i] = set.Has(KeyOf(cells[i]), hashes[k]);
    }
}

/// Cell is a value type as CellBlocks give it, integers without their sign.
template <typename Cell>
void FindCells(const Cursor& src, const Cursor& compare, const Cursor& dst)
{
    KeySet<decltype(KeyOf(Cell{}))> set;
    ForEachBlock(compare,
        [&set](const void* cells, std::uint32_t count) { AddBlock(static_cast<const Cell*>(cells), count, set); });
    const KeyFilter filter(set.Numbers());
    ForEachBlock(src, dst, false, [&set, &filter](const void* cells, void* results, std::uint32_t count) {
        FindInBlock(set, filter, static_cast<const Cell*>(cells), count, static_cast<bool*>(results));
    });
}

using Finder = void (*)(const Cursor& src, const Cursor& compare, const Cursor& dst);

constexpr auto FINDERS = ForEachValueType([](auto number) -> Finder {
    using T = ValueTypes::At<number()>;
    if constexpr (std::is_same_v<T, bool>) {
        return &FindCells<std::uint8_t>;
    } else if constexpr (std::is_same_v<T, DateTime>) {
        return &FindCells<std::uint32_t>;
    } else if constexpr (std::is_same_v<T, std::string>) {
        return &FindCells<Text>;
    } else if constexpr (std::is_integral_v<T>) {
        return &FindCells<std::make_unsigned_t<T>>;
    } else if constexpr (std::is_floating_point_v<T>) {
        return &FindCells<T>;
    } else {
        return nullptr;
    }
});

bool HasNoMemory(const Cursor& dst)
{
    return dst->IsMemoryContiguous() && dst->Length() != 0 &&
        CursorAs<CONTAINER_ARRAY, bool>(dst).mHead.byte == nullptr;
}

ErrorCode Find(const Cursor& src, const Cursor& compare, const Cursor& dst)
{
    const MERVO_TESSERA_TYPEID type = src->GetAttr().typeId;
    const Finder find = FINDERS[static_cast<std::size_t>(type)];
    if (find == nullptr) {
        LogError("the type doesn't support IsIn functor");
        return ERROR_GENERAL;
    }
    if ((type == TESSERA_STRING || type == TESSERA_BOOL) && HasNoMemory(dst)) {
        LogError(type == TESSERA_STRING ? "the dstPtr is nullptr" : "the input is nullptr");
        return ERROR_GENERAL;
    }
    find(src, compare, dst);
    return ERROR_NONE;
}

} // namespace

template <ContainerID CID>
std::string IsIn<CID>::GetName() const
{
    return "IsIn";
}

template <ContainerID CID>
SeriesAttr IsIn<CID>::GetDstAttr(const Cursor& lhs, const Cursor&) const
{
    return WithType(lhs->GetAttr(), TESSERA_BOOL);
}

template <ContainerID CID>
bool IsIn<CID>::CheckParams(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const
{
    if (lhs->GetAttr().typeId != rhs->GetAttr().typeId) {
        LogError("the src data and compare data are not same type");
        return false;
    }
    if (rhs->Length() == 0) {
        LogError("the compare data length is invalid");
        return false;
    }
    return dst->GetAttr().typeId == TESSERA_BOOL && dst->Length() == lhs->Length();
}

template <ContainerID CID>
template <typename T>
ErrorCode IsIn<CID>::OnExecute(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const
{
    return Find(lhs, rhs, dst);
}

template class IsIn<CONTAINER_ARRAY>;
template const BinaryTable<1> Binary<IsIn<CONTAINER_ARRAY>, MutableArgs::SOURCE>::transformTable;

} // namespace MERVO::Tessera::Func
