#include <filesystem>
#include <optional>

#include "benchmarks/bench_data.h"

namespace MERVO::Tessera::Bench {
namespace {

const DataFrame::Types G1_TYPES = {TESSERA_STRING, TESSERA_STRING, TESSERA_STRING, TESSERA_INT32, TESSERA_INT32,
    TESSERA_INT32, TESSERA_INT32, TESSERA_INT32, TESSERA_DOUBLE};

bool ReadG1(benchmark::State& state, DataFrame& table)
{
    const std::string path = DataPath("g1.csv");
    if (table.ReadCSV(path, G1_TYPES, true, ",") == ERROR_NONE) {
        return true;
    }
    state.SkipWithError(("no data in " + path + "; benchmarks/make_data.py writes them").c_str());
    return false;
}

void ReadCsv(benchmark::State& state)
{
    std::optional<DataFrame> table;
    for (auto _ : state) {
        state.PauseTiming(); // releasing the last table is no part of reading the next
        table.emplace();
        state.ResumeTiming();
        if (!ReadG1(state, *table)) {
            return;
        }
    }
    state.counters["check"] = CheckOf(*table, true);
    state.SetItemsProcessed(state.iterations() * table->RowCount());
}

void WriteCsv(benchmark::State& state)
{
    DataFrame table;
    if (!ReadG1(state, table)) {
        return;
    }
    const std::filesystem::path path = std::filesystem::temp_directory_path() / "tessera-bench-written.csv";
    for (auto _ : state) {
        if (table.ToCSV(path.string(), true, ",") != ERROR_NONE) {
            state.SkipWithError("writing failed");
            break;
        }
    }
    state.counters["check"] = static_cast<double>(std::filesystem::file_size(path));
    state.SetItemsProcessed(state.iterations() * table.RowCount());
    std::filesystem::remove(path);
}

BENCHMARK(ReadCsv)->Name("read_csv")->Unit(benchmark::kMillisecond);
BENCHMARK(WriteCsv)->Name("write_csv")->Unit(benchmark::kMillisecond);

} // namespace
} // namespace MERVO::Tessera::Bench
