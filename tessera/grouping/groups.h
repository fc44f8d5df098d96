#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "tessera/core/data_frame.h"

namespace MERVO::Tessera {

/**
 * Rows in groups: runs of the rows of columns whose order suits that.
 *
 * It shares the columns with the table that they come from, if that was reordered for it, and sees what is written to
 * them; they live as long as any holder.
 */
class TESSERA_API BaseGroups {
public:
    virtual ~BaseGroups() = default;

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

    std::vector<std::uint32_t> rowOrder;
    std::vector<std::uint32_t> groupBegins;
    std::vector<std::uint32_t> keyColumns;
    SharedColumns columns;
    SharedColumns processedColumns;
    std::uint32_t groupCount = 0;

private:
    DataFrame CopyRows(unsigned int group, std::span<const std::uint32_t> positions) const;
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
};

} // namespace MERVO::Tessera
