#pragma once

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "tessera/tessera.hpp"

namespace MERVO::Tessera {

/// The reductions in their plainest form: one loop each, element after element.
template <typename T>
struct ReductionModel {
    /// Adds as every machine shall: the first NaN met stays, quiet; one made of infinities has no sign.
    template <typename Total>
    static void Add(Total& total, Total value)
    {
        if (std::isnan(total)) {
            return;
        }
        if (std::isnan(value)) {
            using Bits = std::conditional_t<sizeof(Total) == 8, std::uint64_t, std::uint32_t>;
            constexpr int QUIET_BIT = sizeof(Total) == 8 ? 51 : 22;
            total = std::bit_cast<Total>(std::bit_cast<Bits>(value) | Bits{1} << QUIET_BIT);
            return;
        }
        total = total + value;
        if (std::isnan(total)) {
            total = std::numeric_limits<Total>::quiet_NaN();
        }
    }

    static bool IsNan(const T& value)
    {
        if constexpr (std::is_floating_point_v<T>) {
            return std::isnan(value);
        } else {
            return false;
        }
    }

    static bool IsLess(const T& left, const T& right)
    {
        if constexpr (std::is_same_v<T, std::string>) {
            const int order = std::memcmp(left.data(), right.data(), std::min(left.size(), right.size()));
            return order < 0 || (order == 0 && left.size() < right.size());
        } else if constexpr (std::is_same_v<T, DateTime>) {
            return left.TimeStamp() < right.TimeStamp();
        } else {
            return left < right;
        }
    }

    static auto Sum(const std::vector<T>& cells)
    {
        if constexpr (std::is_same_v<T, DateTime>) {
            std::uint32_t total = 0;
            for (const DateTime& cell : cells) {
                total += static_cast<std::uint32_t>(cell.TimeStamp());
            }
            return DateTime(static_cast<std::int32_t>(total));
        } else if constexpr (std::is_same_v<T, bool>) {
            std::int64_t total = 0;
            for (const bool cell : cells) {
                total += cell ? 1 : 0;
            }
            return total;
        } else {
            using Total = std::conditional_t<std::is_same_v<T, float>, float, double>;
            Total total = 0;
            for (const T cell : cells) {
                Add<Total>(total, static_cast<Total>(cell));
            }
            return total;
        }
    }

    static double MeanOfNumbers(const std::vector<T>& cells, bool skipNan)
    {
        double total = 0.0;
        double count = 0.0;
        for (const T cell : cells) {
            if (!skipNan || !IsNan(cell)) {
                Add<double>(total, static_cast<double>(cell));
                ++count;
            }
        }
        return count == 0.0 ? std::numeric_limits<double>::quiet_NaN() : total / count;
    }

    static auto Mean(const std::vector<T>& cells)
    {
        if constexpr (std::is_same_v<T, DateTime>) {
            std::uint32_t total = 0;
            for (const DateTime& cell : cells) {
                total += static_cast<std::uint32_t>(cell.TimeStamp()) / static_cast<std::uint32_t>(cells.size());
            }
            return DateTime(static_cast<std::int32_t>(total));
        } else if constexpr (std::is_same_v<T, float>) {
            return static_cast<float>(MeanOfNumbers(cells, true));
        } else {
            return MeanOfNumbers(cells, true);
        }
    }

    static std::uint32_t IdxMax(const std::vector<T>& cells)
    {
        std::uint32_t best = 0;
        for (std::uint32_t i = 1; i < cells.size(); ++i) {
            best = IsLess(cells[best], cells[i]) ? i : best;
        }
        return best;
    }

    static T Max(const std::vector<T>& cells) { return cells[IdxMax(cells)]; }

    static T Min(const std::vector<T>& cells)
    {
        std::size_t best = 0;
        for (std::size_t i = 1; i < cells.size(); ++i) {
            best = IsLess(cells[i], cells[best]) ? i : best;
        }
        return cells[best];
    }

    static T Ptp(const std::vector<T>& cells)
    {
        for (const T& cell : cells) {
            if (IsNan(cell)) {
                return cell;
            }
        }
        const T largest = Max(cells);
        const T smallest = Min(cells);
        if constexpr (std::is_same_v<T, DateTime>) {
            return DateTime(static_cast<std::int32_t>(largest.TimeStamp() - smallest.TimeStamp()));
        } else if constexpr (std::is_same_v<T, bool>) {
            return largest && !smallest;
        } else if constexpr (std::is_integral_v<T>) {
            return static_cast<T>(static_cast<std::uint64_t>(largest) - static_cast<std::uint64_t>(smallest));
        } else {
            return std::isnan(largest - smallest) ? std::numeric_limits<T>::quiet_NaN() : largest - smallest;
        }
    }
};

} // namespace MERVO::Tessera
