// Selecting, dropping and inserting columns, by table and by flat call.

#include <functional>
#include <memory>

#include <gmock/gmock.h>

#include "tests/support/handle.h"
#include "tests/support/log_capture.h"
#include "tests/support/sample_columns.h"

namespace MERVO::Tessera {
namespace {

using testing::ElementsAre;
using Positions = std::vector<std::uint32_t>;
using Names = std::vector<std::string>;

/// Columns of a name and, in order, the name's first letter, the next one, and so on.
DataFrame Table(const Names& names, std::uint32_t rows = 2)
{
    DataFrame::Columns columns;
    for (const std::string& name : names) {
        std::vector<std::string> cells;
        for (std::uint32_t row = 0; row < rows; ++row) {
            cells.emplace_back(1, static_cast<char>(name[0] + static_cast<char>(row)));
        }
        columns.push_back(Column<std::string>(name, cells));
    }
    return DataFrame(std::move(columns));
}

/// The window as text: the name and the cells of each column.
std::string TextOf(const DataFrameRef& table)
{
    std::string text;
    const Names names = table.GetColumnName();
    for (unsigned int k = 0; k < names.size(); ++k) {
        text += names[k] + ":";
        for (const std::string& cell : CellsOf<std::string>(table.GetSlicedIterator(table.GetColumn(k)))) {
            text += cell;
        }
        text += " ";
    }
    return text;
}

DataFrame Filter(const std::vector<bool>& bits)
{
    DataFrame filter;
    EXPECT_EQ(filter.ReadVector(bits, {1, static_cast<unsigned int>(bits.size())}), 0);
    return filter;
}

DataFrame Failed(ErrorCode code)
{
    DataFrame table;
    table.SetError({code, "an earlier failure"});
    return table;
}

/// One way to choose columns, into a new table or in place.
struct Choice {
    int line;
    std::function<DataFrame(const DataFrame&)> make;
    std::function<ErrorCode(DataFrame&)> change;
};

template <typename Chosen>
Choice Select(int line, const Chosen& chosen)
{
    return {line, [chosen](const DataFrame& table) { return table.SelectCol(chosen); },
        [chosen](DataFrame& table) { return table.SelectColInplace(chosen); }};
}

template <typename Chosen>
Choice Drop(int line, const Chosen& chosen)
{
    return {line, [chosen](const DataFrame& table) { return table.DropCol(chosen); },
        [chosen](DataFrame& table) { return table.DropColInplace(chosen); }};
}

TEST(Columns, StayOrGoByPositionNameAndFilter)
{
    const std::pair<Choice, const char*> cases[] = {
        {Select(__LINE__, Positions{2, 0}), "m:mn a:ab "},
        {Select(__LINE__, Positions{1, 1, 1}), "h:hi h_1:hi h_1_1:hi "},
        {Select(__LINE__, Positions{}), ""},
        {Select(__LINE__, Names{"m", "a"}), "m:mn a:ab "},
        {Select(__LINE__, Filter({true, false, true})), "a:ab m:mn "},
        {Select(__LINE__, Filter({false, false, false})), ""},
        {Drop(__LINE__, Positions{2, 0, 2}), "h:hi "},
        {Drop(__LINE__, Positions{0, 1, 2}), ""},
        {Drop(__LINE__, Positions{}), "a:ab h:hi m:mn "},
        {Drop(__LINE__, Names{"a", "m"}), "h:hi "},
        {Drop(__LINE__, Filter({true, false, true})), "h:hi "},
    };
    const LogCapture log;
    for (const auto& [choice, text] : cases) {
        SCOPED_TRACE(choice.line);
        const DataFrame table = Table({"a", "h", "m"});
        const DataFrame chosen = choice.make(table);
        EXPECT_EQ(chosen.GetError().code, 0) << chosen.GetError().message;
        EXPECT_EQ(TextOf(chosen), text);
        for (unsigned int k = 0; k < chosen.ColumnCount(); ++k) { // the cells are its own
            ASSERT_TRUE(SetValueToIterator<std::string>(chosen.GetColumn(k)->GetIterator(), "new", 0));
        }
        EXPECT_EQ(TextOf(table), "a:ab h:hi m:mn ");
        DataFrame changed = table;
        EXPECT_EQ(choice.change(changed), 0);
        EXPECT_EQ(TextOf(changed), text);
    }
    EXPECT_THAT(log.Texts(2), ElementsAre("the indexlist is null", "the indexlist is null"));
}

TEST(Columns, OfAWindowCountFromItsFirstInAFilterOnly)
{
    const DataFrame around = Table({"a", "h", "m", "t"}, 5);
    DataFrame window;
    window.ShallowCopy(around.Slice({1, 3}, {1, 3}));
    EXPECT_EQ(TextOf(window.SelectCol(Positions{3, 1})), "t:tuvwx h:hijkl ");
    EXPECT_EQ(TextOf(window.DropCol(Positions{3, 1})), "a:abcde m:mnopq ");
    EXPECT_EQ(TextOf(window.SelectCol(Names{"a"})), "a:abcde ");
    EXPECT_EQ(TextOf(window.SelectCol(Filter({false, true}))), "m:no ");
    EXPECT_EQ(TextOf(window.DropCol(Filter({false, true}))), "h:ij ");
}

TEST(Columns, RefuseWithCodeAndMessage)
{
    const DataFrame twoRows = TableOf(Column<bool>("x", {true, false}), Column<bool>("y", {true, false}));
    const DataFrame numbers = TableOf(Column<double>("x", {1.0}), Column<double>("y", {0.0}));
    const DataFrame table = Table({"a", "b"});
    struct Case {
        Choice choice;
        DataFrame table;
        Error error;
        const char* log; ///< the first of them; null where a refusal is not told
    };
    const char* const earlier = "an earlier failure";
    const char* const copied = "this is from deepcopy";
    const char* const namesFailed = "Error on transformming string list to index list in Select.";
    const char* const dropRefused = "DropNan received invalid bool dataframe.";
    const char* const selectRefused = "SelectCol received invalid bool dataframe.";
    const Case cases[] = {
        {Select(__LINE__, Positions{}), Failed(9), {9, earlier}, "Invalid dataFrame 9"},
        {Select(__LINE__, Positions{0, 2}), table, {4, "Index out of max columns number"}, nullptr},
        {Select(__LINE__, Names{"a", "c"}), table, {5, namesFailed}, "dataframe does not contain this column name: c"},
        {Select(__LINE__, Filter({true})), Failed(9), {9, earlier}, "Invalid dataframe 9 selecting column"},
        {Select(__LINE__, Filter({true})), table, {17, selectRefused},
            "Select column shape mismatch, boolFilter[1, 1], this[2, 2]"},
        {Select(__LINE__, twoRows), table, {17, selectRefused},
            "Select column shape mismatch, boolFilter[2, 2], this[2, 2]"},
        {Select(__LINE__, numbers), table, {5, "Invalid boolFilter type"}, "Invalid boolFilter type 10"},
        {Drop(__LINE__, Positions{}), Failed(9), {9, copied}, "the input dataframe is invalid : 9"},
        {Drop(__LINE__, Positions{2, 0}), table, {2, "this is from dropcol by index"},
            "Invalid series index: 2, column size 2"},
        {Drop(__LINE__, Names{"a", "c"}), table, {5, "this is from dropcol by nameList"},
            "dataframe does not contain this column name: c"},
        {Drop(__LINE__, Filter({true})), Failed(9), {9, earlier}, "Invalid dataframe 9"},
        {Drop(__LINE__, Filter({true})), table, {17, dropRefused}, nullptr},
        {Drop(__LINE__, twoRows), table, {17, dropRefused}, nullptr},
        {Drop(__LINE__, numbers), table, {5, "Invalid boolFilter type"}, "Invalid boolFilter type 10"},
    };
    for (const Case& tested : cases) {
        SCOPED_TRACE(tested.choice.line);
        DataFrame source;
        source.ShallowCopy(tested.table);
        const LogCapture log;
        const DataFrame result = tested.choice.make(source);
        EXPECT_EQ(result.GetError().code, tested.error.code);
        EXPECT_EQ(result.GetError().message, tested.error.message);
        EXPECT_EQ(source.GetError().code, tested.table.GetError().code);
        const std::string firstText = log.Texts(1).front();
        if (tested.log == nullptr) {
            EXPECT_EQ(firstText.rfind("set df error", 0), 0U) << firstText;
        } else {
            EXPECT_EQ(firstText, tested.log);
        }
        EXPECT_EQ(tested.choice.change(source), tested.error.code);
        EXPECT_EQ(source.GetError().message, tested.error.message);
    }
    const LogCapture log;
    EXPECT_EQ(table.SelectCol(Failed(9)).GetError().code, 9);
    EXPECT_EQ(table.DropCol(Failed(9)).GetError().message, earlier);
    EXPECT_EQ(table.DropCol(Names{"c"}).GetError().code, 5);
    EXPECT_TRUE(log.Has(1, "Invalid boolFilter 9 selecting column"));
    EXPECT_TRUE(log.Has(1, "Invalid boolFilter 9"));
    EXPECT_TRUE(log.Has(1, namesFailed));
    const DataFrame list = TableOf(Column<float>("a", {1}, CONTAINER_LIST));
    EXPECT_EQ(list.SelectCol(Positions{0}).GetError().message, "Check param failed in functor: ErrorUnaryFunctor");
}

// ---- Insertion

TEST(Insertion, PutsCopiesAtAnyPlace)
{
    const DataFrame other = Table({"x", "a"});
    const std::pair<unsigned int, const char*> cases[] = {
        {0, "x:xy a:ab a_1:ab h:hi "}, {1, "a:ab x:xy a_1:ab h:hi "}, {2, "a:ab h:hi x:xy a_1:ab "}};
    for (const auto& [position, text] : cases) {
        DataFrame table = Table({"a", "h"});
        EXPECT_EQ(table.GetColumnName().size(), 2U); // makes the name map, which goes stale
        EXPECT_EQ(table.InsertColInplace(other, position), 0);
        EXPECT_EQ(TextOf(table), text);
        EXPECT_EQ(table["x"].To1DVector<std::string>(), (Names{"x", "y"}));
        ASSERT_TRUE(SetValueToIterator<std::string>(table["x"].GetColumn(0)->GetIterator(), "new", 0));
        EXPECT_EQ(TextOf(other), "x:xy a:ab ");
    }
    DataFrame table = Table({"a", "h"});
    EXPECT_EQ(table.AppendColInplace(table), 0);
    EXPECT_EQ(TextOf(table), "a:ab h:hi a_1:ab h_1:hi ");
    DataFrame empty;
    EXPECT_EQ(empty.InsertColInplace(table, 99), 0);
    EXPECT_EQ(TextOf(empty), "a:ab h:hi a_1:ab h_1:hi ");
}

TEST(Insertion, TakesTheRowsOfWindows)
{
    const DataFrame around = Table({"a", "h", "m"}, 5);
    DataFrame window;
    window.ShallowCopy(around.Slice({1, 3}, {1, 3}));
    DataFrame table = Table({"t"});
    EXPECT_EQ(table.AppendColInplace(window), 0);
    EXPECT_EQ(TextOf(table), "t:tu h:ij m:no ");
    EXPECT_EQ(window.InsertColInplace(Table({"t"}), 1), 0);
    EXPECT_EQ(TextOf(window), "h:ij t:tu m:no ");
    EXPECT_EQ(TextOf(around), "a:abcde h:hijkl m:mnopq ");
}

TEST(Insertion, RefusesAndKeepsItsColumns)
{
    struct Case {
        const char* name;
        std::function<ErrorCode(DataFrame&)> insert;
        ErrorCode code;
        const char* message;
        bool isHeld; ///< by the table
        const char* log;
    };
    const DataFrame list = TableOf(Column<std::string>("x", {"x", "y"}, CONTAINER_LIST));
    const Case cases[] = {
        {"rows", [](DataFrame& table) { return table.InsertColInplace(Table({"x"}, 3), 0); }, 6,
            "Num of Row is different.", true, "set df error 6, Num of Row is different., df error 6"},
        {"position", [](DataFrame& table) { return table.InsertColInplace(Table({"x"}), 3); }, 5,
            "Exceed maximum index of dataframe.", true, "set df error 5, Exceed maximum index of dataframe."},
        {"list", [&](DataFrame& table) { return table.AppendColInplace(list); }, 21,
            "Check param failed in functor: ErrorUnaryFunctor", true, "set df error 21"},
        {"failed other", [](DataFrame& table) { return table.AppendColInplace(Failed(9)); }, 9, "healthy dataframe",
            false, "Invalid dataframe 9 for inserting column inplace operation"},
        {"no columns", [](DataFrame& table) { return table.AppendColInplace(DataFrame()); }, 7, "healthy dataframe",
            false, "Invalid dataframe 0 for inserting column inplace operation"},
    };
    for (const Case& tested : cases) {
        SCOPED_TRACE(tested.name);
        const LogCapture log;
        DataFrame table = Table({"a", "h"});
        EXPECT_EQ(tested.insert(table), tested.code);
        EXPECT_EQ(table.GetError().code, tested.isHeld ? tested.code : 0);
        EXPECT_EQ(table.GetError().message, tested.message);
        EXPECT_TRUE(log.Has(1, tested.log));
        ASSERT_EQ(table.ColumnCount(), 2U);
        EXPECT_EQ(CellsOf<std::string>(table.GetColumn(1)->GetIterator()), (Names{"h", "i"}));
    }
    const LogCapture log;
    DataFrame failed = Failed(9);
    EXPECT_EQ(failed.AppendColInplace(Table({"x"})), 9);
    EXPECT_TRUE(log.Has(1, "Invalid dataframe 9 for inserting column inplace operation"));
}

// ---- Flat calls

TEST(FlatColumns, GoComeAndAreNamed)
{
    const Handle table(Table({"a", "h", "m"}));
    const Handle result;
    const std::uint32_t positions[] = {2, 0};
    const char* const names[] = {"h", "a"};
    EXPECT_EQ(MERVO_TSR_DropColByIndex(result.Get(), table.Get(), positions, 2), 0);
    EXPECT_EQ(TextOf(result.Table()), "h:hi ");
    EXPECT_EQ(MERVO_TSR_DropColByName(result.Get(), table.Get(), names, 2), 0);
    EXPECT_EQ(TextOf(result.Table()), "m:mn ");
    EXPECT_EQ(MERVO_TSR_DropColByBool(result.Get(), table.Get(), Handle(Filter({true, true, false})).Get()), 0);
    EXPECT_EQ(TextOf(result.Table()), "m:mn ");
    const DataFrame bits = Filter({true, false, true, true});
    EXPECT_EQ(MERVO_TSR_DropColByBool(result.Get(), table.Get(), Handle(bits.Slice(1U, {1, 4})).Get()), 0);
    EXPECT_EQ(TextOf(result.Table()), "a:ab ");
    EXPECT_EQ(MERVO_TSR_InsertColInplace(result.Get(), table.Get(), 1), 0);
    EXPECT_EQ(TextOf(result.Table()), "a:ab a_1:ab h:hi m:mn ");
    const char* const newNames[] = {"p", "q", "p"};
    EXPECT_EQ(MERVO_TSR_SetColumnName(table.Get(), newNames, 3), 0);
    EXPECT_EQ(TextOf(table.Table()), "p:ab q:hi p_1:mn ");

    const LogCapture log;
    EXPECT_EQ(MERVO_TSR_SetColumnName(table.Get(), newNames, 2), 5);
    EXPECT_EQ(MERVO_TSR_InsertColInplace(table.Get(), Handle(Failed(9)).Get(), 0), 0) << "the log tells";
    EXPECT_EQ(MERVO_TSR_InsertColInplace(table.Get(), result.Get(), 4), 5);
    EXPECT_EQ(MERVO_TSR_DropColByIndex(result.Get(), result.Get(), positions, 1), 0);
    EXPECT_EQ(MERVO_TSR_DropColByName(result.Get(), result.Get(), newNames, 1), 5);
    EXPECT_EQ(result.Table().GetError().message, "this is from dropcol by nameList");
}

TEST(FlatColumns, RefuseHandlesAndNull)
{
    const Handle table(Table({"a"}));
    const Handle window{DataFrameRef(Table({"a"}))};
    MERVO_TSR_CONTEXT neither{nullptr, nullptr};
    const std::uint32_t one[] = {0};
    const char* const names[] = {"a", nullptr};
    MERVO_TSR_CONTEXT* const good = table.Get();
    MERVO_TSR_CONTEXT* const none = nullptr;
    const auto check = [](int line, const std::string& text, auto call) {
        const LogCapture log;
        EXPECT_EQ(call(), 33) << line;
        EXPECT_THAT(log.Texts(1), ElementsAre(text)) << line;
    };
    for (MERVO_TSR_CONTEXT* const bad : {none, &neither, window.Get()}) {
        for (const auto& [first, second] : {std::pair(good, bad), std::pair(bad, good)}) {
            check(__LINE__, "[MERVO_TSR_DropColByIndex] Input is nullptr",
                [&] { return MERVO_TSR_DropColByIndex(first, second, one, 1); });
            check(__LINE__, "[MERVO_TSR_DropColByName] Input is nullptr",
                [&] { return MERVO_TSR_DropColByName(first, second, names, 1); });
            check(__LINE__, "[MERVO_TSR_DropColByBool] Input is nullptr",
                [&] { return MERVO_TSR_DropColByBool(first, second, good); });
            check(__LINE__, "[MERVO_TSR_InsertColInplace] Input is nullptr",
                [&] { return MERVO_TSR_InsertColInplace(first, second, 0); });
        }
        check(__LINE__, "[MERVO_TSR_SetColumnName] MERVO_TSR_CONTEXT is null",
            [&] { return MERVO_TSR_SetColumnName(bad, names, 1); });
    }
    for (MERVO_TSR_CONTEXT* const bad : {none, &neither}) {
        check(__LINE__, "[MERVO_TSR_DropColByBool] Input is nullptr",
            [&] { return MERVO_TSR_DropColByBool(good, good, bad); });
    }
    for (const auto& [array, count] : {std::pair<const std::uint32_t*, std::uint32_t>(nullptr, 1), {one, 0}}) {
        check(__LINE__, "[MERVO_TSR_DropColByIndex] Input is nullptr",
            [&, list = array, length = count] { return MERVO_TSR_DropColByIndex(good, good, list, length); });
    }
    for (const auto& [array, count] :
        {std::pair<const char* const*, std::uint32_t>(nullptr, 1), {names, 0}, {names, 2}}) { // the second is null
        check(__LINE__, "[MERVO_TSR_DropColByName] Input is nullptr",
            [&, list = array, length = count] { return MERVO_TSR_DropColByName(good, good, list, length); });
        check(__LINE__, "[MERVO_TSR_SetColumnName] Input is nullptr",
            [&, list = array, length = count] { return MERVO_TSR_SetColumnName(good, list, length); });
    }
    EXPECT_EQ(TextOf(table.Table()), "a:ab ");
}

} // namespace
} // namespace MERVO::Tessera
