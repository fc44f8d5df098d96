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

/// Calls visit(ofLeft, ofRight) with each key's rows, keys in descending order.
template <typename Visit>
void RowPairs::ForEachKey(Visit visit) const
{
    leftRows.WithRows([&](auto leftOf) {
        rightRows.WithRows([&](auto rightOf) {
            for (std::uint32_t key = bound; key-- != 0;) {
                visit(leftOf(key), rightOf(key));
            }
        });
    });
}

std::uint64_t RowPairs::Count() const
{
    if (AreSingle()) {
        const ArePaired arePaired{keepsLeft, keepsRight};
        const std::uint32_t* const left = leftRows.Singles();
        const std::uint32_t* const right = rightRows.Singles();
        std::uint32_t count = 0;
        for (std::uint32_t key = 0; key < bound; ++key) {
            count += arePaired(left[key], right[key]) ? 1 : 0;
        }
        return count;
    }
    std::uint64_t count = 0;
    ForEachKey([this, &count](Rows left, Rows right) {
        const auto paired = std::uint64_t{left.size()} * right.size();
        count +=
            paired + (left.empty() && keepsRight ? right.size() : 0) + (right.empty() && keepsLeft ? left.size() : 0);
    });
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
    ForEachKey([this, toLeft, toRight](Rows ofLeft, Rows ofRight) mutable {
        if (ofLeft.empty() && keepsRight) {
            ofLeft = Rows(NOWHERE);
        } else if (ofRight.empty() && keepsLeft) {
            ofRight = Rows(NOWHERE);
        }
        for (const std::uint32_t row : ofLeft) {
            for (const std::uint32_t other : ofRight) { // mostly few
                *toLeft++ = row;
                *toRight++ = other;
            }
        }
    });
}

} // namespace MERVO::Tessera
