#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>

#include "tessera/tessera.hpp"

namespace MERVO::Tessera::Bench {

struct Size {
    std::uint32_t rows;
    std::uint32_t groups; ///< distinct values of the large keys
};

/// An operation with its inputs, which it holds.
struct Operation {
    std::function<DataFrame()> run; ///< may be called once, and gives the result; throws where it failed
    std::size_t fileBytes = 0;      ///< of inputs that lie in a file
};

/// The chief operations of each family, for programs that tell what they cost.
struct Workload {
    const char* name;
    const char* what; ///< what it reads, for a reader of the report
    bool isInPlace;   ///< the result takes the place of the input
    Operation (*prepare)(Size size);
};
std::span<const Workload> Workloads();

/// The number of groups that goes with a number of rows: a hundredth.
constexpr std::uint32_t DefaultGroups(std::uint32_t rows) { return rows < 100 ? 1 : rows / 100; }

/// The workload of a name; throws where there is none.
const Workload& FindWorkload(const char* name);

/// A count that a user typed: digits, perhaps with an exponent as in 1e6. Throws where it is none.
std::uint32_t ParseCount(const char* text);

/// Runs an operation; throws where it failed. It is never inlined, and has this name without mangling, so that a tool
/// can count from its start to its end.
extern "C" [[gnu::noinline]] void MeasuredOperation(const Operation& operation, DataFrame& result);

} // namespace MERVO::Tessera::Bench
