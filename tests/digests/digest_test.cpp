// Runs seeded operations and holds digests of all result bits against tests/digests/recorded.txt, which is the same for
// every compiler, optimisation and processor. After a wanted change of results, take over the lines that a run with
// TESSERA_DIGEST_FILE=FILE leaves in FILE.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <limits>
#include <map>
#include <sstream>

#include "tessera/core/date_range.h"
#include "tessera/tessera.hpp"
#include "tests/support/log_capture.h"
#include "tests/support/random.h"

namespace MERVO::Tessera {
namespace {

/// FNV-1a over 64 bits: simple, and any changed bit shows.
class Digest {
public:
    void AddBytes(const void* data, std::size_t size)
    {
        const auto* bytes = static_cast<const unsigned char*>(data);
        for (std::size_t i = 0; i < size; ++i) {
            value = (value ^ bytes[i]) * 0x100000001B3ULL;
        }
    }
    template <Arithmetic T>
    void Add(T number)
    {
        AddBytes(&number, sizeof(number));
    }
    void Add(const std::string& text)
    {
        Add(static_cast<std::uint32_t>(text.size()));
        AddBytes(text.data(), text.size());
    }
    void Add(const DateTime& time) { Add(static_cast<std::int32_t>(time.TimeStamp())); }
    std::string Hex() const
    {
        std::ostringstream text;
        text << std::hex << value;
        return text.str();
    }

private:
    std::uint64_t value = 0xCBF29CE484222325ULL;
};

/// Any bit pattern, near decimals, whole numbers, and what the IEEE formats hold besides numbers.
template <std::floating_point T>
T RandomCell(Random& random)
{
    using Bits = std::conditional_t<sizeof(T) == 8, std::uint64_t, std::uint32_t>;
    constexpr T INFINITE = std::numeric_limits<T>::infinity();
    switch (random.Below(8)) {
    case 0:
        return std::bit_cast<T>(static_cast<Bits>(random.Next()));
    case 1:
        return std::array<T, 5>{INFINITE, -INFINITE, T{0}, -T{0}, std::numeric_limits<T>::quiet_NaN()}[random.Below(5)];
    case 2:
        return static_cast<T>(static_cast<std::int64_t>(random.Next()));
    case 3:
        return static_cast<T>(random.Below(1000));
    default:
        return static_cast<T>(static_cast<std::int32_t>(random.Next())) / T{1000};
    }
}

template <std::integral T>
T RandomCell(Random& random)
{
    return static_cast<T>(random.Below(4) == 0 ? random.Below(100) : random.Next());
}

template <std::same_as<DateTime> T>
T RandomCell(Random& random)
{
    return DateTime(static_cast<std::int32_t>(random.Next()));
}

/// Numbers in many spellings, dates, and words.
template <std::same_as<std::string> T>
T RandomCell(Random& random)
{
    // One draw per statement: compilers differ on which part of an expression comes first.
    const auto drawn = static_cast<std::int64_t>(random.Next());
    const std::int64_t number = drawn >> random.Below(60);
    const std::uint32_t first = random.Below(1000000);
    const std::uint32_t second = random.Below(1000);
    switch (random.Below(7)) {
    case 0:
        return std::to_string(number);
    case 1:
        return std::to_string(number) + "." + std::to_string(first);
    case 2:
        return "-0." + std::to_string(second) + "e" + std::to_string(first % 200);
    case 3:
        return " +" + std::to_string(second) + "rest";
    case 4:
        return std::to_string(1900 + first % 140) + "-" + std::to_string(second % 14) + "-" +
            std::to_string(first % 40) + " 7:8";
    case 5:
        return second % 2 == 0 ? "" : "word";
    default:
        return std::array<const char*, 4>{"inf", "nan", "0x1p-3", "1e-300"}[first % 4];
    }
}

template <typename T>
DataFrame RandomTable(unsigned int rows, unsigned int columns)
{
    Random random(std::uint64_t{rows} * 1000 + columns);
    std::vector<T> cells(std::size_t{rows} * columns);
    for (std::size_t i = 0; i < cells.size(); ++i) {
        cells[i] = RandomCell<T>(random);
    }
    DataFrame table;
    EXPECT_EQ(table.ReadVector<T>(cells, {rows, columns}), 0);
    return table;
}

template <typename T>
void AddColumn(Digest& digest, const Cursor& cursor)
{
    Func::ForEachElement<T>(cursor, [&digest](const auto& cell) { digest.Add(static_cast<const T&>(cell)); });
}

/// Code, shape, types and cells of a table.
void AddTable(Digest& digest, const DataFrame& table)
{
    digest.Add(table.GetError().code);
    digest.Add(table.RowCount());
    for (unsigned int k = 0; k < table.ColumnCount(); ++k) {
        const Cursor cursor = table.GetSlicedIterator(table.GetColumn(k));
        const MERVO_TESSERA_TYPEID type = cursor->GetAttr().typeId;
        digest.Add(static_cast<std::int32_t>(type));
        [&]<std::size_t... I>(std::index_sequence<I...>)
        {
            ((type == static_cast<MERVO_TESSERA_TYPEID>(I) ? AddColumn<ValueTypes::At<I>>(digest, cursor) : void()),
                ...);
        }
        (std::make_index_sequence<TESSERA_DATAFRAME>{});
    }
}

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

template <typename Add>
void ForEachFlatType(Add add)
{
    [&]<std::size_t... I>(std::index_sequence<I...>) { (add(std::type_identity<ValueTypes::At<I>>{}), ...); }
    (std::make_index_sequence<TESSERA_DATAFRAME>{});
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

template <template <ContainerID, typename...> class F, typename... Arguments>
UnaryFactory Make(Arguments... arguments)
{
    return Func::FunctorFactory<F, Func::UnaryBase, Arguments...>{arguments...};
}

using Count = std::uint32_t;

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

/// Few different rows, so that ties count.
template <typename T>
DataFrame FewRows(unsigned int rows)
{
    std::vector<std::uint32_t> positions(rows);
    Random random(rows);
    std::generate(positions.begin(), positions.end(), [&] { return random.Below(rows / 3 + 1); });
    return RandomTable<T>(rows, 3).SelectRow(positions);
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
