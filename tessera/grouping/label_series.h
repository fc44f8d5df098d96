#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include "tessera/core/series.h"
#include "tessera/grouping/time_windows.h"

namespace MERVO::Tessera {

/**
 * The time column of samples: an array of DateTime, which is not written before someone asks for a cursor on it.
 *
 * Its cells are large, and windows are mostly evaluated without a look at them. Threads that only read may ask at once.
 */
class LabelSeries final : public BaseSeries {
public:
    /// Cells for all counts, which are of adjacent windows.
    LabelSeries(const TimeWindows& first, bool isLabelledByStart, const std::vector<std::uint32_t>& windowCounts,
        std::uint32_t length, std::string columnName);

    std::uint32_t Size() const override { return attr.length; }
    MERVO_TESSERA_TYPEID GetTypeId() const override { return attr.typeId; }
    void Print(unsigned int begin, unsigned int end) const override;
    std::string GetName() const override { return name; }
    void SetName(const std::string& newName) override { name = newName; }
    void SetName(std::string&& newName) override { name = std::move(newName); }
    Cursor GetIterator() override { return GetIterator(0, attr.length); }
    Cursor GetIterator(unsigned int begin, unsigned int end) override;
    SeriesAttr GetAttr() const override { return attr; }

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
    SeriesAttr attr;
    std::string name;
    mutable std::mutex mutex; ///< guards what is made when it is asked for
    mutable SeriesPtr cells;
    SeriesPtr firstRows;
};

} // namespace MERVO::Tessera
