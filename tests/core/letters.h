#pragma once

#include "tessera/core/data_frame.h"
#include "tessera/functors/copy_series.h"
#include "tessera/functors/functor_factory.h"
#include "tests/support/sample_columns.h"

namespace MERVO::Tessera {

using Range = DataFrame::Range;
using NameRange = DataFrame::NameRange;

/// Five rows of columns a, b, c, d; the cell of row r in column k is 10 * k + r.
inline DataFrame Letters()
{
    DataFrame::Columns columns;
    for (int k = 0; k < 4; ++k) {
        std::vector<std::int32_t> cells;
        for (int r = 0; r < 5; ++r) {
            cells.push_back(10 * k + r);
        }
        columns.push_back(Column<std::int32_t>(std::string(1, static_cast<char>('a' + k)), cells));
    }
    return DataFrame(std::move(columns));
}

inline std::vector<std::int32_t> Flat(const DataFrameRef& table) { return table.To1DVector<std::int32_t>(); }

inline ErrorCode CopyOver(DataFrameRef& target, const DataFrameRef& source)
{
    return target.ApplyInplace(Func::FunctorFactory<Func::CopySeries, Func::UnaryBase>{}, source);
}

} // namespace MERVO::Tessera
