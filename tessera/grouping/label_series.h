#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include "tessera/core/named_series.h"
#include "tessera/grouping/time_windows.h"

namespace MERVO::Tessera {

/**
 * The time column of samples: an array of DateTime, which is not written before someone asks for a cursor on it.
 *
 * Its cells are large, and windows are mostly evaluated without a look at them. Threads that only read may ask at once.
 */
class LabelSeries final : public NamedSeries {
public:
    /// Cells for all counts, which are of adjacent windows.
    LabelSeries(const TimeWindows& first, bool isLabelledByStart, const std::vector<std::uint32_t>& windowCounts,
        std::uint32_t length, std::string columnName);

    std::uint32_t Size() const override { return attr.length; }
    void Print(unsigned int begin, unsigned int end) const override;
    using NamedSeries::GetIterator;
    Cursor GetIterator(unsigned int begin, unsigned int end) override;

    /// Whether the cells exist, so that they may have been changed since.
    bool IsWritten() const;
    /// A cursor on a copy of the first rows, at most 1024: enough for a functor to tell whether it makes one row of
    /// them. Null without memory.
    Cursor FirstRows();
    /// Writes the labels, each as often as the counts given here say.
    void WriteTo(const Cursor& labels, const std::vector<std::uint32_t>& otherCounts) const;

private:
    /// Null, as a cursor, without memory.
    const SeriesPtr& Cells() const;

    TimeWindows window;
    bool labelLeft;
    std::vector<std::uint32_t> counts;
    mutable std::mutex mutex; ///< guards what is made when it is asked for
    mutable SeriesPtr cells;
    SeriesPtr firstRows;
};

} // namespace MERVO::Tessera
