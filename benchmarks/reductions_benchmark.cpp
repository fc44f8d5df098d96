#include <optional>

#include "benchmarks/bench_data.h"

namespace MERVO::Tessera::Bench {
namespace {

constexpr std::uint32_t COLUMNS = 10;

/// Reduces each column of a table of T to a double.
template <template <ContainerID> class Reduction, typename T>
void ReduceColumns(benchmark::State& state, const char* file)
{
    const DataFrame source = ReadColumns<T>(state, file, COLUMNS);
    DataFrame result;
    for (auto _ : state) {
        if (result.ApplyInplace(Func::FunctorFactory<Reduction, Func::UnaryBase>{}, source) != ERROR_NONE) {
            state.SkipWithError("the reduction failed");
            break;
        }
        benchmark::DoNotOptimize(result);
    }
    state.counters["check"] = CheckOf(result, false);
    state.SetBytesProcessed(state.iterations() * std::int64_t{ROWS} * COLUMNS * std::int64_t{sizeof(T)});
}

/// A row-major buffer of doubles; empty, and the benchmark marked as skipped, without data.
std::vector<double> ReadRowMajor(benchmark::State& state)
{
    const std::vector<double> columns = ReadRaw<double>(state, "num.bin", std::size_t{ROWS} * COLUMNS);
    std::vector<double> rows(columns.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        rows[i] = columns[i % COLUMNS * ROWS + i / COLUMNS];
    }
    return rows;
}

struct Handle {
    Handle() = default;
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() { MERVO_TSR_Release(&context); }

    MERVO_TSR_CONTEXT* context = MERVO_TSR_CreateDF();
};

bool Load(const Handle& handle, const std::vector<double>& rows)
{
    const std::vector<MERVO_TESSERA_TYPEID> types(COLUMNS, TESSERA_DOUBLE);
    const MERVO_TSR_SHAPE shape{ROWS, COLUMNS, types.data()};
    return ReadDataDouble(handle.context, rows.data(), &shape) == ERROR_NONE;
}

void LoadRowMajor(benchmark::State& state)
{
    const std::vector<double> rows = ReadRowMajor(state);
    std::optional<Handle> handle;
    for (auto _ : state) {
        state.PauseTiming(); // releasing the last table is no part of the next load
        handle.emplace();
        state.ResumeTiming();
        if (!Load(*handle, rows)) {
            state.SkipWithError("ReadDataDouble failed");
            break;
        }
    }
    if (handle) {
        state.counters["check"] = CheckOf(*handle->context->dataFrame, true);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(rows.size() * sizeof(double)));
}

void ReadBackRowMajor(benchmark::State& state)
{
    const std::vector<double> rows = ReadRowMajor(state);
    const Handle handle;
    if (rows.empty()) {
        return;
    }
    if (!Load(handle, rows)) {
        state.SkipWithError("ReadDataDouble failed");
        return;
    }
    std::vector<double> cells(rows.size());
    std::vector<void*> buffers;
    for (std::size_t row = 0; row < ROWS; ++row) {
        buffers.push_back(cells.data() + row * COLUMNS);
    }
    MERVO_TSR_RESULT result{buffers.data(), 0, 0};
    for (auto _ : state) {
        if (MERVO_TSR_GetResultDouble(handle.context, &result) != ERROR_NONE || result.rowCount != ROWS) {
            state.SkipWithError("MERVO_TSR_GetResultDouble failed");
            break;
        }
        benchmark::ClobberMemory();
    }
    if (cells != rows) {
        state.SkipWithError("what was read differs from what was loaded");
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(rows.size() * sizeof(double)));
}

[[maybe_unused]] const auto* const REGISTERED = [] {
    const auto reduce = [](const char* name, auto* function, const char* file) {
        benchmark::RegisterBenchmark(name, function, file)->Unit(benchmark::kMillisecond);
    };
    reduce("sum_f64", &ReduceColumns<Func::Sum, double>, "num.bin");
    reduce("mean_f64", &ReduceColumns<Func::Mean, double>, "num.bin");
    reduce("max_f64", &ReduceColumns<Func::Max, double>, "num.bin");
    reduce("sum_i32", &ReduceColumns<Func::Sum, std::int32_t>, "i32.bin");
    reduce("mean_nan_f64", &ReduceColumns<Func::Mean, double>, "numnan.bin");
    benchmark::RegisterBenchmark("load_f64", &LoadRowMajor)->Unit(benchmark::kMillisecond);
    return benchmark::RegisterBenchmark("readback_f64", &ReadBackRowMajor)->Unit(benchmark::kMillisecond);
}();

} // namespace
} // namespace MERVO::Tessera::Bench
