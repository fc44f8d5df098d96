#include "tessera/operations/marked_cells.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "tessera/core/bit_words.h"
#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"
#include "tessera/functors/assign_text.h"
#include "tessera/functors/element_walk.h"

namespace MERVO::Tessera {
namespace {

using BitWords::ALL;
using BitWords::Word;
using BitWords::WORD_BITS;

/// Calls take(number of the first element, wanted marks, whether all 64 elements exist) for each word of marks.
template <typename Take>
void ForEachWord(BitPosition marks, std::uint32_t count, bool wanted, Take&& take)
{
    const Word turned = wanted ? 0 : ALL;
    std::uint32_t first = 0;
    for (; count - first >= WORD_BITS; first += WORD_BITS, marks += WORD_BITS) {
        take(first, BitWords::Read(marks, WORD_BITS) ^ turned, true);
    }
    if (first != count) {
        const std::uint32_t rest = count - first;
        take(first, (BitWords::Read(marks, rest) ^ turned) & (ALL >> (WORD_BITS - rest)), false);
    }
}

/// Calls take(place in the word) for each set bit.
template <typename Take>
void ForEachBit(Word word, Take&& take)
{
    for (; word != 0; word &= word - 1) {
        take(static_cast<std::uint32_t>(std::countr_zero(word)));
    }
}

/// Copies every element, and moves on only behind those that are wanted: where marks come as they will, a processor
/// can't foresee branches.
template <std::size_t WIDTH>
std::byte* CopyWithoutBranches(const std::byte* from, Word word, std::byte* to)
{
    for (const auto half : {static_cast<std::uint32_t>(word), static_cast<std::uint32_t>(word >> 32)}) {
        std::uint32_t marks = half;
        for (std::uint32_t bit = 0; bit < WORD_BITS / 2; ++bit, marks >>= 1, from += WIDTH) {
            std::memcpy(to, from, WIDTH);
            to += (marks & 1) * WIDTH;
        }
    }
    return to;
}

/// Compiled once per width; inlined, it would be there once per value type.
template <std::size_t WIDTH>
[[gnu::noinline]] void CopyBytes(
    const std::byte* from, BitPosition marks, std::uint32_t count, bool wanted, std::byte* to, std::uint32_t room)
{
    constexpr std::uint32_t FEW = 16; // from here on, 64 copies take less time than these and a wrong guess
    ForEachWord(marks, count, wanted, [&](std::uint32_t first, Word word, bool isWhole) {
        const std::byte* const cells = from + std::size_t{first} * WIDTH;
        const auto hits = static_cast<std::uint32_t>(std::popcount(word));
        if (!isWhole || room < WORD_BITS || hits <= FEW) {
            ForEachBit(word, [&](std::uint32_t bit) {
                if (room != 0) {
                    std::memcpy(to, cells + std::size_t{bit} * WIDTH, WIDTH);
                    to += WIDTH;
                    --room;
                }
            });
            return;
        }
        if (hits == WORD_BITS) {
            std::memcpy(to, cells, WORD_BITS * WIDTH);
            to += WORD_BITS * WIDTH;
        } else {
            to = CopyWithoutBranches<WIDTH>(cells, word, to);
        }
        room -= hits;
    });
}

void CopyBits(BitPosition from, BitPosition marks, std::uint32_t count, bool wanted, BitPosition to, std::uint32_t room)
{
    ForEachWord(marks, count, wanted, [&](std::uint32_t first, Word word, bool isWhole) {
        const Word cells = BitWords::Read(from + first, isWhole ? WORD_BITS : count - first);
        Word packed = cells;
        std::uint32_t hits = WORD_BITS;
        if (word != ALL) {
            packed = 0;
            hits = 0;
            ForEachBit(word, [&](std::uint32_t bit) { packed |= ((cells >> bit) & 1) << hits++; });
        }
        hits = std::min(hits, room);
        BitWords::Append(packed, to, hits);
        room -= hits;
    });
}

template <typename T>
void CopyObjects(const T* from, BitPosition marks, std::uint32_t count, bool wanted, T* to, std::uint32_t room)
{
    ForEachWord(marks, count, wanted, [&](std::uint32_t first, Word word, bool) {
        ForEachBit(word, [&](std::uint32_t bit) {
            if (room != 0) {
                if constexpr (std::is_same_v<T, std::string>) {
                    Func::AssignText(*to, from[first + bit]);
                } else {
                    *to = from[first + bit];
                }
                ++to;
                --room;
            }
        });
    });
}

template <typename T>
void CopyInArrays(const Cursor& src, const Cursor& marks, bool wanted, const Cursor& dst)
{
    const auto from = CursorAs<CONTAINER_ARRAY, T>(src).mHead;
    const auto to = CursorAs<CONTAINER_ARRAY, T>(dst).mHead;
    const BitPosition head = CursorAs<CONTAINER_ARRAY, bool>(marks).mHead;
    const std::uint32_t count = std::min(src->Length(), marks->Length());
    const std::uint32_t room = dst->Length();
    if constexpr (std::is_same_v<T, bool>) {
        CopyBits(from, head, count, wanted, to, room);
    } else if constexpr (Arithmetic<T>) {
        CopyBytes<sizeof(T)>(
            reinterpret_cast<const std::byte*>(from), head, count, wanted, reinterpret_cast<std::byte*>(to), room);
    } else {
        CopyObjects<T>(from, head, count, wanted, to, room);
    }
}

template <typename T>
void CopyCells(const Cursor& src, const Cursor& marks, bool wanted, const Cursor& dst)
{
    if (src->IsMemoryContiguous() && marks->IsMemoryContiguous() && dst->IsMemoryContiguous()) {
        CopyInArrays<T>(src, marks, wanted, dst);
        return;
    }
    Func::AnyPlace<T> from(src);
    Func::AnyPlace<bool> mark(marks);
    Func::AnyPlace<T> to(dst);
    std::uint32_t room = dst->Length();
    for (std::uint32_t left = std::min(src->Length(), marks->Length()); left != 0 && room != 0; --left) {
        if (static_cast<bool>(*mark) == wanted) {
            *to = static_cast<const T&>(*from);
            ++to;
            --room;
        }
        ++from;
        ++mark;
    }
}

using Copier = void (*)(const Cursor& src, const Cursor& marks, bool wanted, const Cursor& dst);
constexpr auto COPIERS = ForEachValueType([](auto number) -> Copier { return &CopyCells<ValueTypes::At<number()>>; });

} // namespace

void CopyMarked(const Cursor& src, const Cursor& marks, bool wanted, const Cursor& dst)
{
    COPIERS[static_cast<std::size_t>(src->GetAttr().typeId)](src, marks, wanted, dst);
}

} // namespace MERVO::Tessera
