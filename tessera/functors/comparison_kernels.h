#pragma once

#include "tessera/core/value_types.h"
#include "tessera/functors/cell_blocks.h"

namespace MERVO::Tessera::Func {

/// The five comparisons of cells.
enum class Relation : std::uint8_t { EQUAL, GREATER, LESS, GREATER_EQUAL, LESS_EQUAL };

/// How a relation is computed for a value type: by a kernel that it shares with others, which writes a bool for each
/// pair of cells.
struct ComparisonPlan {
    CellKernel kernel = nullptr; ///< null for a type without comparisons
    bool isSwapped = false;      ///< the kernel takes the right operand first
    bool isInverted = false;     ///< the kernel tells the opposite
};

ComparisonPlan PlanFor(Relation relation, MERVO_TESSERA_TYPEID type);

} // namespace MERVO::Tessera::Func
