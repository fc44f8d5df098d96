#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>

namespace MERVO::Tessera {

/**
 * A stable sort that is a fixed series of comparisons, also for a `less` that is no order, as with NaN among numbers:
 * what stands where then is decided by the series alone, and not by how much memory is free.
 *
 * It is that of the GNU C++ library's std::stable_sort where that gets all the memory it asks for: both halves are
 * sorted from chunks of seven upwards, and merged. Working set: half of the elements. Throws std::bad_alloc.
 */
template <typename T, typename Less>
class MergeSort {
public:
    explicit MergeSort(Less isLess) : less(std::move(isLess)) {}

    void Sort(T* first, std::size_t count) const
    {
        const std::size_t half = (count + 1) / 2;
        const std::unique_ptr<T[]> room = std::make_unique_for_overwrite<T[]>(half);
        SortHalf(first, half, room.get());
        SortHalf(first + half, count - half, room.get());
        if (half == count - half) {
            std::copy_n(first, half, room.get());
            Merge(room.get(), room.get() + half, first + half, first + count, first);
        } else {
            std::copy(first + half, first + count, room.get());
            MergeFromBehind(first, half, room.get(), count - half);
        }
    }

private:
    void SortHalf(T* first, std::size_t count, T* room) const
    {
        std::size_t length = 7;
        for (std::size_t begin = 0; begin < count; begin += length) {
            InsertAll(first + begin, std::min(length, count - begin));
        }
        for (; length < count; length *= 4) { // to the room and back
            MergeRuns(first, count, length, room);
            MergeRuns(room, count, 2 * length, first);
        }
    }

    void InsertAll(T* first, std::size_t count) const
    {
        for (std::size_t i = 1; i < count; ++i) {
            const T moved = first[i];
            std::size_t place = i;
            if (less(moved, first[0])) {
                place = 0;
                std::copy_backward(first, first + i, first + i + 1);
            } else {
                for (; less(moved, first[place - 1]); --place) { // ends before the first one
                    first[place] = first[place - 1];
                }
            }
            first[place] = moved;
        }
    }

    void MergeRuns(const T* from, std::size_t count, std::size_t length, T* to) const
    {
        for (std::size_t begin = 0; begin < count;) {
            const std::size_t middle = begin + std::min(length, count - begin);
            const std::size_t end = middle + std::min(length, count - middle);
            to = Merge(from + begin, from + middle, from + middle, from + end, to);
            begin = end;
        }
    }

    T* Merge(const T* left, const T* leftEnd, const T* right, const T* rightEnd, T* to) const
    {
        while (left != leftEnd && right != rightEnd) {
            *to++ = less(*right, *left) ? *right++ : *left++;
        }
        return std::copy(right, rightEnd, std::copy(left, leftEnd, to));
    }

    /// Merges what lies at `left` with a shorter `right`, largest first, to where left and right lie adjacent.
    void MergeFromBehind(T* left, std::size_t leftCount, const T* right, std::size_t rightCount) const
    {
        for (T* to = left + leftCount + rightCount; rightCount != 0 && leftCount != 0;) {
            *--to = less(right[rightCount - 1], left[leftCount - 1]) ? left[--leftCount] : right[--rightCount];
        }
        std::copy_n(right, rightCount, left); // those before all of the left
    }

    Less less;
};

} // namespace MERVO::Tessera
