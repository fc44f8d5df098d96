#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "tessera/core/data_frame.h"
#include "tessera/core/factories.h"

namespace MERVO::Tessera {

/**
 * Rows in groups: runs of the rows of columns whose order suits that, and what functors make of them.
 *
 * It shares the columns with the table that they come from, if that was reordered for it, and sees what is written to
 * them; they live as long as any holder. One object belongs to one thread, as Transform and GetProcessedDataFrame
 * change it.
 *
 * Key columns are told from the others in the columns' order: a key that stands behind a higher one in the list of keys
 * counts as a value column.
 */
class TESSERA_API BaseGroups {
public:
    using Creators = std::vector<UnaryFactory>;

    virtual ~BaseGroups() = default;

    /// Writes each group to standard output: its number, its label and its rows.
    virtual void Show() const = 0;
    /**
     * Fills a key column of a result.
     * @param dstBegin the row at which the results of each group begin, and their number behind them.
     * @param single   whether each group has one row there.
     * @return 0 or a functor's code.
     */
    virtual ErrorCode ApplyKey(
        const SeriesPtr& src, const SeriesPtr& dst, const std::vector<std::uint32_t>& dstBegin, bool single) const = 0;
    /// Fills a value column of a result: runs the functor on each group for itself. Returns 0, or the first code.
    virtual ErrorCode ApplyValue(const Func::UnaryBase& functor, const SeriesPtr& src, const SeriesPtr& dst,
        const std::vector<std::uint32_t>& dstBegin) const = 0;

    /**
     * Makes a table of what a functor makes of each group of each value column, group after group. Columns keep their
     * order and names; on each row of a group's results stands its key.
     * @param creator a functor for all value columns; in the other form, where there is one for each of them, all give
     *                as many rows.
     * @return the table, or one with the code: 2: there are no groups, another number of creators, creators that give
     *         different numbers of rows, or a functor that changes the container; 5: a column that has lost its rows
     *         since; 3: no memory; or a functor's code.
     */
    DataFrame Apply(const UnaryFactory& creator) const;
    DataFrame Apply(const Creators& creators) const;
    /// Apply without its checks. `total` is the number of rows of the result.
    DataFrame ApplyInner(
        const Creators& creators, const std::vector<std::uint32_t>& dstBegin, unsigned int total) const;
    /**
     * Makes a table in which each row has what a functor makes of its group, in place of its values. Rows are in the
     * order of the groups.
     * @return the table, or one with the code: as Apply; 2 also: a functor that does not give one value for each group.
     */
    DataFrame Transform(const UnaryFactory& creator) const;
    /// Tells the row at which the results of each group begin, and their number behind them and in `total`. The first
    /// column decides. Nothing for want of memory.
    std::vector<std::uint32_t> GetDstBeginIndex(const UnaryFactory& creator, unsigned int& total) const;
    /// Hands out the rows in the groups' order, without a copy: the columns are those of the groups. An empty table the
    /// second time, and after Transform.
    DataFrame GetProcessedDataFrame() const;
    /// A copy of a column; the error column without memory for it.
    SeriesPtr CopyBaseSeriesP(const SeriesPtr& column) const;

    unsigned int GetGroupNum() const { return groupCount; }
    /// For each row where it stood in the table that was grouped; empty where that was reordered itself.
    const std::vector<std::uint32_t>& GetRowOrder() const { return rowOrder; }
    /// The row at which each group begins, and behind them the number of rows. Empty without groups.
    const std::vector<std::uint32_t>& GetGroupBegins() const { return groupBegins; }
    /// The positions of the key columns.
    const std::vector<std::uint32_t>& GetKeyColumns() const { return keyColumns; }

    /// A group's rows as a table of its own: of all columns, or of the key columns only, in the columns' order. Empty
    /// for a group that there is not. With the code: 5: the columns have no such rows; 3: no memory.
    DataFrame CopyGroup(unsigned int group) const;
    DataFrame CopyLabel(unsigned int group) const;

protected:
    using Columns = DataFrame::Columns;
    using SharedColumns = std::shared_ptr<Columns>;

    BaseGroups() = default;
    BaseGroups(SharedColumns&& sharedColumns, const std::vector<std::uint32_t>& keys);
    BaseGroups(const BaseGroups&) = default;
    BaseGroups(BaseGroups&&) noexcept = default;
    BaseGroups& operator=(const BaseGroups&) = default;
    BaseGroups& operator=(BaseGroups&&) noexcept = default;

    /// Takes each row with a flag for the first one of a group.
    void BeginGroups(const std::vector<std::uint8_t>& flags);

    /// A cursor on all rows of a column; null where it has lost some, or is none. Throws std::bad_alloc.
    Cursor RowsOf(const SeriesPtr& column) const;
    /// ApplyValue, for groups whose rows are runs.
    ErrorCode ApplyToRuns(const Func::UnaryBase& functor, const SeriesPtr& src, const SeriesPtr& dst,
        const std::vector<std::uint32_t>& dstBegin) const;
    /// A cursor by which functors tell the length of their results: that of RowsOf, unless the rows are not made yet.
    virtual Cursor RowsToAsk(const SeriesPtr& column) const;
    /// Puts the first row of each group into all rows of the group's results, or into a single one.
    ErrorCode SelectFirstRows(
        const SeriesPtr& src, const SeriesPtr& dst, const std::vector<std::uint32_t>& dstBegin, bool single) const;
    void ShowGroups() const;

    std::vector<std::uint32_t> rowOrder;
    std::vector<std::uint32_t> groupBegins;
    std::vector<std::uint32_t> keyColumns;
    SharedColumns columns;
    mutable SharedColumns processedColumns;
    std::uint32_t groupCount = 0;

private:
    DataFrame CopyRows(unsigned int group, std::span<const std::uint32_t> positions) const;
    std::vector<std::uint32_t> FindDstBegins(const UnaryFactory& creator, unsigned int& total) const;
    Error ApplyColumn(const UnaryFactory& creator, std::uint32_t position, const std::vector<std::uint32_t>& dstBegin,
        SeriesPtr& result) const;
    Error RepeatKey(const UnaryFactory& creator, std::uint32_t position, const std::vector<std::uint32_t>& dstBegin,
        SeriesPtr& result) const;
    Error TransformColumn(const UnaryFactory& creator, std::uint32_t position, SeriesPtr& result) const;
};

/// Rows with equal keys in groups, as DataFrame::GroupBy makes them.
class TESSERA_API Groups final : public BaseGroups {
public:
    /// No groups.
    Groups() = default;
    /**
     * Takes the columns of a table that was reordered itself.
     * @param flags non-zero for each row that begins a group.
     * @param keys  the positions of the key columns; kept in ascending order.
     */
    Groups(
        const std::vector<std::uint8_t>& flags, SharedColumns&& sharedColumns, const std::vector<std::uint32_t>& keys);
    /// Takes columns made for the groups; `index` tells where each row stood before. Keys are kept in their order.
    Groups(const std::vector<std::uint32_t>& index, const std::vector<std::uint8_t>& flags,
        SharedColumns&& sharedColumns, const std::vector<std::uint32_t>& keys);

    void Show() const override;
    ErrorCode ApplyKey(const SeriesPtr& src, const SeriesPtr& dst, const std::vector<std::uint32_t>& dstBegin,
        bool single) const override;
    ErrorCode ApplyValue(const Func::UnaryBase& functor, const SeriesPtr& src, const SeriesPtr& dst,
        const std::vector<std::uint32_t>& dstBegin) const override;
};

} // namespace MERVO::Tessera
