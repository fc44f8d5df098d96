#pragma once

#include <functional>

#include "fuzz/support/play.h"

namespace MERVO::Tessera::Fuzz {

/// An operation with its arguments.
struct Operation {
    std::function<DataFrame(const DataFrame&)> make;
    /// Where there is one: puts what `make` gives in the table's place, also where it failed.
    std::function<ErrorCode(DataFrame&)> inPlace = nullptr;
};

/// Draws an operation that makes a new table of one like this.
Operation DrawTableOperation(Play& play, const DataFrame& table);

} // namespace MERVO::Tessera::Fuzz
