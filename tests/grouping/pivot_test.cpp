// Cross tables.

#include <gmock/gmock.h>

#include <algorithm>
#include <numeric>

#include "tessera/tessera.hpp"
#include "tests/support/log_capture.h"
#include "tests/support/random.h"
#include "tests/support/same_tables.h"

namespace MERVO::Tessera {
namespace {

using testing::ElementsAre;
using Positions = std::vector<std::uint32_t>;
using TableParams = DataFrame::TableParams;
template <template <ContainerID> class F>
using Reducer = Func::FunctorFactory<F, Func::UnaryBase>;

/// Two columns of texts, a number and a bool as keys, and columns of values.
DataFrame RandomTable(std::uint64_t seed, std::uint32_t rows)
{
    Random random(seed);
    std::vector<std::string> first;
    std::vector<std::string> second;
    std::vector<std::int32_t> number;
    std::vector<bool> bit;
    std::vector<double> real;
    std::vector<std::int16_t> small;
    std::vector<DateTime> time;
    for (std::uint32_t i = 0; i < rows; ++i) {
        first.emplace_back(1, static_cast<char>('a' + random.Below(3)));
        second.emplace_back(random.Below(3) * 20, 'x');
        number.push_back(static_cast<std::int32_t>(random.Below(4)) - 1);
        bit.push_back(random.Below(2) == 0);
        real.push_back(static_cast<double>(random.Below(1000)) / 7);
        small.push_back(static_cast<std::int16_t>(random.Below(500)));
        time.emplace_back(static_cast<long>(random.Below(100)));
    }
    return TableOf(Column<std::string>("first", first), Column<std::string>("second", second),
        Column<std::int32_t>("number", number), Column<bool>("bit", bit), Column<double>("real", real),
        Column<std::int16_t>("small", small), Column<DateTime>("time", time));
}

/// The bool and the stamp, which are sorted even where keys are only brought together.
constexpr bool IsSorted(std::uint32_t column) { return column == 3 || column == 6; }

using Key = std::vector<std::string>;

/// Cells as a cast writes them.
Key TextsOf(const DataFrame& table, std::uint32_t column)
{
    DataFrame texts;
    EXPECT_EQ(
        texts.ApplyInplace(Func::FunctorFactory<Func::TypeCast, Func::UnaryBase, MERVO_TESSERA_TYPEID>{TESSERA_STRING},
            table.SelectCol(Positions{column})),
        0);
    return CellsOf<std::string>(texts.GetColumn(0)->GetIterator());
}

/// Cross tables made by looking all rows through for each cell.
class Model {
public:
    explicit Model(const DataFrame& source) : table(source)
    {
        for (std::uint32_t k = 0; k < table.ColumnCount(); ++k) {
            texts.push_back(TextsOf(table, k));
        }
    }

    DataFrame Pivot(const TableParams& params, const UnaryFactory& creator, double fill) const
    {
        Positions keys = params.index;
        keys.insert(keys.end(), params.columns.begin(), params.columns.end());
        Positions all(table.RowCount());
        std::iota(all.begin(), all.end(), 0U);
        const Positions combinations = FirstOfEach(Ordered(all, keys), keys);
        const Positions rows = FirstOfEach(Ordered(combinations, params.index), params.index);
        const Positions columns = FirstOfEach(Ordered(combinations, params.columns), params.columns);
        DataFrame result = table.SelectCol(params.index).SelectRow(rows);
        for (const std::uint32_t column : columns) {
            for (const std::uint32_t value : params.values) {
                DataFrame cells = Cells(params, creator, rows, column, value, fill);
                const bool isKey = std::find(keys.begin(), keys.end(), value) != keys.end();
                std::string name = cells.GetColumnName()[0] + (isKey ? "_1" : "");
                for (const std::string& part : KeyOf(column, params.columns)) {
                    name += "-" + part;
                }
                EXPECT_EQ(cells.SetColumnName({name}), 0);
                EXPECT_EQ(result.AppendColInplace(cells), 0);
            }
        }
        EXPECT_EQ(result.RefreshView(), 0);
        return result;
    }

private:
    Key KeyOf(std::uint32_t row, const Positions& columns) const
    {
        Key key;
        for (const std::uint32_t column : columns) {
            key.push_back(texts[column][row]);
        }
        return key;
    }

    /// Equal keys together, as they come first; what is sorted descends.
    Positions Ordered(Positions rows, const Positions& columns) const
    {
        for (auto column = columns.rbegin(); column != columns.rend(); ++column) {
            Key order;
            for (const std::uint32_t row : rows) {
                if (std::find(order.begin(), order.end(), texts[*column][row]) == order.end()) {
                    order.push_back(texts[*column][row]);
                }
            }
            if (IsSorted(*column)) {
                std::sort(order.rbegin(), order.rend());
            }
            std::stable_sort(rows.begin(), rows.end(), [&](std::uint32_t left, std::uint32_t right) {
                return std::find(order.begin(), order.end(), texts[*column][left]) <
                    std::find(order.begin(), order.end(), texts[*column][right]);
            });
        }
        return rows;
    }

    Positions FirstOfEach(const Positions& rows, const Positions& columns) const
    {
        Positions firsts;
        for (const std::uint32_t row : rows) {
            if (firsts.empty() || KeyOf(firsts.back(), columns) != KeyOf(row, columns)) {
                firsts.push_back(row);
            }
        }
        return firsts;
    }

    /// The functor's result for each row of the cross table, under the value column's name.
    DataFrame Cells(const TableParams& params, const UnaryFactory& creator, const Positions& rows, std::uint32_t column,
        std::uint32_t value, double fill) const
    {
        const DataFrame values = table.SelectCol(Positions{value});
        DataFrame whole;
        EXPECT_EQ(whole.ApplyInplace(creator, values), 0); // for its value type
        DataFrame cells = GetEmptyDataFrame({static_cast<unsigned int>(rows.size()), 1}, whole.Type());
        EXPECT_EQ(cells.SetColumnName(values.GetColumnName()), 0);
        DataFrame filled;
        EXPECT_EQ(filled.ReadVector<double>({fill}, {1, 1}, {whole.Type()}), 0);
        for (unsigned int r = 0; r < rows.size(); ++r) {
            Positions members;
            for (std::uint32_t row = 0; row < table.RowCount(); ++row) {
                if (KeyOf(row, params.index) == KeyOf(rows[r], params.index) &&
                    KeyOf(row, params.columns) == KeyOf(column, params.columns)) {
                    members.push_back(row);
                }
            }
            DataFrame cell = filled;
            if (!members.empty()) {
                EXPECT_EQ((cell = DataFrame()).ApplyInplace(creator, values.SelectRow(members)), 0);
            }
            cells[DataFrameView::Range{r, r + 1}] = cell;
        }
        return cells;
    }

    const DataFrame& table;
    std::vector<Key> texts;
};

TEST(PivotTable, HoldsInEachCellTheValueOfItsOwnCombination)
{
    const TableParams cases[] = {
        {{4}, {0}, {2}},
        {{5, 4}, {0}, {2}},
        {{4}, {0, 1}, {2}}, // where the row groups are no runs of the combinations
        {{4}, {1, 2, 0}, {3}},
        {{4, 6, 5}, {3, 0}, {2, 1}},
        {{6}, {6}, {0}}, // a key counts as a value too
        {{2}, {1}, {2, 0, 3}},
    };
    for (const std::uint32_t rows : {1U, 7U, 40U, 150U}) {
        const DataFrame table = RandomTable(rows, rows);
        const Model model(table);
        for (const TableParams& params : cases) {
            EXPECT_TRUE(IsSameTable(
                table.PivotTable(params, Reducer<Func::Mean>{}, 17), model.Pivot(params, Reducer<Func::Mean>{}, 17)))
                << rows << " rows, case " << &params - cases;
        }
        EXPECT_TRUE(IsSameTable(table.PivotTable(cases[2], DataFrame::PivotCreators{{4, Reducer<Func::Max>{}}}, -0.5),
            model.Pivot(cases[2], Reducer<Func::Max>{}, -0.5)));
    }
}

DataFrame Sales()
{
    return TableOf(Column<std::string>("who", {"a", "a", "b"}), Column<std::string>("what", {"x", "y", "x"}),
        Column<std::int32_t>("sold", {1, 2, 3}), Column<std::string>("note", {"p", "q", "r"}));
}

template <typename T>
class PivotFill : public testing::Test {
};
using FillTypes = testing::Types<signed char, unsigned char, short, unsigned short, int, unsigned int, long long,
    unsigned long long, float, double>;
TYPED_TEST_SUITE(PivotFill, FillTypes);

TYPED_TEST(PivotFill, IsCastToTheValueType)
{
    const TypeParam fill = std::numeric_limits<TypeParam>::is_integer ? static_cast<TypeParam>(-2) : TypeParam(2.5);
    const DataFrame crossed = Sales().PivotTable(
        {{2, 3}, {0}, {1}}, DataFrame::PivotCreators{{2, Reducer<Func::Max>{}}, {3, Reducer<Func::Max>{}}}, fill);
    EXPECT_THAT(crossed.GetColumnName(), ElementsAre("who", "sold-x", "note-x", "sold-y", "note-y"));
    EXPECT_THAT(CellsOf<std::int32_t>(crossed.GetColumn(1)->GetIterator()), ElementsAre(1, 3));
    EXPECT_THAT(
        CellsOf<std::int32_t>(crossed.GetColumn(3)->GetIterator()), ElementsAre(2, static_cast<std::int32_t>(fill)));
    DataFrame text;
    using Stored = std::conditional_t<std::is_same_v<TypeParam, long long>, std::int64_t,
        std::conditional_t<std::is_same_v<TypeParam, unsigned long long>, std::uint64_t, TypeParam>>;
    EXPECT_EQ(text.ReadVector<Stored>({static_cast<Stored>(fill)}, {1, 1}, {TESSERA_STRING}), 0);
    EXPECT_THAT(
        CellsOf<std::string>(crossed.GetColumn(4)->GetIterator()), ElementsAre("q", text.To1DVector<std::string>()[0]));
}

TEST(PivotTable, WithoutColumnsIsTheAggregate)
{
    EXPECT_TRUE(IsSameTable(Sales().PivotTable({{2}, {0}, {}}, Reducer<Func::Sum>{}, 0),
        TableOf(Column<std::string>("who", {"a", "b"}), Column<double>("sold", {3, 3}))));
}

TEST(PivotTable, TakesTheFirstOfSeveralResults)
{
    const DataFrame crossed = Sales().PivotTable({{2}, {1}, {0}}, Reducer<Func::CopySeries>{}, 0);
    EXPECT_THAT(CellsOf<std::int32_t>(crossed.GetColumn(1)->GetIterator()), ElementsAre(1, 2));
    const DataFrame one = TableOf(Column<bool>("k", {true, true}), Column<float>("v", {4, 5}));
    EXPECT_THAT(
        CellsOf<float>(one.PivotTable({{1}, {0}, {0}}, Reducer<Func::CopySeries>{}, 0).GetColumn(1)->GetIterator()),
        ElementsAre(4.0F));
}

TEST(PivotTable, RefusesWithAMessageAndAnEmptyTable)
{
    const Reducer<Func::Sum> sum;
    const std::map<std::uint32_t, UnaryFactory> one{{2, sum}};
    struct Refusal {
        int line;
        DataFrame table;
        TableParams params;
        DataFrame::PivotCreators creators;
        const char* text;
    };
    const Refusal cases[] = {
        {__LINE__, Sales(), {{9}, {0}, {1}}, one, "Invalid value 9"},
        {__LINE__, Sales(), {{2, 2}, {9}, {1}}, one, "Invalid values, duplicate values"},
        {__LINE__, Sales(), {{2}, {0, 4}, {9}}, one, "Invalid index 4"},
        {__LINE__, Sales(), {{2}, {0, 0}, {1}}, one, "Invalid index, duplicate index value"},
        {__LINE__, Sales(), {{2}, {0}, {1, 7}}, one, "Invalid column 7"},
        {__LINE__, Sales(), {{2}, {0}, {1, 1}}, one, "Invalid columns, duplicate columns value"},
        {__LINE__, Sales(), {{2}, {0}, {1}}, {{2, sum}, {3, sum}}, "mismatched functors and values."},
        {__LINE__, Sales(), {{2, 3}, {0}, {1}}, one, "PivotTable: no functor for value 3"},
        {__LINE__, Sales(), {{2}, {0}, {1}}, {{2, nullptr}}, "PivotTable: no functor for value 2"},
        {__LINE__, Sales(), {{3}, {0}, {1}}, {{3, sum}}, "Failed to group key, error 5"},
        {__LINE__, Sales(), {{}, {0}, {1}}, {}, "PivotTable: no values"},
        {__LINE__, Sales(), {{2}, {}, {}}, one, "Failed to group key, error 2"},
        {__LINE__, Sales(), {{2}, {}, {1}}, one, "Table length is 0, seriesLen 2"},
        {__LINE__, GetEmptyDataFrame({0, 3}, TESSERA_INT32), {{2}, {0}, {1}}, one, "Failed to group key, error 2"},
        {__LINE__, DataFrame(), {{2}, {0}, {1}}, one, "Invalid value 2"},
    };
    for (const Refusal& refused : cases) {
        const LogCapture log;
        const DataFrame result = refused.table.PivotTable(refused.params, refused.creators, 0);
        EXPECT_TRUE(result.ColumnCount() == 0 && result.GetError().code == 0)
            << refused.line << ": " << result.ColumnCount() << ", " << result.GetError().code;
        EXPECT_TRUE(log.Has(1, refused.text)) << refused.line;
    }
    const LogCapture log;
    EXPECT_EQ(Sales().PivotTable({{2, 2}, {0}, {1}}, sum, 0).ColumnCount(), 0U);
    EXPECT_EQ(Sales().PivotTable({{2}, {0}, {1}}, UnaryFactory(), 0).ColumnCount(), 0U);
    EXPECT_THAT(log.Texts(1), ElementsAre("PivotTable: Duplicate values.", "PivotTable: no functor for value 2"));
    DataFrame failed = Sales();
    failed.SetError({9, "an earlier failure"});
    EXPECT_EQ(failed.PivotTable({{2}, {0}, {1}}, one, 0).GetError().message, "an earlier failure");
    EXPECT_TRUE(log.Has(1, "DataFrame 9 invalid"));

    // A row and a column for each of many keys: far more cells than there is memory for.
    std::vector<std::int32_t> keys(200000);
    std::iota(keys.begin(), keys.end(), 0);
    EXPECT_EQ(TableOf(Column("k", keys), Column("k", keys)).PivotTable({{0}, {0}, {1}}, sum, 0).ColumnCount(), 0U);
    EXPECT_TRUE(log.Has(1, "Too many cells in pivot table: 40000000000"));
}

} // namespace
} // namespace MERVO::Tessera
