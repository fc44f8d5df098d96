// Runs seeded operations and holds digests of all result bits against tests/digests/recorded.txt, which is the same for
// every compiler, optimisation and processor. After a wanted change of results, take over the lines that a run with
// TESSERA_DIGEST_FILE=FILE leaves in FILE.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <map>
#include <sstream>

#include "tessera/core/date_range.h"
#include "tessera/tessera.hpp"
#include "tests/support/flat_digest.h"
#include "tests/support/log_capture.h"

namespace MERVO::Tessera {
namespace {

class Digests : public testing::Test {
protected:
    /// Calendar times are the process's zone's; the digests are those of UTC.
    Digests()
    {
        const char* present = std::getenv("TZ");
        zone = present == nullptr ? "" : present;
        setenv("TZ", "UTC0", 1);
        tzset();
    }
    ~Digests() override
    {
        zone.empty() ? unsetenv("TZ") : setenv("TZ", zone.c_str(), 1);
        tzset();
    }

    static std::map<std::string, std::string> Recorded()
    {
        std::map<std::string, std::string> recorded;
        std::ifstream file("tests/digests/recorded.txt");
        std::string word;
        std::string name;
        std::string hex;
        while (file >> word >> name >> hex) {
            recorded[name] = hex;
        }
        return recorded;
    }

public:
    static void Settle(const std::string& name, const Digest& digest)
    {
        if (const char* path = std::getenv("TESSERA_DIGEST_FILE")) {
            std::ofstream(path, std::ios::app) << "digest " << name << ' ' << digest.Hex() << '\n';
        }
        EXPECT_EQ(digest.Hex(), Recorded()[name]) << "of " << name;
    }

private:
    const LogCapture log; // some casts fail, by intention
    std::string zone;
};

template <typename T>
void AddCasts(Digest& digest)
{
    for (const unsigned int rows : {1U, 63U, 1000U}) {
        const DataFrame source = RandomTable<T>(rows, 3);
        for (std::int32_t type = TESSERA_BOOL; type < TESSERA_DATAFRAME; ++type) {
            DataFrame result;
            const Func::FunctorFactory<Func::TypeCast, Func::UnaryBase, MERVO_TESSERA_TYPEID> make{
                static_cast<MERVO_TESSERA_TYPEID>(type)};
            digest.Add(result.ApplyInplace(make, source));
            AddTable(digest, result.GetError().code == 0 ? result : DataFrame());
        }
    }
}

/// What each of some functors makes of columns of random cells.
template <typename T>
void AddResults(Digest& digest, const std::vector<UnaryFactory>& makers)
{
    for (const unsigned int rows : {1U, 2U, 7U, 64U, 1000U}) {
        const DataFrame source = RandomTable<T>(rows, 5);
        for (const UnaryFactory& make : makers) {
            DataFrame result;
            digest.Add(result.ApplyInplace(make, source));
            AddTable(digest, result.GetError().code == 0 ? result : DataFrame());
        }
    }
}

template <typename T>
void AddTransforms(Digest& digest)
{
    using namespace Func;
    const auto add = [&digest](const auto& make, const auto&... sources) {
        DataFrame result;
        digest.Add(result.ApplyInplace(make, sources...));
        AddTable(digest, result.GetError().code == 0 ? result : DataFrame());
    };
    for (const unsigned int rows : {1U, 64U, 1000U}) {
        const DataFrame source = RandomTable<T>(rows, 3);
        const DataFrame other = RandomTable<T>(rows + 7, 3);
        for (const std::uint32_t decimals : {0U, 2U, 7U, 10U}) {
            add(FunctorFactory<Round, UnaryBase, std::uint32_t>{decimals}, source);
        }
        add(FunctorFactory<Diff, UnaryBase, std::int32_t>{5}, source);
        add(FunctorFactory<Diff, UnaryBase, std::int32_t>{-1}, source);
        add(FunctorFactory<Replace, UnaryBase, double, double>{7.0, -1.5}, source);
        add(FunctorFactory<Replace, UnaryBase, std::string, std::string>{"0", "1e3"}, source);
        add(FunctorFactory<IsIn, BinaryBase>{}, source, other);
        add(FunctorFactory<InsertRow, BinaryBase, std::uint32_t>{rows / 2}, source, other);
    }
}

TEST_F(Digests, OfCasts)
{
    ForEachFlatType([]<typename T>(std::type_identity<T>) {
        Digest digest;
        AddCasts<T>(digest);
        Settle("cast_" + GetTypeNameById(TYPE_ID_OF<T>), digest);
    });
}

/// Settles, for each type but nested tables, what functors make of columns of random cells.
void SettleFunctors(const std::string& family, const std::vector<UnaryFactory>& makers)
{
    ForEachFlatType([&]<typename T>(std::type_identity<T>) {
        Digest digest;
        AddResults<T>(digest, makers);
        Digests::Settle(family + "_" + GetTypeNameById(TYPE_ID_OF<T>), digest);
    });
}

TEST_F(Digests, OfReductions)
{
    using namespace Func;
    SettleFunctors("reduce", {Make<Sum>(), Make<Mean>(), Make<Max>(), Make<Min>(), Make<Ptp>(), Make<IdxMax>()});
}

TEST_F(Digests, OfDispersion)
{
    using namespace Func;
    std::vector<UnaryFactory> makers{Make<Var, Count>(0), Make<Var, Count>(1), Make<Std, Count>(1)};
    for (Count order = 0; order < 6; ++order) {
        makers.push_back(Make<Moment, Count>(order));
        makers.push_back(Make<Kstat, Count>(order));
    }
    for (const bool bias : {false, true}) {
        for (const bool skipNan : {false, true}) {
            makers.push_back(Make<Skew, bool, bool>(skipNan, bias));
            makers.push_back(Make<Kurt, bool, bool>(skipNan, bias));
        }
    }
    SettleFunctors("dispersion", makers);
}

TEST_F(Digests, OfRollingWindows)
{
    using namespace Func;
    std::vector<UnaryFactory> makers;
    for (const Count window : {1U, 2U, 9U, 50U}) {
        for (const Count least : {Count{0}, Count{2}, RollingParam::NO_GAPS}) {
            makers.push_back(Make<RollingSum, Count, bool, Count>(window, false, least));
            makers.push_back(Make<RollingMean, Count, bool, Count>(window, true, least));
        }
    }
    SettleFunctors("rolling", makers);
}

TEST_F(Digests, OfMissingValues)
{
    using namespace Func;
    SettleFunctors("missing",
        {Make<IsNan>(), Make<IsNanInt>(), Make<FillNan, const char*>("ffill"), Make<FillNan, const char*>("bfill"),
            Make<ReplaceNan, const char*>("0.1"), Make<Interpolate>()});
}

TEST_F(Digests, OfWindows)
{
    Digest digest;
    ForEachFlatType([&digest]<typename T>(std::type_identity<T>) {
        const DataFrame source = RandomTable<T>(90, 2);
        DataFrame target = RandomTable<T>(130, 3);
        DataFrameRef window = target.Slice({20, 110}, {0, 2});
        digest.Add(window.ApplyInplace(Make<Func::Diff, std::int32_t>(1), source));
        AddTable(digest, window += source);
        digest.Add(target.Slice({0, 90}, {1, 3}).ApplyInplace(Make<Func::CopySeries>(), window));
        target.Slice({3, 93}, {0, 2}) -= target.Slice({1, 91}, {1, 3});
        AddTable(digest, target);
    });
    Settle("windows", digest);
}

TEST_F(Digests, OfShapesAndTexts)
{
    Digest digest;
    ForEachFlatType([&digest]<typename T>(std::type_identity<T>) {
        DataFrame table = RandomTable<T>(60, 4);
        digest.Add(table.AppendColInplace(RandomTable<bool>(60, 1)));
        AddTable(digest, table.SelectCol(std::vector<std::uint32_t>{3, 0, 4}));
        AddTable(digest, table.DropCol(std::vector<std::string>{"col_1"}));
        std::ostringstream text;
        text << table << table[DataFrame::Range{0, 7}];
        digest.Add(text.str());
        const DataFrame cells = RandomTable<T>(60, 4);
        AddTable(digest, cells.Transpose());
        for (const UnaryFactory& make : {Make<Func::Sum>(), Make<Func::Var, Count>(1), Make<Func::Interpolate>()}) {
            DataFrame result;
            digest.Add(result.ApplyRowInplace<T>(make, cells));
            AddTable(digest, result);
        }
    });
    Settle("shapes", digest);
}

TEST_F(Digests, OfFlatCalls)
{
    Digest digest;
    digest.Add(DigestOfFlatCalls(300, 17));
    Settle("flat_calls", digest);
}

TEST_F(Digests, OfOperators)
{
    using Operation = DataFrame (*)(const DataFrameRef&, const DataFrameRef&);
    const Operation operations[] = {
        [](auto& left, auto& right) { return left + right; },
        [](auto& left, auto& right) { return left - right; },
        [](auto& left, auto& right) { return left * right; },
        [](auto& left, auto& right) { return left / right; },
        [](auto& left, auto& right) { return left % right; },
        [](auto& left, auto& right) { return left > right; },
        [](auto& left, auto& right) { return left >= right; },
        [](auto& left, auto& right) { return left < right; },
        [](auto& left, auto& right) { return left <= right; },
        [](auto& left, auto& right) { return left == right; },
        [](auto& left, auto& right) { return left != right; },
        [](auto& left, auto& right) { return (left > right) && (left < right + right); },
        [](auto& left, auto& right) { return !(left > right) || (right > left); },
    };
    ForEachFlatType([&]<typename T>(std::type_identity<T>) {
        const DataFrame table = RandomTable<T>(999, 4);
        Digest digest;
        for (const Operation operation : operations) {
            const DataFrameRef left = table.Slice({3, 990}, {0, 2});
            for (const DataFrameRef& right : {table.Slice({7, 994}, {2, 4}), table.Slice({0, 1}, {2, 4}),
                     table.Slice({7, 994}, {3, 4}), table.Slice({11, 12}, {1, 2})}) {
                AddTable(digest, operation(left, right));
                AddTable(digest, operation(right, left));
            }
        }
        Settle("operators_" + GetTypeNameById(TYPE_ID_OF<T>), digest);
    });
}

TEST_F(Digests, OfElementTransforms)
{
    ForEachFlatType([]<typename T>(std::type_identity<T>) {
        Digest digest;
        AddTransforms<T>(digest);
        Settle("transform_" + GetTypeNameById(TYPE_ID_OF<T>), digest);
    });
}

TEST_F(Digests, OfRows)
{
    Random random(13);
    std::vector<std::uint32_t> positions(700);
    std::vector<bool> bits(999);
    for (std::uint32_t& position : positions) {
        position = random.Below(999);
    }
    for (std::size_t i = 0; i < bits.size(); ++i) {
        bits[i] = random.Below(3) == 0;
    }
    DataFrame filter;
    ASSERT_EQ(filter.ReadVector(bits, {999, 1}), 0);
    Digest digest;
    ForEachFlatType([&]<typename T>(std::type_identity<T>) {
        const DataFrame table = RandomTable<T>(999, 3);
        for (const DataFrame& result : {table.SelectRow(positions), table.DropRow(positions), table.SelectRow(filter),
                 table.DropRow(filter), table.DropNanRow(true), table.DropNanRow(2), table.DropNanCol(950)}) {
            AddTable(digest, result);
        }
    });
    Settle("rows", digest);
}

/// Sorted rows, distinct values, repeats and groups.
template <typename T>
void AddOrders(Digest& digest)
{
    for (const unsigned int rows : {1U, 20U, 1000U, 5000U}) {
        DataFrame few = FewRows<T>(rows);
        for (const bool isSorted : {false, true}) {
            const Groups groups = few.GroupBy({2, 1}, false, rows == 20, isSorted);
            for (const std::uint32_t position : groups.GetRowOrder()) {
                digest.Add(position);
            }
            digest.Add(groups.GetGroupNum());
        }
        AddTable(digest, few.Unique(0));
        AddTable(digest, few.Duplicated({0, 1}, "last"));
        digest.Add(few.Sort({0, 2}, rows != 1000));
        AddTable(digest, few);
    }
}

TEST_F(Digests, OfOrdersAndGroups)
{
    ForEachFlatType([]<typename T>(std::type_identity<T>) {
        Digest digest;
        AddOrders<T>(digest);
        Settle("order_" + GetTypeNameById(TYPE_ID_OF<T>), digest);
    });
}

/// Tables merged by one key and by two; each has rows of the other, and rows of its own.
template <typename T>
void AddMerges(Digest& digest)
{
    Random random(TYPE_ID_OF<T>);
    for (const unsigned int rows : {1U, 40U, 1000U}) {
        const DataFrame all = RandomTable<T>(rows, 3);
        const auto anyRows = [&](unsigned int from, unsigned int count) {
            std::vector<std::uint32_t> positions(count);
            std::generate(positions.begin(), positions.end(), [&] { return from + random.Below(rows - from); });
            return all.SelectRow(positions);
        };
        const DataFrame left = anyRows(0, rows);
        const DataFrame right = anyRows(rows / 3, rows / 2);
        for (const auto type : {TESSERA_JOIN_INNER, TESSERA_JOIN_RIGHT, TESSERA_JOIN_LEFT, TESSERA_JOIN_OUTER}) {
            AddTable(digest, left.Merge(right, {1}, {1}, type, {"_x", "_y"}));
            AddTable(digest, left.Merge(right, {1, 2}, {1, 2}, type, {"_x", "_y"}));
        }
    }
}

TEST_F(Digests, OfMerges)
{
    ForEachFlatType([]<typename T>(std::type_identity<T>) {
        Digest digest;
        AddMerges<T>(digest);
        Settle("merge_" + GetTypeNameById(TYPE_ID_OF<T>), digest);
    });
}

TEST_F(Digests, OfGroupEvaluation)
{
    using namespace Func;
    ForEachFlatType([]<typename T>(std::type_identity<T>) {
        Digest digest;
        for (const UnaryFactory& make : {Make<Sum>(), Make<Mean>(), Make<Max>(), Make<Min>(), Make<Std>(),
                 Make<Var, Count>(0), Make<Ptp>(), Make<Kurt, bool, bool>(true, true)}) {
            for (const unsigned int rows : {1U, 20U, 2000U}) {
                DataFrame few = FewRows<T>(rows);
                AddTable(digest, few.Aggregate({2}, {0}, make));
                AddTable(digest, few.Aggregate({2, 1}, {0, 1}, make));
                AddTable(digest, few.TransformGroups({1}, {0}, make));
                AddTable(digest, few.GroupBy({1}, true, true, true).Transform(make));
            }
        }
        Settle("groups_" + GetTypeNameById(TYPE_ID_OF<T>), digest);
    });
}

TEST_F(Digests, OfWindowsOfTime)
{
    Digest digest;
    Random random(19);
    for (const unsigned int rows : {1U, 30U, 900U}) {
        DataFrame table = RandomTable<double>(rows, 2);
        std::vector<DateTime> times(rows);
        std::generate(times.begin(), times.end(), [&] { return DateTime(static_cast<long>(random.Below(20000))); });
        DataFrame stamps;
        ASSERT_EQ(stamps.ReadVector(times, {rows, 1}), 0);
        ASSERT_EQ(table.AppendColInplace(stamps), 0);
        for (const bool isLeft : {false, true}) {
            const Samples windows = table.Resample(2U, DateTime(61), isLeft, !isLeft);
            for (const UnaryFactory& make : {Make<Func::Sum>(), Make<Func::Mean>(), Make<Func::CopySeries>()}) {
                AddTable(digest, windows.Apply(make));
            }
            AddTable(digest, windows.Transform(Make<Func::Max>()));
        }
    }
    Settle("resample", digest);
}

TEST_F(Digests, OfCrossTables)
{
    ForEachFlatType([]<typename T>(std::type_identity<T>) {
        Digest digest;
        for (const unsigned int rows : {1U, 20U, 300U}) {
            const DataFrame few = FewRows<T>(rows);
            AddTable(digest, few.PivotTable<int>({{0}, {1}, {2}}, Make<Func::Max>(), 1));
            AddTable(digest, few.PivotTable<double>({{0}, {1, 2}, {}}, Make<Func::IdxMax>(), 0.0));
        }
        Settle("pivot_" + GetTypeNameById(TYPE_ID_OF<T>), digest);
    });
}

TEST_F(Digests, OfDateRanges)
{
    Random random(7);
    Digest digest;
    for (int i = 0; i < 300; ++i) {
        const auto absentOr = [&random](bool isAbsent) {
            return DateTime(isAbsent ? 0x7FFFFFFFL : static_cast<std::int32_t>(random.Next()));
        };
        const std::uint32_t left = random.Below(4);
        const DateTime start = absentOr(left == 0);
        const DateTime end = absentOr(left == 1);
        const DateTime step(left == 2 ? 0x7FFFFFFFL : static_cast<long>(random.Below(1U << 30)) - (1L << 29));
        for (const DateTime& time :
            DateRange(start, end, left == 3 ? 0U : static_cast<unsigned int>(random.Below(50)), step)) {
            digest.Add(time);
            digest.Add(time.ToString());
        }
    }
    Settle("date_ranges", digest);
}

TEST_F(Digests, OfCsvText)
{
    DataFrame::Columns columns;
    Random random(11);
    const auto add = [&]<typename T>(std::type_identity<T>) {
        SeriesPtr column = BuildSeries({200, CONTAINER_ARRAY, TYPE_ID_OF<T>}, GetTypeNameById(TYPE_ID_OF<T>));
        for (std::uint32_t i = 0; i < 200; ++i) {
            EXPECT_TRUE(SetValueToIterator<T>(column->GetIterator(), RandomCell<T>(random), i));
        }
        columns.push_back(std::move(column));
    };
    ForEachFlatType(add);
    const DataFrame table(std::move(columns));
    const std::string path = testing::TempDir() + "/tessera_digest.csv";
    ASSERT_EQ(table.ToCSV(path, true, ";"), 0);

    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    Digest digest;
    digest.Add(text.str());
    const DataFrame::Types types{TESSERA_BOOL, TESSERA_INT8, TESSERA_UINT8, TESSERA_INT16, TESSERA_UINT16,
        TESSERA_INT32, TESSERA_UINT32, TESSERA_INT64, TESSERA_UINT64, TESSERA_FLOAT, TESSERA_DOUBLE, TESSERA_STRING,
        TESSERA_DATETIME};
    DataFrame again;
    digest.Add(again.ReadCSV(path, types, true, ";"));
    AddTable(digest, again);
    std::remove(path.c_str());
    Settle("csv", digest);
}

TEST_F(Digests, OfArrays)
{
    Digest digest;
    ForEachFlatType([&digest]<typename T>(std::type_identity<T>) {
        const NdData array = RandomTable<T>(1000, 3).Slice({3, 999}, {1, 3});
        digest.AddBytes(array.data.get(), array.data == nullptr ? 0 : 996 * 2 * sizeof(T));
        digest.Add(array.dtype);
    });
    Settle("arrays", digest);
}

} // namespace
} // namespace MERVO::Tessera
