#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "tessera/functors/cell_place.h"
#include "tessera/platform/streaming_store.h"

namespace MERVO::Tessera::Func {

/**
 * Works on adjacent cells of two columns and a result. What a cell is there depends on its value type:
 *
 * a number is itself, a bool a byte, a DateTime its stamp as int32_t; a string or a nested table is a pointer to the
 * cell in its column. `result` overlaps neither operand.
 */
using CellKernel = void (*)(const void* left, const void* right, void* result, std::uint32_t count);

/// The walk over the cells of a cursor's range that operands and results have in common. The value type is known to the
/// kernel alone, so that one loop serves all types and containers.
class CellBlocks {
public:
    /// Cells of one block: three buffers of them fit into a first-level cache.
    static constexpr std::uint32_t LONGEST = 256;

protected:
    using Layout = CellPlace::Layout;
    static constexpr std::size_t CACHE_LINE = 64;

    explicit CellBlocks(const Cursor& cursor);

    enum class Form : std::uint8_t { VALUES, STAMPS, ADDRESSES };

    /// Calls visit(slot, cell) with the places of the next cells and their slots in the buffer.
    template <typename Visit>
    void ForEachCell(std::uint32_t count, Visit&& visit);

    /// Whether kernels work on the cells where they are.
    bool IsInPlace() const { return form == Form::VALUES && next.layout == Layout::ELEMENTS; }

    CellPlace next; ///< the next cell
    Form form;
    std::size_t slotSize; ///< of a cell as kernels see it
    alignas(CACHE_LINE) std::array<std::byte, LONGEST * sizeof(std::uint64_t)> buffer;
};

/// Where the cells of a result go: those of a light kernel's large array from the buffer into memory, past the caches.
class ResultBlocks : public CellBlocks {
public:
    /// @param isLight whether the kernel takes less time than memory does. Streams wait for it, plain stores don't.
    ResultBlocks(const Cursor& dst, bool isLight);
    ResultBlocks(const ResultBlocks&) = delete;
    ResultBlocks& operator=(const ResultBlocks&) = delete;
    ~ResultBlocks();

    /// How many of the remaining cells make up the next block.
    std::uint32_t NextCount(std::uint32_t remaining) const;
    /// Room for the next cells; what is put there counts from Written on.
    void* Room(std::uint32_t count);
    void Written(std::uint32_t count);
    /// Sets the next cells to zero; cells of other kinds than numbers are new, and empty already.
    void Clear(std::uint32_t count);

    /// Whether cells that a kernel reads in place lie in memory that it will write in place.
    bool IsWrittenOver(const std::byte* head, std::size_t bytes, std::uint32_t count) const;

private:
    bool IsStreamed() const { return HasStreamingStores() && wantsStreams && IsInPlace(); }

    bool wantsStreams;
};

/// The cells of an operand; one that repeats gives its first cell every time.
class OperandBlocks : public CellBlocks {
public:
    /// For reading alone.
    explicit OperandBlocks(const Cursor& source) : CellBlocks(source), repeats(false), readsInPlace(IsInPlace()) {}
    OperandBlocks(const Cursor& source, bool isRepeated, const ResultBlocks& results, std::uint32_t resultCount);

    /// The next cells.
    const void* Read(std::uint32_t count);

private:
    void Gather(std::uint32_t count);
    void Spread();

    bool repeats;
    bool readsInPlace;
};

/// Which operands stand for all rows of the result.
struct Repetition {
    bool left;
    bool right;
};

/// Calls visit(left, right, result, count) for one block of cells after the other, until dst is full. An operand that
/// doesn't repeat has as many cells as dst.
template <typename Visit>
void ForEachBlock(const Cursor& lhs, const Cursor& rhs, const Cursor& dst, Repetition repetition, Visit&& visit)
{
    std::uint32_t remaining = dst->Length();
    ResultBlocks results(dst, true);
    OperandBlocks left(lhs, repetition.left, results, remaining);
    OperandBlocks right(rhs, repetition.right, results, remaining);
    while (remaining != 0) {
        const std::uint32_t count = results.NextCount(remaining);
        visit(left.Read(count), right.Read(count), results.Room(count), count);
        results.Written(count);
        remaining -= count;
    }
}

/// Calls visit(cells, result, count) for one block of cells of a single operand after the other, until either is done.
template <typename Visit>
void ForEachBlock(const Cursor& src, const Cursor& dst, bool isLight, Visit&& visit)
{
    std::uint32_t remaining = std::min(src->Length(), dst->Length());
    ResultBlocks results(dst, isLight);
    OperandBlocks source(src, false, results, remaining);
    while (remaining != 0) {
        const std::uint32_t count = results.NextCount(remaining);
        visit(source.Read(count), results.Room(count), count);
        results.Written(count);
        remaining -= count;
    }
}

/// Calls visit(cells, count) for one block of a column's cells after the other.
template <typename Visit>
void ForEachBlock(const Cursor& src, Visit&& visit)
{
    OperandBlocks source(src);
    for (std::uint32_t remaining = src->Length(); remaining != 0;) {
        const std::uint32_t count = std::min(remaining, CellBlocks::LONGEST);
        visit(source.Read(count), count);
        remaining -= count;
    }
}

} // namespace MERVO::Tessera::Func
