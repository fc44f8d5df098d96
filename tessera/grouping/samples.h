#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "tessera/core/date_time.h"
#include "tessera/grouping/groups.h"

namespace MERVO::Tessera {

/// How windows of time are laid out, and by what.
struct SampleParams {
    std::uint32_t timeColumn = 0;
    bool labelLeft = true;  ///< a window is named by its start, else by its end
    bool closedLeft = true; ///< a window includes its start and not its end, else the other way round
    DateTime gap;           ///< the windows' width in seconds
};

/**
 * Rows in windows of time, as DataFrame::Resample makes them: a group for each window, on columns of their own.
 *
 * The time column holds the windows' labels, and is the key. A window without rows is a group of one row: NaN in
 * columns of float and double, 0, false, an empty text or table, or the moment 0 in others.
 */
class TESSERA_API Samples final : public BaseGroups {
public:
    /// No groups.
    Samples() = default;
    /// Keeps what it is given; ReorderRows makes groups of it.
    Samples(std::vector<std::int32_t> rows, std::vector<std::uint32_t> counts,
        std::shared_ptr<DataFrame::Columns>&& sharedColumns, const SampleParams& params);
    /**
     * Makes windows of the rows of columns, which stay as they are.
     * @param rows   the source row of each row of the result, window after window; -1 for a row without one.
     * @param counts how many rows of the result each window has.
     * @return the windows; none, and the reason in the log, where ReorderRows fails.
     */
    static Samples MakeSamples(std::vector<std::int32_t> rows, std::vector<std::uint32_t> counts,
        std::shared_ptr<DataFrame::Columns>&& sharedColumns, const SampleParams& params);

    /**
     * Puts new columns, arrays of the sample rows, in the place of those that were given. Working set: the columns.
     * @return 0; 7: no columns; 5: no such time column; 21: no sample rows, counts that don't sum up to them, a first
     *         one of -1, one that no column has, or a time column of another value type; 3: no memory, or more rows
     *         than memory can hold. After a failure nothing is changed.
     */
    [[nodiscard]] ErrorCode ReorderRows();

    void Show() const override;
    /// Each row of a window's results gets its label, whether it is a single one or not.
    ErrorCode ApplyKey(const SeriesPtr& src, const SeriesPtr& dst, const std::vector<std::uint32_t>& dstBegin,
        bool single) const override;
    ErrorCode ApplyValue(const Func::UnaryBase& functor, const SeriesPtr& src, const SeriesPtr& dst,
        const std::vector<std::uint32_t>& dstBegin) const override;
    /**
     * Runs a functor on each whole column, the time column too, across the windows, and hands out the results as
     * GetProcessedDataFrame does.
     * @return the table, or one with the code: 2: there are no windows, or the functor changes the number of rows; 3:
     *         no memory; or the functor's code.
     */
    DataFrame GlobalApply(const UnaryFactory& creator) const;

    /// For each row the source row that it comes from; -1 in an empty window.
    const std::vector<std::int32_t>& GetSampleRows() const { return sampleRows; }
    /// For each window the number of its rows.
    const std::vector<std::uint32_t>& GetSampleCounts() const { return sampleCounts; }
    bool IsLabelLeft() const { return labelLeft; }
    bool IsClosedLeft() const { return closedLeft; }
    const DateTime& GetGap() const { return gap; }

protected:
    Cursor RowsToAsk(const SeriesPtr& column) const override;

private:
    Error BuildLabels(const SeriesPtr& times, SeriesPtr& result) const;
    Error BuildColumn(std::uint32_t position, bool isWhole, SeriesPtr& result) const;
    ErrorCode BuildColumns(Columns& results) const;
    Error ApplyGlobally(const UnaryFactory& creator, const SeriesPtr& column, SeriesPtr& result) const;
    std::vector<std::uint32_t> WindowBegins() const;

    std::vector<std::int32_t> sampleRows;
    std::vector<std::uint32_t> sampleCounts;
    bool labelLeft = true;
    bool closedLeft = true;
    DateTime gap;
};

} // namespace MERVO::Tessera
