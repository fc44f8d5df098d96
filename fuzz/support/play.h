#pragma once

#include <array>
#include <memory>
#include <set>

#include "fuzz/support/inputs.h"
#include "fuzz/support/memory.h"
#include "fuzz/support/tables.h"
#include "fuzz/support/witness.h"

namespace MERVO::Tessera::Fuzz {

using Range = DataFrameView::Range;
using Positions = std::vector<std::uint32_t>;
using Names = std::vector<std::string>;

inline constexpr std::uint32_t MOST_ROWS = 60;
inline constexpr std::uint32_t MOST_COLUMNS = 40;

/// Makes the same twice in memory of different content; gives the second one.
template <typename Make>
auto Twice(Make&& make)
{
    FillFreshMemory(0x00);
    const auto first = make();
    FillFreshMemory(0xA5);
    auto second = make();
    RequireSame(first, second, "equal operations give equal results");
    return second;
}

/// The tables and windows that the operations of the classes get, and what is known of them.
class Play {
public:
    Play(const std::uint8_t* data, std::size_t size);

    /// Any table or window to read.
    const DataFrameRef& View() { return Place(inputs.Below(TABLES + WINDOWS)); }
    const DataFrame& Table() { return AnyTable(); }
    /// One of the tables, which may be changed after WillChange.
    DataFrame& AnyTable() { return tables[inputs.Below(TABLES)]; }
    void WillChange(const DataFrameRef& table) { witness.Expect(table); }
    DataFrameRef& WrittenView();
    DataFrame& WrittenTable();

    void KeepWindow(std::unique_ptr<DataFrameRef> window);
    /// Puts a result in a table's place, unless it is large.
    void Keep(DataFrame&& table);

    Range DrawRange(std::uint32_t size);
    Positions DrawRows(const DataFrameRef& table) { return inputs.Indices(table.RowCount(), 8); }
    Positions DrawColumns(const DataFrameRef& table) { return inputs.Indices(table.ColumnCount(), 4); }
    std::string DrawName(const DataFrameRef& table);
    Names DrawNames(const DataFrameRef& table);

    /// An apply that fails may leave a table with a part of its columns done, and no error in it.
    void NoteApplied(const DataFrameRef& target, ErrorCode code);
    void NoteAssigned(const DataFrameRef& target) { torn.erase(&target); }
    bool IsTorn(const DataFrameRef& table) const { return torn.count(&table) != 0; }

    /// Looks at all tables and windows after an operation. What grew large makes way for something small.
    void Check();

    Inputs inputs;

private:
    static constexpr std::uint32_t TABLES = 4;
    static constexpr std::uint32_t WINDOWS = 4;

    DataFrameRef& Place(std::uint32_t place);

    std::array<DataFrame, TABLES> tables;
    std::array<std::unique_ptr<DataFrameRef>, WINDOWS> windows;
    std::set<const DataFrameRef*> torn;
    Witness witness{TABLES + WINDOWS};
};

} // namespace MERVO::Tessera::Fuzz
