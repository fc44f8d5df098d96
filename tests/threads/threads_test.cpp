// Four threads at once, on tables of their own and on columns that all of them only read. The thread sanitizer judges
// (scripts/threads.sh); without it, a thread whose result is not that of the others fails.

#include <gmock/gmock.h>

#include <atomic>
#include <cstdio>
#include <fstream>
#include <functional>
#include <iterator>
#include <latch>
#include <string>
#include <thread>

#include "tests/support/flat_digest.h"

namespace {
std::atomic<unsigned int> messages = 0;
} // namespace

/// The host's logger, which is called by all threads.
extern "C" void ORLELogStr(int, const char*, const char*, ...) { ++messages; }

namespace MERVO::Tessera {
namespace {

constexpr std::size_t THREADS = 4;

/// Runs the work in all threads at once, which each get their number. All must come to the same text.
void ExpectSameInAll(const std::function<std::string(std::size_t)>& work)
{
    std::array<std::string, THREADS> results;
    std::latch start(THREADS);
    std::array<std::thread, THREADS> threads;
    for (std::size_t i = 0; i < THREADS; ++i) {
        threads[i] = std::thread([&, i] {
            start.arrive_and_wait();
            results[i] = work(i);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_THAT(results, testing::Each(results.front()));
    EXPECT_FALSE(results.front().empty());
}

/// A file of one thread's own.
class OwnFile {
public:
    explicit OwnFile(std::size_t thread) : path(testing::TempDir() + "/tessera_thread_" + std::to_string(thread)) {}
    ~OwnFile() { std::remove(path.c_str()); }
    std::string Text() const
    {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    const std::string path;
};

std::vector<UnaryFactory> Statistics()
{
    using namespace Func;
    return {Make<Sum>(), Make<Mean>(), Make<Max>(), Make<IdxMax>(), Make<Std, Count>(1), Make<Kstat, Count>(3),
        Make<Skew, bool, bool>(true, false), Make<RollingMean, Count, bool, Count>(9, true, 2), Make<IsNan>(),
        Make<FillNan, const char*>("bfill"), Make<Interpolate>(), Make<Round, Count>(2), Make<Diff, std::int32_t>(3),
        Make<TypeCast, MERVO_TESSERA_TYPEID>(TESSERA_STRING), Make<TypeCast, MERVO_TESSERA_TYPEID>(TESSERA_INT16)};
}

/// All that only reads a table, of any type; some of it fails, by intention.
template <typename T>
void AddReadings(Digest& digest, const DataFrame& table, const DataFrameRef& window, const OwnFile& file)
{
    for (const UnaryFactory& make : Statistics()) {
        DataFrame result;
        digest.Add(result.ApplyInplace(make, window));
        AddTable(digest, result.GetError().code == 0 ? result : DataFrame());
    }
    for (const DataFrame& result : {window + window, window < window, window == table, window.Unique(1),
             table.Transpose(), table.SelectRow({4, 1, 4}), table.DropRow(table.Slice(1, {0, 1}) == table[0]),
             table.SelectCol(std::vector<std::string>{table.GetColumnName().back()}), table.DropNanRow(true),
             table.Duplicated({0, 1}, "first"), table.Aggregate({1}, {0}, Make<Func::Max>()),
             table.TransformGroups({1}, {0}, Make<Func::Sum>()),
             table.Merge(table, {1}, {1}, TESSERA_JOIN_LEFT, {"_x", "_y"}),
             table.PivotTable<int>({{0}, {1}, {}}, Make<Func::Max>(), 1)}) {
        AddTable(digest, result);
    }
    DataFrame sorted(window);
    digest.Add(sorted.Sort({0, 1}, true));
    AddTable(digest, sorted);
    std::ostringstream text;
    text << window << table;
    digest.Add(text.str());
    digest.Add(window.ToCSV(file.path, true, ","));
    digest.Add(file.Text());
    DataFrame again;
    digest.Add(again.ReadCSV(file.path, DataFrame::Types(window.ColumnCount(), window.Type()), true, ","));
    AddTable(digest, again);
    if (window.Type() <= TESSERA_DOUBLE) {
        const NdData array = window;
        digest.AddBytes(array.data.get(), window.RowCount());
    }
}

TEST(Threads, WorkOnTheirOwnTables)
{
    ExpectSameInAll([](std::size_t thread) {
        const OwnFile file(thread);
        Digest digest;
        ForEachFlatType([&]<typename T>(std::type_identity<T>) {
            const DataFrame table = FewRows<T>(60);
            AddReadings<T>(digest, table, table.Slice({3, 57}, {0, 2}), file);
        });
        return digest.Hex();
    });
}

TEST(Threads, CallTheFlatSurface)
{
    ExpectSameInAll([](std::size_t) { return DigestOfFlatCalls(200, 5); });
}

/// Of blocks that one thread gives back, another one takes some.
TEST(Threads, PassLargeBlocksOn)
{
    ExpectSameInAll([](std::size_t) {
        Digest digest;
        for (unsigned int rows = 33000; rows < 37000; rows += 1000) {
            DataFrame table = RandomTable<double>(rows, 1);
            AddTable(digest, table += table);
        }
        return digest.Hex();
    });
}

TEST(Threads, ReadCommonColumns)
{
    ForEachFlatType([]<typename T>(std::type_identity<T>) {
        DataFrame table = FewRows<T>(60);
        ASSERT_EQ(table.SetColumnName({"a", "b", "b"}), 0);
        const DataFrameRef window = table.Slice({3, 57}, {0, 2}); // which settles the names
        ExpectSameInAll([&](std::size_t thread) {
            const OwnFile file(thread);
            Digest digest;
            DataFrame shared; // as a table of this thread
            shared.ShallowCopy(table);
            const DataFrameRef own = window;
            AddReadings<T>(digest, shared, own, file);
            digest.Add(own.GetColumnName().at(1));
            return digest.Hex();
        });
    });
}

TEST(Threads, ReadLabelsThatNobodyAskedForBefore)
{
    DataFrame table = RandomTable<double>(500, 2);
    std::vector<DateTime> times;
    for (long i = 0; i < 500; ++i) {
        times.emplace_back(i * 7);
    }
    DataFrame stamps;
    ASSERT_EQ(stamps.ReadVector(times, {500, 1}), 0);
    ASSERT_EQ(table.AppendColInplace(stamps), 0);
    const Samples windows = table.Resample(2U, DateTime(61), true, false);
    ExpectSameInAll([&](std::size_t thread) {
        const OwnFile file(thread);
        const Samples own = windows; // on the same columns
        Digest digest;
        AddTable(digest, own.Apply(Make<Func::Sum>()));
        AddTable(digest, own.CopyGroup(3));
        const DataFrame rows = own.GetProcessedDataFrame();
        digest.Add(rows.ToCSV(file.path, true, ","));
        digest.Add(file.Text());
        AddTable(digest, own.Transform(Make<Func::Max>()));
        return digest.Hex();
    });
}

TEST(Threads, LogThroughTheHost)
{
    messages = 0;
    ExpectSameInAll([](std::size_t) {
        for (int i = 0; i < 100; ++i) {
            static_cast<void>(MERVO_TSR_Sum(nullptr, nullptr));
        }
        return std::string("done");
    });
    EXPECT_EQ(messages, THREADS * 100);
}

} // namespace
} // namespace MERVO::Tessera
