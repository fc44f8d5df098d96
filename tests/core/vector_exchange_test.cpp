#include "tessera/core/vector_exchange.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/log_capture.h"
#include "tests/support/sample_columns.h"

namespace MERVO::Tessera {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Shape = std::array<unsigned int, 2>;

template <typename T>
class VectorsOf : public testing::Test {
public:
    using Rows = std::vector<std::vector<T>>;

    static constexpr std::uint32_t COLUMNS = 3;
    /// More rows than one block of the walk through a table has.
    static constexpr std::uint32_t ROWS = 8192 / (COLUMNS * sizeof(T)) + 37;

    static const std::vector<T>& Cells()
    {
        static const std::vector<T> cells = SampleValues<T>(ROWS * COLUMNS);
        return cells;
    }
    static Rows InColumns(const std::vector<T>& cells, std::uint32_t columns)
    {
        Rows result(columns);
        for (std::size_t i = 0; i < cells.size(); ++i) {
            result[i % columns].push_back(cells[i]);
        }
        return result;
    }
    static std::vector<T> Flattened(const Rows& rows)
    {
        std::vector<T> cells;
        for (const std::vector<T>& row : rows) {
            cells.insert(cells.end(), row.begin(), row.end());
        }
        return cells;
    }
};
TYPED_TEST_SUITE(VectorsOf, AllValueTypes);

const std::vector<ContainerID> CONTAINER_LISTS[] = {{}, {CONTAINER_ARRAY, CONTAINER_ARRAY, CONTAINER_ARRAY},
    {CONTAINER_LIST, CONTAINER_LIST, CONTAINER_LIST}, {CONTAINER_LIST, CONTAINER_ARRAY, CONTAINER_LIST}};

TYPED_TEST(VectorsOf, GoInByRowsAndComeBack)
{
    using T = TypeParam;
    for (const std::vector<ContainerID>& containers : CONTAINER_LISTS) {
        DataFrame table;
        ASSERT_EQ(table.ReadVector<T>(this->Cells(), {this->ROWS, this->COLUMNS}, {}, containers), 0);
        EXPECT_EQ(table.Type(), TYPE_ID_OF<T>);
        EXPECT_EQ(table.RowCount(), this->ROWS);
        EXPECT_THAT(table.GetColumnName(), ElementsAre("col_0", "col_1", "col_2"));
        for (unsigned int k = 0; k < this->COLUMNS; ++k) {
            EXPECT_EQ(table.GetColumn(k)->GetAttr().containerId, containers.empty() ? CONTAINER_ARRAY : containers[k]);
        }
        EXPECT_TRUE(AreSame(CellsOf<T>(table.GetColumn(1)->GetIterator()), this->InColumns(this->Cells(), 3)[1]));
        EXPECT_TRUE(AreSame(table.To1DVector<T>(), this->Cells()));
        const auto rows = table.ToVector<T>();
        EXPECT_EQ(rows.size(), this->ROWS);
        EXPECT_TRUE(AreSame(this->Flattened(rows), this->Cells()));

        const DataFrameRef window = table.Slice(DataFrame::Range{3, 6}, DataFrame::Range{1, 3});
        const std::vector<T>& cells = this->Cells();
        const std::vector<T> expected = {cells[10], cells[11], cells[13], cells[14], cells[16], cells[17]};
        EXPECT_TRUE(AreSame(window.To1DVector<T>(), expected));
        EXPECT_TRUE(AreSame(this->Flattened(window.ToVector<T>()), expected));
    }
}

TYPED_TEST(VectorsOf, GoInByColumnsAndComeBack)
{
    using T = TypeParam;
    const auto columns = this->InColumns(this->Cells(), this->COLUMNS);
    for (const std::vector<ContainerID>& containers : CONTAINER_LISTS) {
        DataFrame copied;
        ASSERT_EQ(copied.ReadVectorByCol<T>(columns, {}, containers), 0);
        EXPECT_TRUE(AreSame(copied.To1DVector<T>(), this->Cells()));
        EXPECT_EQ(copied.ContainerType(),
            containers.empty() || containers[0] == containers[1]
                ? (containers.empty() ? CONTAINER_ARRAY : containers[0])
                : NO_CONTAINER);
        EXPECT_THAT(copied.GetColumnName(), ElementsAre("col_0", "col_1", "col_2"));
        auto given = columns;
        DataFrame moved;
        ASSERT_EQ(moved.ReadVectorByCol<T>(std::move(given), {}, containers), 0);
        EXPECT_TRUE(AreSame(moved.To1DVector<T>(), this->Cells()));
    }
    EXPECT_TRUE(AreSame(columns[0], this->InColumns(this->Cells(), this->COLUMNS)[0]))
        << "what was copied is untouched";
}

TYPED_TEST(VectorsOf, OfAnotherTypeAreNotGiven)
{
    using T = TypeParam;
    const bool isString = std::is_same_v<T, std::string>;
    const DataFrame other = isString ? TableOf(Column<double>("c", {1})) : TableOf(Column<std::string>("c", {"text"}));
    const std::string types = GetTypeNameById(other.Type()) + " vs " + GetTypeNameById(TYPE_ID_OF<T>);
    const LogCapture log;
    EXPECT_EQ(other.ToVector<T>().size(), 0U);
    EXPECT_EQ(other.To1DVector<T>().size(), 0U);
    EXPECT_THAT(log.Texts(1),
        ElementsAre("Type mismatch on exporting 2d vector (" + types + ").",
            "Type mismatch type on exporting 1d vector (" + types + ")."));
}

TEST(ToVector, OfMixedFailedAndEmptyTablesIsEmpty)
{
    const DataFrame mixed = TableOf(Column<double>("d", {1}), Column<std::int32_t>("i", {1}));
    const DataFrame failed = TableOf(Column<double>("d", {1}));
    failed.SetError({9, "failed"});
    const LogCapture log;
    for (const DataFrame* table : {&mixed, &failed}) {
        EXPECT_THAT(table->ToVector<double>(), IsEmpty());
        EXPECT_THAT(table->To1DVector<double>(), IsEmpty());
    }
    EXPECT_THAT(log.Texts(1),
        ElementsAre("Type mismatch on exporting 2d vector (The Type ID is out of range vs double).",
            "Type mismatch type on exporting 1d vector (The Type ID is out of range vs double).",
            "Invalid dataFrame 9 to 2d vector", "Invalid dataFrame 9 to 1d vector"));
    const DataFrame noRows = TableOf(Column<double>("d", {}), Column<double>("e", {}));
    EXPECT_THAT(noRows.ToVector<double>(), IsEmpty());
    EXPECT_THAT(noRows.To1DVector<double>(), IsEmpty());
    EXPECT_THAT(DataFrame().ToVector<double>(), IsEmpty());
}

/// A refused read: nothing may change but the log.
struct Refusal {
    std::size_t cells;
    Shape shape;
    std::size_t types;
    std::size_t containers;
    const char* log;
};

TEST(ReadVector, RefusesWhatDoesNotFitItsShape)
{
    const Refusal cases[] = {
        {6, {0, 2}, 0, 0, "Invalid shape, shape[0] 0, shape[1] 2"},
        {6, {3, 0}, 0, 0, "Invalid shape, shape[0] 3, shape[1] 0"},
        {0, {0, 0}, 0, 0, "Invalid shape, shape[0] 0, shape[1] 0"},
        {6, {3, 2}, 1, 0, "Type size and shape mismatch, types.size() 1, shape[1] 2"},
        {6, {3, 2}, 3, 2, "Type size and shape mismatch, types.size() 3, shape[1] 2"},
        {6, {3, 2}, 2, 3, "Type size and shape mismatch, containers.size() 3, shape[1] 2"},
        {6, {3, 2}, 0, 1, "Type size and shape mismatch, containers.size() 1, shape[1] 2"},
        {5, {3, 2}, 0, 0, "Data size and shape mismatch, types.size: 5, shape: (3, 2)"},
        {7, {3, 2}, 2, 2, "Data size and shape mismatch, types.size: 7, shape: (3, 2)"},
        {0, {1, 1}, 0, 0, "Data size and shape mismatch, types.size: 0, shape: (1, 1)"},
        // 2 to the 32nd cells, which in 32 bits would look like none
        {0, {1U << 16U, 1U << 16U}, 0, 0, "Data size and shape mismatch, types.size: 0, shape: (65536, 65536)"},
    };
    for (const auto& [cells, shape, typeCount, containerCount, text] : cases) {
        SCOPED_TRACE(text);
        const std::vector<std::int32_t> data(cells, 1);
        const DataFrame::Types types(typeCount, TESSERA_INT32);
        const DataFrame::Containers containers(containerCount, CONTAINER_ARRAY);
        DataFrame table = TableOf(Column<double>("kept", {1.5}));
        const LogCapture log;
        EXPECT_EQ(table.Check1DVector<std::int32_t>(data, shape, types, containers), 15);
        EXPECT_EQ(table.ReadVector<std::int32_t>(data, shape, types, containers), 15);
        EXPECT_THAT(log.Texts(1), ElementsAre(text, text));
        EXPECT_EQ(table.GetError().code, 0);
        EXPECT_THAT(table.To1DVector<double>(), ElementsAre(1.5));
    }
    EXPECT_EQ(DataFrame().Check1DVector<std::int32_t>({1, 2}, {1, 2}, {}, {}), 0);
}

TEST(ReadVectorByCol, RefusesRaggedAndEmptyData)
{
    using Data = std::vector<std::vector<std::int32_t>>;
    const struct {
        Data data;
        std::size_t types;
        const char* log;
    } cases[] = {
        {{}, 0, "Empty data, vector size 0"},
        {{{}}, 0, "Empty data, vector size 1"},
        {{{}, {1}}, 0, "Empty data, vector size 2"},
        {{{1, 2}, {3, 4}}, 1, "Invalid type length 1, series size 2"},
        {{{1, 2}, {3}}, 0, "Vector length must be equal to begin size 2, mismatch size 1"},
        {{{1, 2}, {3, 4}, {5, 6, 7}}, 3, "Vector length must be equal to begin size 2, mismatch size 3"},
    };
    for (const auto& [data, typeCount, text] : cases) {
        SCOPED_TRACE(text);
        DataFrame table;
        const DataFrame::Types types(typeCount, TESSERA_INT32);
        const LogCapture log;
        EXPECT_EQ(table.Check2DVector<std::int32_t>(data, types), 15);
        EXPECT_EQ(table.ReadVectorByCol<std::int32_t>(data, types), 15);
        EXPECT_EQ(table.ReadVectorByCol<std::int32_t>(Data(data), types), 15);
        EXPECT_THAT(log.Texts(1), ElementsAre(text, text, text));
        EXPECT_EQ(table.GetError().code, 0);
        EXPECT_EQ(table.ColumnCount(), 0U);
    }
    const LogCapture log;
    DataFrame table;
    EXPECT_EQ(table.Check2DVectorSec<std::int32_t>({}, {}), 15);
    EXPECT_EQ(table.Check2DVectorSec<std::int32_t>({{1}}, {TESSERA_INT32, TESSERA_INT32}), 15);
    EXPECT_EQ(table.Check2DVectorSec<std::int32_t>({{1}, {}}, {}), 0) << "lengths are the first check's";
    EXPECT_EQ(table.ReadVectorByCol<std::int32_t>({{1}, {2}}, {}, {CONTAINER_LIST}), 15);
    EXPECT_THAT(log.Texts(1),
        ElementsAre("Empty data, vector size 0 in checking 2d vector", "Invalid type length 2, series size 1",
            "Type size and shape mismatch, containers.size() 1, shape[1] 2"));
}

TEST(ReadVector, ReplacesWhatTheTableHeldButByColumnsItRefuses)
{
    DataFrame table = TableOf(Column<double>("old", {1, 2, 3}), Column<double>("older", {1, 2, 3}));
    const DataFrameRef older = table["old"];
    ASSERT_EQ(table.ReadVector<std::int32_t>({7, 8}, {2, 1}), 0);
    EXPECT_THAT(table.To1DVector<std::int32_t>(), ElementsAre(7, 8));
    EXPECT_THAT(table.GetColumnName(), ElementsAre("col_0"));
    EXPECT_THAT(older.To1DVector<double>(), ElementsAre(1, 2, 3)) << "older slices stay on the old columns";

    const LogCapture log;
    EXPECT_EQ(table.ReadVectorByCol<std::int32_t>({{1}, {2}}), 2);
    EXPECT_THAT(log.Texts(1), ElementsAre("Failed to read 2d vector, dataFrame is not empty, row size 2, col size 1"));
    EXPECT_EQ(table.GetError().code, 0);
    EXPECT_THAT(table.To1DVector<std::int32_t>(), ElementsAre(7, 8));
}

TEST(ReadVector, AnswersWithTheCodeOfAFailedTable)
{
    DataFrame table;
    table.SetError({9, "failed"});
    const LogCapture log;
    EXPECT_EQ(table.ReadVector<std::int32_t>({1}, {1, 1}), 9);
    EXPECT_EQ(table.ReadVectorByCol<std::int32_t>({{1}}), 9);
    EXPECT_EQ(table.Check2DVectorSec<std::int32_t>({{1}}, {}), 9);
    EXPECT_THAT(log.Texts(1),
        ElementsAre("Failed to read 1d vector, invalid dataframe 9", "Failed to read 2d vector, invalid dataframe 9",
            "Failed to check 2d vector, invalid dataframe 9."));
    EXPECT_EQ(table.ColumnCount(), 0U);
}

TEST(ReadVector, FailsOnAColumnThatCanNotBeBuilt)
{
    const DataFrame::Containers containers = {CONTAINER_LIST, CONTAINER_END, CONTAINER_ARRAY};
    DataFrame byRow = TableOf(Column<double>("old", {1, 2, 3}), Column<double>("old", {1, 2, 3}));
    DataFrame byColumn;
    EXPECT_EQ(byRow.ReadVector<std::int32_t>({1, 2, 3, 4, 5, 6}, {2, 3}, {}, containers), 15);
    EXPECT_EQ(byColumn.ReadVectorByCol<std::int32_t>({{1, 4}, {2, 5}, {3, 6}}, {}, containers), 15);
    for (const DataFrame* table : {&byRow, &byColumn}) {
        EXPECT_EQ(table->GetError().code, 15);
        EXPECT_EQ(table->GetError().message, "Failed to build series");
        EXPECT_EQ(table->ColumnCount(), 1U) << "the columns made before stay";
        EXPECT_EQ(CellsOf<std::int32_t>(table->GetColumn(0)->GetIterator()), (std::vector<std::int32_t>{1, 4}));
    }
}

TEST(ReadVector, CastsColumnsOfOtherTypes)
{
    const DataFrame::Types types = {TESSERA_INT16, TESSERA_STRING, TESSERA_DOUBLE};
    const DataFrame::Containers containers = {CONTAINER_LIST, CONTAINER_ARRAY, CONTAINER_ARRAY};
    DataFrame byRow;
    DataFrame byColumn;
    ASSERT_EQ(byRow.ReadVector<std::int16_t>({1, 2, 3, -4, 5, 6}, {2, 3}, types, containers), 0);
    ASSERT_EQ(byColumn.ReadVectorByCol<std::int16_t>({{1, -4}, {2, 5}, {3, 6}}, types, containers), 0);
    for (const DataFrame* table : {&byRow, &byColumn}) {
        EXPECT_THAT((*table)["col_0"].To1DVector<std::int16_t>(), ElementsAre(1, -4));
        EXPECT_THAT((*table)["col_1"].To1DVector<std::string>(), ElementsAre("2", "5"));
        EXPECT_THAT((*table)["col_2"].To1DVector<double>(), ElementsAre(3.0, 6.0));
    }
    const LogCapture log;
    DataFrame failing;
    const std::vector<std::vector<std::string>> texts = {std::vector<std::string>{"7"}, std::vector<std::string>{" "}};
    EXPECT_EQ(failing.ReadVectorByCol<std::string>(texts, {TESSERA_UINT8, TESSERA_DATETIME}), 1);
    EXPECT_EQ(failing.GetError().message, "Failed to cast form 2d vector");
    EXPECT_TRUE(log.Has(1, "Failed to cast 11 to 12 when error happens"));
    EXPECT_EQ(CellsOf<std::uint8_t>(failing.GetColumn(0)->GetIterator()), std::vector<std::uint8_t>{7});
}

} // namespace
} // namespace MERVO::Tessera
