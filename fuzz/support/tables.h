#pragma once

#include <cstdint>

#include "tessera/tessera.hpp"

namespace MERVO::Tessera::Fuzz {

/// A number that differs, most likely, between tables or windows that differ in their code, shape, names, value types,
/// containers, or in a bit of a cell. All cells are read, and names become unique.
std::uint64_t DigestOf(const DataFrameRef& table);

/// The same of the shape, the value types and the cells alone.
std::uint64_t CellDigestOf(const DataFrameRef& table);

/// Require that the digests are equal, and show both tables otherwise.
void RequireSame(const DataFrameRef& one, const DataFrameRef& other, const char* law);
void RequireSameCells(const DataFrameRef& one, const DataFrameRef& other, const char* law);

/// Requires that a table or window is in one piece: a code that is documented, columns as the shape says, names that
/// are unique once they are refreshed.
/// @param isOwner whether the columns are the table's own; one that shares them may have lost some to changes of the
///                owner, and says so by null.
void RequireSound(const DataFrameRef& table, bool isOwner);

/// Whether a change of the cells of one may show in the other.
bool ShareColumns(const DataFrameRef& one, const DataFrameRef& other);

bool IsDocumented(ErrorCode code);

} // namespace MERVO::Tessera::Fuzz
