#pragma once

#include "fuzz/support/inputs.h"

namespace MERVO::Tessera::Fuzz {

/// Draw a functor with its arguments. A factory may be used as often as one likes.
UnaryFactory DrawUnary(Inputs& inputs);
BinaryFactory DrawBinary(Inputs& inputs);

} // namespace MERVO::Tessera::Fuzz
