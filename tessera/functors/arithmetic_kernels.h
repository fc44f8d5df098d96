#pragma once

#include <array>

#include "tessera/functors/arithmetic.h"
#include "tessera/functors/cell_blocks.h"

namespace MERVO::Tessera::Func {

/// The kernels of an operation by value type; null for types that it does not serve.
using KernelsByType = std::array<CellKernel, ValueTypes::COUNT>;

const KernelsByType& KernelsOf(Arith::ArithOpType operation);

} // namespace MERVO::Tessera::Func
