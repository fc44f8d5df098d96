#include "fuzz/support/witness.h"

#include <algorithm>

#include "fuzz/support/require.h"
#include "fuzz/support/tables.h"

namespace MERVO::Tessera::Fuzz {

void Witness::Look(std::size_t place, const DataFrameRef& table)
{
    const std::uint64_t digest = DigestOf(table);
    const bool mayChange = std::any_of(written.begin(), written.end(),
        [&table](const Written& one) { return one.table == &table || ShareColumns(one.before, table); });
    Require(mayChange || digests[place] == 0 || digests[place] == digest, "a source stays as it was");
    digests[place] = digest;
}

} // namespace MERVO::Tessera::Fuzz
