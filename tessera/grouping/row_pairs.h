#pragma once

#include <cstdint>
#include <vector>

#include "tessera/grouping/keyed_rows.h"
#include "tessera/tessera.h"

namespace MERVO::Tessera {

/// Whether a merge keeps the rows of a side that match no other.
inline bool KeepsLeft(MERVO_TESSERA_MERGE_JOINTYPE type)
{
    return type == TESSERA_JOIN_LEFT || type == TESSERA_JOIN_OUTER;
}
inline bool KeepsRight(MERVO_TESSERA_MERGE_JOINTYPE type)
{
    return type == TESSERA_JOIN_RIGHT || type == TESSERA_JOIN_OUTER;
}

/// The pairs of rows with the same key, keys in descending order; with NO_ROW beside rows that match none.
class RowPairs {
public:
    /// Takes the keys' numbers, and how many rows the sides have. Working set: that of KeyedRows, for both sides.
    RowPairs(
        const DenseKeys& keys, std::uint32_t leftCount, std::uint32_t rightCount, MERVO_TESSERA_MERGE_JOINTYPE type);

    /// False where memory was short; then there is nothing to be asked for.
    bool HasRoom() const { return leftRows.HasRoom() && rightRows.HasRoom(); }
    /// How many there are: at most all pairs and all single rows, which 64 bits can hold.
    std::uint64_t Count() const;
    /// Writes both rows of each; the lists are as long as there are pairs.
    void Write(std::vector<std::uint32_t>& left, std::vector<std::uint32_t>& right) const;

private:
    bool AreSingle() const { return leftRows.AreSingle() && rightRows.AreSingle(); }
    template <typename Visit>
    void ForEachKey(Visit visit) const;
    void WriteSingles(std::size_t count, std::uint32_t* toLeft, std::uint32_t* toRight) const;

    std::uint32_t bound;
    bool keepsLeft;
    bool keepsRight;
    KeyedRows leftRows;
    KeyedRows rightRows;
};

} // namespace MERVO::Tessera
