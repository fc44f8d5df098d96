#pragma once

#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <utility>
#include <vector>

#include "tessera/core/bit_position.h"
#include "tessera/core/block.h"
#include "tessera/platform/export.h"

namespace MERVO::Tessera {

/// A block for the cells of an array; null, with an error in the log, where there is no memory, and for no cells.
void* AllocateCells(std::uint32_t count, std::size_t cellSize) noexcept;

/// Asks for cells that whoever asks constructs, every one, before anything else is done with what holds them.
struct RawCells {};

/**
 * Owner of the heap block behind a column.
 *
 * Numbers start uninitialised, strings empty, DateTime as zero bytes, nested tables healthy and empty. Where the block
 * can't be had, that is logged, `data` is null and `size` keeps the count that was asked for; such a column gives no
 * cursor, so whoever wanted it answers with a code.
 */
template <typename T>
class DynamicArray {
public:
    explicit DynamicArray(std::uint32_t count) : size(count)
    {
        Block<T> block = BlockFor(count);
        if (block != nullptr) {
            std::uninitialized_default_construct_n(block.get(), count);
        }
        data = block.release();
    }
    DynamicArray(std::uint32_t count, RawCells) : data(BlockFor(count).release()), size(count) {}
    /// Takes over a block of at least so many cells, which are alive.
    DynamicArray(std::uint32_t count, Block<T> block) : data(block.release()), size(count) {}
    DynamicArray(const DynamicArray&) = delete;
    DynamicArray& operator=(const DynamicArray&) = delete;
    virtual ~DynamicArray()
    {
        const Block<T> block(data);
        if (data != nullptr) {
            std::destroy(std::reverse_iterator(end()), std::reverse_iterator(begin()));
        }
    }

    /// Takes it that the cells have been destroyed, all of them.
    void Forget() { Block<T>(std::exchange(data, nullptr)).reset(); }

    T* begin() { return data; }
    const T* begin() const { return data; }
    T* end() { return data + size; }
    const T* end() const { return data + size; }

    T* data = nullptr;
    std::uint32_t size;

private:
    static Block<T> BlockFor(std::uint32_t count) { return Block<T>(static_cast<T*>(AllocateCells(count, sizeof(T)))); }
};

/**
 * Bits, eight to a byte, lowest first, all false at the start. The block has a tenth of room more than the bits need.
 *
 * Where the block can't be had, that is logged and the array is empty.
 */
template <>
class TESSERA_API DynamicArray<bool> {
public:
    explicit DynamicArray(std::uint32_t count);
    DynamicArray(std::initializer_list<bool> values);
    explicit DynamicArray(const std::vector<bool>& values);
    DynamicArray(const DynamicArray&) = delete;
    DynamicArray& operator=(const DynamicArray&) = delete;
    virtual ~DynamicArray();

    BitPosition begin() { return {data, 0}; }
    BitPosition begin() const { return {data, 0}; }
    BitPosition end() { return begin() + size; }
    BitPosition end() const { return begin() + size; }

    std::uint32_t size;         ///< bits
    std::uint32_t capacity = 0; ///< bytes
    float growthFactor = 1.1F;
    std::uint8_t* data = nullptr;
};

} // namespace MERVO::Tessera
