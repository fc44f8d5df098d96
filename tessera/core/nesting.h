#pragma once

#include <cstdint>

namespace MERVO::Tessera {

/**
 * While it lives, this thread works on a table; one within another is on a table in a cell.
 *
 * A host can nest tables as deep as it likes, share one among many cells, even put a table into itself. What goes
 * through all of them would then overflow the stack, or never end: it asks here first.
 */
class Nesting {
public:
    /// @param bytes what the table's columns take up, not counting what cells hold elsewhere.
    explicit Nesting(std::uint64_t bytes) noexcept;
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;
    ~Nesting();

    /// False for a table more than 100 levels deep, and once the tables in cells would not lie in memory.
    bool HasRoom() const { return hasRoom; }

private:
    bool hasRoom;
};

} // namespace MERVO::Tessera
