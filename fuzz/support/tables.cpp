#include "fuzz/support/tables.h"

#include <algorithm>
#include <bit>
#include <iostream>
#include <set>

#include "fuzz/support/memory.h"
#include "fuzz/support/require.h"

namespace MERVO::Tessera::Fuzz {
namespace {

/// What a table keeps to itself.
class Inside : public DataFrameRef {
public:
    static bool Shares(const DataFrameRef& one, const DataFrameRef& other)
    {
        return (one.*&Inside::SharesColumnsWith)(other);
    }
    static bool AreNamesStale(const DataFrameRef& table) { return table.*&Inside::isColNameDirty; }
    static const Columns& AllColumns(const DataFrameRef& table) { return *(table.*&Inside::series); }
};

/// FNV-1a, eight bytes at a time.
class Digest {
public:
    void Add(std::uint64_t word) { value = (value ^ word ^ (word >> 29)) * 0x100000001B3ULL; }
    void Add(const std::string& text)
    {
        Add(text.size());
        for (const char byte : text) {
            Add(static_cast<std::uint64_t>(static_cast<unsigned char>(byte)));
        }
    }
    template <typename T>
    void AddCell(const T& cell)
    {
        if constexpr (std::is_same_v<T, double>) {
            Add(std::bit_cast<std::uint64_t>(cell));
        } else if constexpr (std::is_same_v<T, float>) {
            Add(std::uint64_t{std::bit_cast<std::uint32_t>(cell)});
        } else if constexpr (std::is_same_v<T, DateTime>) {
            Add(static_cast<std::uint64_t>(cell.TimeStamp()));
        } else if constexpr (std::is_same_v<T, DataFrame>) {
            Add(DigestOf(cell));
        } else if constexpr (std::is_same_v<T, std::string>) {
            Add(cell);
        } else {
            Add(static_cast<std::uint64_t>(cell));
        }
    }
    std::uint64_t Value() const { return value; }

private:
    std::uint64_t value = 0xCBF29CE484222325ULL;
};

template <typename T>
void AddCells(Digest& digest, const Cursor& cursor)
{
    Func::ForEachElement<T>(cursor, [&digest](const auto& cell) { digest.AddCell(static_cast<const T&>(cell)); });
}

void Show(bool isSame, const DataFrameRef& one, const DataFrameRef& other)
{
    if (!isSame) {
        std::cerr << one << "is not the same as\n" << other;
    }
}

constexpr auto CELL_ADDERS = ForEachValueType([](auto number) { return &AddCells<ValueTypes::At<number()>>; });

} // namespace

std::uint64_t CellDigestOf(const DataFrameRef& table)
{
    Digest digest;
    digest.Add(table.RowCount());
    digest.Add(table.ColumnCount());
    for (unsigned int k = 0; k < table.ColumnCount(); ++k) {
        const SeriesPtr& column = table.GetColumn(k);
        const Cursor cursor = table.GetSlicedIterator(column);
        digest.Add(std::uint64_t{column != nullptr} + 2 * std::uint64_t{cursor != nullptr});
        if (cursor != nullptr) {
            digest.Add(static_cast<std::uint64_t>(column->GetTypeId()));
            CELL_ADDERS[static_cast<std::size_t>(column->GetTypeId())](digest, cursor);
        }
    }
    return digest.Value();
}

std::uint64_t DigestOf(const DataFrameRef& table)
{
    Digest digest;
    digest.Add(static_cast<std::uint64_t>(table.GetError().code));
    for (const std::string& name : table.GetColumnName()) {
        digest.Add(name);
    }
    for (unsigned int k = 0; k < table.ColumnCount(); ++k) {
        const SeriesPtr& column = table.GetColumn(k);
        digest.Add(column == nullptr ? 0 : static_cast<std::uint64_t>(column->GetAttr().containerId));
    }
    digest.Add(CellDigestOf(table));
    return digest.Value();
}

void RequireSame(const DataFrameRef& one, const DataFrameRef& other, const char* law)
{
    const bool isSame = MemoryBudget::HasRunOut() || DigestOf(one) == DigestOf(other);
    Show(isSame, one, other);
    Require(isSame, law);
}

void RequireSameCells(const DataFrameRef& one, const DataFrameRef& other, const char* law)
{
    const bool isSame = MemoryBudget::HasRunOut() || CellDigestOf(one) == CellDigestOf(other);
    Show(isSame, one, other);
    Require(isSame, law);
}

bool ShareColumns(const DataFrameRef& one, const DataFrameRef& other) { return Inside::Shares(one, other); }

bool IsDocumented(ErrorCode code)
{
    static const std::set<ErrorCode> CODES = {0, 1, 2, 3, 4, 5, 6, 7, 12, 15, 17, 18, 19, 20, 21, 22, 33, 34, 36};
    return CODES.count(code) != 0;
}

void RequireSound(const DataFrameRef& table, bool isOwner)
{
    const ErrorCode code = table.GetError().code;
    Require(IsDocumented(code), "a table's code is documented");
    const DataFrameView::Columns& all = Inside::AllColumns(table);
    const bool isWhole = isOwner && code == ERROR_NONE;
    if (isWhole) {
        Require(table.ColumnCount() == all.size(), "a table has the columns that its shape tells");
        for (unsigned int k = 0; k < table.ColumnCount(); ++k) {
            const SeriesPtr& column = table.GetColumn(k);
            Require(column != nullptr && IsValueType(column->GetTypeId()), "a column has a value type");
            Require(column->Size() == table.RowCount(), "a column has the rows that the shape tells");
        }
    }
    if (code == ERROR_NONE) {
        const bool isRefresh = Inside::AreNamesStale(table);
        const std::vector<std::string> names = table.GetColumnName();
        Require(names.size() == table.ColumnCount() || table.GetError().code == ERROR_OUT_OF_MEMORY,
            "there is a name for each column");
        Require(!isRefresh || !isWhole || std::set<std::string>(names.begin(), names.end()).size() == names.size(),
            "names are unique when they were refreshed");
    }
    for (unsigned int k = 0; k < table.ColumnCount(); ++k) {
        const Cursor cursor = table.GetSlicedIterator(table.GetColumn(k));
        Require(cursor == nullptr || cursor->Length() == table.RowCount(), "a cursor has the window's length");
    }
}

} // namespace MERVO::Tessera::Fuzz
