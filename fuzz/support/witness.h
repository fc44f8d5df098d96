#pragma once

#include <cstdint>
#include <vector>

#include "tessera/tessera.hpp"

namespace MERVO::Tessera::Fuzz {

/// Watches tables and windows that stand at fixed places, and requires that an operation changes no others than it may.
class Witness {
public:
    explicit Witness(std::size_t places) : digests(places) {}

    /// Tells before an operation that it may change a table, and with it all that shares its columns.
    void Expect(const DataFrameRef& table) { written.push_back({&table, table}); }
    /// Tells that another table stands at a place now.
    void Forget(std::size_t place) { digests[place] = 0; }
    /// Looks at the table at a place after an operation.
    void Look(std::size_t place, const DataFrameRef& table);
    /// Ends the operation.
    void Finish() { written.clear(); }

private:
    struct Written {
        const DataFrameRef* table;
        DataFrameRef before; ///< shares the columns that the table had
    };
    std::vector<Written> written;
    std::vector<std::uint64_t> digests; ///< 0 where it is not known
};

} // namespace MERVO::Tessera::Fuzz
