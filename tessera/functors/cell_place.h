#pragma once

#include <cstddef>
#include <cstdint>

#include "tessera/core/cursor.h"

namespace MERVO::Tessera::Func {

/// A cell on the way over a cursor's range, for walks that leave the value type to their kernels.
class CellPlace {
public:
    enum class Layout : std::uint8_t { ELEMENTS, BITS, NODES };

    explicit CellPlace(const Cursor& cursor);

    /// The cell, unless it is a bit.
    void* Cell() const { return layout == Layout::NODES ? valueOf(node) : element; }
    /// Goes on, in a list by one node whatever the count.
    void Skip(std::uint32_t count)
    {
        switch (layout) {
        case Layout::BITS:
            bit += count;
            break;
        case Layout::NODES:
            node = node->next;
            break;
        default:
            element += elementSize * count;
            break;
        }
    }

    Layout layout = Layout::ELEMENTS;
    std::size_t elementSize = 0;  ///< of a cell among ELEMENTS
    std::byte* element = nullptr; ///< the cell among ELEMENTS
    BitPosition bit;              ///< the cell among BITS

private:
    using ValueOfNode = void* (*)(ListLink*);

    template <typename T>
    void Open(const Cursor& cursor);

    ListLink* node = nullptr;
    ValueOfNode valueOf = nullptr;
};

} // namespace MERVO::Tessera::Func
