#include "tessera/functors/gather.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

#include "tessera/core/bit_bytes.h"
#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"
#include "tessera/functors/assign_text.h"
#include "tessera/functors/element_walk.h"

namespace MERVO::Tessera::Func {
namespace {

using Positions = std::span<const std::uint32_t>;

/// So many elements ahead of the copy, large elements are asked for: memory answers later than the processor looks.
constexpr std::size_t AHEAD = 16;

template <std::size_t WIDTH>
void GatherBytes(const std::byte* from, Positions positions, std::byte* to)
{
    for (const std::uint32_t position : positions) {
        std::memcpy(to, from + std::size_t{position} * WIDTH, WIDTH);
        to += WIDTH;
    }
}

template <typename T, typename Assign>
void GatherLarge(const T* from, Positions positions, T* to, Assign assign)
{
    const std::size_t asked = positions.size() - std::min(positions.size(), AHEAD);
    for (std::size_t i = 0; i < asked; ++i) {
        __builtin_prefetch(from + positions[i + AHEAD]);
        assign(to[i], from[positions[i]]);
    }
    for (std::size_t i = asked; i < positions.size(); ++i) {
        assign(to[i], from[positions[i]]);
    }
}

void GatherBits(BitPosition from, Positions positions, BitPosition to)
{
    std::array<bool, 512> gathered;
    while (!positions.empty()) {
        const Positions block = positions.first(std::min(positions.size(), gathered.size()));
        for (std::size_t i = 0; i < block.size(); ++i) {
            const std::uint64_t place = std::uint64_t{block[i]} + from.offset;
            gathered[i] = ((from.byte[place >> 3] >> (place & 7)) & 1) != 0;
        }
        const auto count = static_cast<std::uint32_t>(block.size());
        PackBits(gathered.data(), to, count);
        to += count;
        positions = positions.subspan(block.size());
    }
}

template <typename T>
void GatherFromArray(const Cursor& src, Positions positions, const Cursor& dst)
{
    const auto from = CursorAs<CONTAINER_ARRAY, T>(src).mHead;
    const auto to = CursorAs<CONTAINER_ARRAY, T>(dst).mHead;
    if constexpr (std::is_same_v<T, bool>) {
        GatherBits(from, positions, to);
    } else if constexpr (Arithmetic<T>) {
        GatherBytes<sizeof(T)>(reinterpret_cast<const std::byte*>(from), positions, reinterpret_cast<std::byte*>(to));
    } else if constexpr (std::is_same_v<T, std::string>) {
        GatherLarge(from, positions, to, [](std::string& cell, const std::string& text) { AssignText(cell, text); });
    } else {
        GatherLarge(from, positions, to, [](T& cell, const T& element) { cell = element; });
    }
}

template <typename T>
void GatherCells(const Cursor& src, Positions positions, const Cursor& dst)
{
    if (src->IsMemoryContiguous() && dst->IsMemoryContiguous()) {
        GatherFromArray<T>(src, positions, dst);
        return;
    }
    AnyPlace<T> from(src);
    AnyPlace<T> to(dst);
    std::int64_t reached = 0;
    for (const std::uint32_t position : positions) {
        from += position - reached;
        reached = position;
        *to = static_cast<const T&>(*from);
        ++to;
    }
}

using Gatherer = void (*)(const Cursor& src, Positions positions, const Cursor& dst);
constexpr auto GATHERERS =
    ForEachValueType([](auto number) -> Gatherer { return &GatherCells<ValueTypes::At<number()>>; });

} // namespace

bool AreBelow(Positions positions, std::uint32_t bound)
{
    std::uint32_t largest = 0;
    for (const std::uint32_t position : positions) {
        largest = std::max(largest, position);
    }
    return positions.empty() || largest < bound;
}

void Gather(const Cursor& src, Positions positions, const Cursor& dst)
{
    GATHERERS[static_cast<std::size_t>(src->GetAttr().typeId)](src, positions, dst);
}

} // namespace MERVO::Tessera::Func
