#include "tessera/grouping/label_series.h"

#include <algorithm>
#include <utility>

#include "tessera/core/element_text.h"

namespace MERVO::Tessera {

LabelSeries::LabelSeries(const TimeWindows& first, bool isLabelledByStart,
    const std::vector<std::uint32_t>& windowCounts, std::uint32_t length, std::string columnName)
    : NamedSeries({length, CONTAINER_ARRAY, TESSERA_DATETIME}, std::move(columnName)), window(first),
      labelLeft(isLabelledByStart), counts(windowCounts)
{
}

void LabelSeries::WriteTo(const Cursor& labels, const std::vector<std::uint32_t>& otherCounts) const
{
    WriteLabels(window, labelLeft, otherCounts, labels);
}

bool LabelSeries::IsWritten() const
{
    const std::lock_guard lock(mutex);
    return cells != nullptr;
}

Cursor LabelSeries::FirstRows()
{
    constexpr std::uint32_t MOST = 1024;
    const std::lock_guard lock(mutex);
    if (firstRows == nullptr) {
        firstRows = BuildSeries(WithLength(attr, std::min(attr.length, MOST)), {});
        const Cursor labels = firstRows->GetIterator();
        if (labels != nullptr) {
            WriteTo(labels, counts);
        }
    }
    return firstRows->GetIterator();
}

const SeriesPtr& LabelSeries::Cells() const
{
    const std::lock_guard lock(mutex);
    if (cells == nullptr) {
        SeriesPtr written = BuildSeries(attr, {});
        const Cursor labels = written->GetIterator();
        if (labels != nullptr) {
            WriteTo(labels, counts);
            cells = std::move(written);
        }
    }
    return cells;
}

Cursor LabelSeries::GetIterator(unsigned int begin, unsigned int end)
{
    const SeriesPtr& column = Cells();
    return column == nullptr ? nullptr : column->GetIterator(begin, end);
}

void LabelSeries::Print(unsigned int begin, unsigned int end) const
{
    const SeriesPtr& column = Cells();
    if (column == nullptr) {
        EndPrintedLine();
    } else {
        column->Print(begin, end);
    }
}

} // namespace MERVO::Tessera
