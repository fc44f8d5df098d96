/**
 * Tells what an operation costs at a size: the seconds of its first run in a fresh process, the median of later ones,
 * and how much of that the system took, mostly for fresh memory; and the bytes of its inputs, its result, and the most
 * that was held while it ran.
 *   tessera_growth WORKLOAD ROWS [GROUPS]
 *   prints: workload rows groups first median system inputs result peak resident
 *
 * Bytes are those on the heap; `resident` is by how many the process was larger at its largest. Blocks that the library
 * keeps for later belong to the peak.
 */
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <exception>
#include <fstream>
#include <string>
#include <sys/resource.h>
#include <vector>

#include "benchmarks/measured/heap_meter.h"
#include "benchmarks/measured/workloads.h"

namespace MERVO::Tessera::Bench {
namespace {

/// A line of /proc/self/status, in bytes.
std::size_t StatusBytes(const std::string& label)
{
    std::ifstream status("/proc/self/status");
    std::string word;
    std::size_t kibibytes = 0;
    while (status >> word && word != label) {
    }
    status >> kibibytes;
    return kibibytes << 10;
}

/// Seconds that the system spent for this process.
double SystemSeconds()
{
    rusage used{};
    ::getrusage(RUSAGE_SELF, &used);
    return static_cast<double>(used.ru_stime.tv_sec) + static_cast<double>(used.ru_stime.tv_usec) * 1e-6;
}

/// The heap that columns take up, with that of texts that don't fit into their cells.
std::size_t BytesOf(const DataFrame& table)
{
    constexpr auto CELL_BYTES = ForEachValueType([](auto number) { return sizeof(ValueTypes::At<number()>); });
    const std::size_t inlineLength = std::string().capacity();
    std::size_t bytes = 0;
    for (unsigned int k = 0; k < table.ColumnCount(); ++k) {
        const MERVO_TESSERA_TYPEID type = table.GetColumn(k)->GetAttr().typeId;
        bytes += table.RowCount() * CELL_BYTES[static_cast<std::size_t>(type)];
        if (type == TESSERA_BOOL) {
            bytes -= table.RowCount() - (table.RowCount() + 7) / 8;
        } else if (type == TESSERA_STRING) {
            Func::ForEachElement<std::string>(table.GetColumn(k)->GetIterator(),
                [&](const std::string& cell) { bytes += cell.capacity() > inlineLength ? cell.capacity() + 1 : 0; });
        }
    }
    return bytes;
}

/// One run of a workload: it is prepared anew, since some operations work in place.
struct Sample {
    Sample(const Workload& workload, Size size)
    {
        const std::size_t heapBefore = HeapHeld();
        const std::size_t residentBefore = StatusBytes("VmRSS:");
        DataFrame table;
        const Operation operation = workload.prepare(size);
        inputs = HeapHeld() - heapBefore + operation.fileBytes;
        RestartHeapPeak();
        std::ofstream("/proc/self/clear_refs") << 5; // from here on VmHWM counts anew
        const double systemBefore = SystemSeconds();
        const auto start = std::chrono::steady_clock::now();
        MeasuredOperation(operation, table);
        seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        system = SystemSeconds() - systemBefore;
        peak = HeapPeak() - heapBefore;
        resident = StatusBytes("VmHWM:") - residentBefore;
        result = workload.isInPlace ? 0 : BytesOf(table);
    }

    bool operator<(const Sample& other) const { return seconds < other.seconds; }

    double seconds;
    double system;
    std::size_t inputs;
    std::size_t result; ///< 0 where it took the place of the inputs
    std::size_t peak;
    std::size_t resident;
};

void Measure(const Workload& workload, Size size)
{
    constexpr double ENOUGH_SECONDS = 0.3;
    const Sample first(workload, size);
    std::vector<Sample> later;
    double total = 0;
    double systemTotal = 0; // that of a single short run is a tick of the clock, or nothing
    while (later.size() < 3 || (total < ENOUGH_SECONDS && later.size() < 100)) {
        later.emplace_back(workload, size);
        total += later.back().seconds;
        systemTotal += later.back().system;
    }
    const auto median = later.begin() + static_cast<std::ptrdiff_t>(later.size() / 2);
    std::nth_element(later.begin(), median, later.end());
    std::printf("%s %u %u %.6f %.6f %.6f %zu %zu %zu %zu\n", workload.name, size.rows, size.groups, first.seconds,
        median->seconds, median->seconds * std::min(1.0, systemTotal / total), first.inputs, first.result, first.peak,
        first.resident);
}

} // namespace
} // namespace MERVO::Tessera::Bench

int main(int count, char** arguments)
{
    using namespace MERVO::Tessera::Bench;
    if (count < 3) {
        std::fputs("usage: tessera_growth WORKLOAD ROWS [GROUPS]\n", stderr);
        return 2;
    }
    try {
        const std::uint32_t rows = ParseCount(arguments[2]);
        Measure(FindWorkload(arguments[1]), {rows, count > 3 ? ParseCount(arguments[3]) : DefaultGroups(rows)});
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "tessera_growth: %s\n", failure.what());
        return 1;
    }
}
