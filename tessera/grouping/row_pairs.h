#pragma once

#include <cstdint>
#include <vector>

#include "tessera/tessera.h"
#include "tessera/grouping/keyed_rows.h"

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
    /// Both outlive the pairs.
    RowPairs(const KeyedRows& left, const KeyedRows& right, std::uint32_t keyBound, MERVO_TESSERA_MERGE_JOINTYPE type)
        : leftRows(left), rightRows(right), bound(keyBound), keepsLeft(KeepsLeft(type)), keepsRight(KeepsRight(type))
    {
    }

    /// How many there are: at most all pairs and all single rows, which 64 bits can hold.
    std::uint64_t Count() const;
    /// Writes both rows of each.
    void Write(std::vector<std::uint32_t>& left, std::vector<std::uint32_t>& right) const;

private:
    bool AreSingle() const { return leftRows.AreSingle() && rightRows.AreSingle(); }
    void WriteSingles(std::uint32_t count, std::uint32_t* toLeft, std::uint32_t* toRight) const;

    const KeyedRows& leftRows;
    const KeyedRows& rightRows;
    std::uint32_t bound;
    bool keepsLeft;
    bool keepsRight;
};

} // namespace MERVO::Tessera
