#pragma once

#include "tessera/core/data_frame.h"

/**
 * Operators between tables and windows; each column meets the column of the same place, or the only one of the other
 * side. How two columns meet is told at the functors: arithmetic.h, comparison.h and logic.h.
 *
 * Each gives a new table, with the column names of the side that has more columns. On failure it is an empty table that
 * holds "Error on executing operator" and the code: an operand's own; 7: an operand without columns; 19: column counts
 * that can't be paired; 21: lengths or value types that don't fit; 1: a value type that the operation does not serve.
 * The operators that assign, +=, &= and so on, are members of DataFrameRef.
 */
namespace MERVO::Tessera {

TESSERA_API DataFrame operator+(const DataFrameRef& lhs, const DataFrameRef& rhs);
TESSERA_API DataFrame operator-(const DataFrameRef& lhs, const DataFrameRef& rhs);
TESSERA_API DataFrame operator*(const DataFrameRef& lhs, const DataFrameRef& rhs);
TESSERA_API DataFrame operator/(const DataFrameRef& lhs, const DataFrameRef& rhs);
TESSERA_API DataFrame operator%(const DataFrameRef& lhs, const DataFrameRef& rhs);

/// Compare cell by cell, into a table of bools.
TESSERA_API DataFrame operator==(const DataFrameRef& lhs, const DataFrameRef& rhs);
TESSERA_API DataFrame operator!=(const DataFrameRef& lhs, const DataFrameRef& rhs);
TESSERA_API DataFrame operator<(const DataFrameRef& lhs, const DataFrameRef& rhs);
TESSERA_API DataFrame operator>(const DataFrameRef& lhs, const DataFrameRef& rhs);
TESSERA_API DataFrame operator<=(const DataFrameRef& lhs, const DataFrameRef& rhs);
TESSERA_API DataFrame operator>=(const DataFrameRef& lhs, const DataFrameRef& rhs);

/// Combine tables of bools, cell by cell; both operands are evaluated.
TESSERA_API DataFrame operator&&(const DataFrameRef& lhs, const DataFrameRef& rhs);
TESSERA_API DataFrame operator||(const DataFrameRef& lhs, const DataFrameRef& rhs);
/// The opposite of a table of bools; of anything else a table with code 17.
TESSERA_API DataFrame operator!(const DataFrameRef& table);

} // namespace MERVO::Tessera
