#include "tessera/grouping/row_pairs.h"

#include <algorithm>
#include <span>

namespace MERVO::Tessera {
namespace {

using Rows = std::span<const std::uint32_t>;

const std::uint32_t NOWHERE[] = {Func::NO_ROW};

/// Whether a key's rows of two sides with no more than one each make a pair.
struct ArePaired {
    bool operator()(std::uint32_t left, std::uint32_t right) const
    {
        const bool hasLeft = left != Func::NO_ROW;
        const bool hasRight = right != Func::NO_ROW;
        return (hasLeft | keepsRight) & (hasRight | (keepsLeft & hasLeft));
    }

    bool keepsLeft;
    bool keepsRight;
};

} // namespace

RowPairs::RowPairs(
    const DenseKeys& keys, std::uint32_t leftCount, std::uint32_t rightCount, MERVO_TESSERA_MERGE_JOINTYPE type)
    : bound(keys.Bound()), keepsLeft(KeepsLeft(type)), keepsRight(KeepsRight(type)),
      leftRows(keys, DenseKeys::LEFT, leftCount), rightRows(keys, DenseKeys::RIGHT, rightCount)
{
}

std::uint64_t RowPairs::Count() const
{
    std::uint64_t count = 0;
    if (AreSingle()) {
        const ArePaired arePaired{keepsLeft, keepsRight};
        const std::uint32_t* const left = leftRows.Singles();
        const std::uint32_t* const right = rightRows.Singles();
        std::uint32_t paired = 0;
        for (std::uint32_t key = 0; key < bound; ++key) {
            paired += arePaired(left[key], right[key]) ? 1 : 0;
        }
        return paired;
    }
    for (std::uint32_t key = 0; key < bound; ++key) {
        const std::uint64_t left = leftRows.RowsOf(key).size();
        const std::uint64_t right = rightRows.RowsOf(key).size();
        count += left * right;
        count += left == 0 && keepsRight ? right : 0;
        count += right == 0 && keepsLeft ? left : 0;
    }
    return count;
}

/// Writes each key's rows, and over them those of the next one unless they were a pair.
void RowPairs::WriteSingles(std::size_t count, std::uint32_t* toLeft, std::uint32_t* toRight) const
{
    const ArePaired arePaired{keepsLeft, keepsRight};
    const std::uint32_t* const left = leftRows.Singles();
    const std::uint32_t* const right = rightRows.Singles();
    std::size_t written = 0;
    for (std::uint32_t key = bound; written < count;) {
        --key;
        toLeft[written] = left[key];
        toRight[written] = right[key];
        written += arePaired(left[key], right[key]) ? 1U : 0U;
    }
}

void RowPairs::Write(std::vector<std::uint32_t>& left, std::vector<std::uint32_t>& right) const
{
    std::uint32_t* toLeft = left.data();
    std::uint32_t* toRight = right.data();
    if (AreSingle()) {
        WriteSingles(left.size(), toLeft, toRight);
        return;
    }
    for (std::uint32_t key = bound; key-- != 0;) {
        Rows ofLeft = leftRows.RowsOf(key);
        Rows ofRight = rightRows.RowsOf(key);
        if (ofLeft.empty() && keepsRight) {
            ofLeft = Rows(NOWHERE);
        } else if (ofRight.empty() && keepsLeft) {
            ofRight = Rows(NOWHERE);
        }
        for (const std::uint32_t row : ofLeft) {
            toLeft = std::fill_n(toLeft, ofRight.size(), row);
            toRight = std::copy(ofRight.begin(), ofRight.end(), toRight);
        }
    }
}

} // namespace MERVO::Tessera
