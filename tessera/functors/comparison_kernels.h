#pragma once

#include "tessera/functors/cell_blocks.h"
#include "tessera/functors/comparison.h"

namespace MERVO::Tessera::Func {

/// How a relation is computed for a value type: by a kernel that it shares with others, which writes a bool for each
/// pair of cells.
struct ComparisonPlan {
    CellKernel kernel = nullptr; ///< null for a type without comparisons
    bool isSwapped = false;      ///< the kernel takes the right operand first
    bool isInverted = false;     ///< the kernel tells the opposite
};

ComparisonPlan PlanFor(Compare::Relation relation, MERVO_TESSERA_TYPEID type);

} // namespace MERVO::Tessera::Func
