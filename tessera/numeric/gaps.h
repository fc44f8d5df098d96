#pragma once

#include <algorithm>
#include <cstdint>

#include "tessera/functors/element_walk.h"

namespace MERVO::Tessera::Func {

/// A run of NaN elements. At the column's begin and end, where no present element is beside it, its own first or last
/// element stands in.
template <typename Real>
struct Gap {
    Real before;
    Real after;
    std::uint32_t length;
};

/// Writes to the places of a gap, and passes over them, what rule(gap, place) gives; places count from 1, in Real.
template <typename Real, typename To, typename Rule>
void FillGap(const Gap<Real>& gap, To& to, Rule rule)
{
    Real place = 1;
    for (std::uint32_t i = 0; i < gap.length; ++i, ++to) {
        *to = rule(gap, place);
        place += 1;
    }
}

/// Copies the present elements of a column in any container, and fills its gaps by a rule.
template <typename Real, typename Rule>
void CopyAndFillGaps(const Cursor& src, const Cursor& dst, Rule rule)
{
    AnyPlace<Real> from(src);
    AnyPlace<Real> to(dst);
    std::uint32_t left = std::min(src->Length(), dst->Length());
    Real before = left != 0 ? *from : Real{};
    while (left != 0) {
        const Real element = *from;
        if (element == element) {
            before = *to = element;
            ++from;
            ++to;
            --left;
            continue;
        }
        Gap<Real> gap{before, element, 0};
        while (left != 0 && gap.after != gap.after) {
            ++gap.length;
            ++from;
            if (--left != 0) {
                gap.after = *from;
            }
        }
        FillGap(gap, to, rule);
    }
}

} // namespace MERVO::Tessera::Func
