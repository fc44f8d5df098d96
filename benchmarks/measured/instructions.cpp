/**
 * Runs one operation once, for a tool that counts its instructions.
 *   tessera_instructions                            lists the workloads: name and, behind a tab, what it reads
 *   tessera_instructions WORKLOAD ROWS [GROUPS]     runs one
 *
 * Callgrind counts within MeasuredOperation; instruction_counter.c between two writes to no file, which this makes.
 */
#include <cstdio>
#include <exception>
#include <unistd.h>

#include "benchmarks/measured/workloads.h"

namespace MERVO::Tessera::Bench {
namespace {

void Run(const Workload& workload, Size size)
{
    const Operation operation = workload.prepare(size);
    DataFrame result;
    const auto mark = [] { return ::write(-1, nullptr, 0) == -1; };
    if (!mark()) {
        return;
    }
    MeasuredOperation(operation, result);
    mark();
}

} // namespace
} // namespace MERVO::Tessera::Bench

int main(int count, char** arguments)
{
    using namespace MERVO::Tessera::Bench;
    try {
        if (count >= 3) {
            const std::uint32_t rows = ParseCount(arguments[2]);
            Run(FindWorkload(arguments[1]), {rows, count > 3 ? ParseCount(arguments[3]) : DefaultGroups(rows)});
            return 0;
        }
        for (const Workload& workload : Workloads()) {
            std::printf("%s\t%s\n", workload.name, workload.what);
        }
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "tessera_instructions: %s\n", failure.what());
        return 1;
    }
}
