#include "tessera/functors/nan_marks.h"

#include <algorithm>

#include "tessera/functors/cell_runs.h"
#include "tessera/platform/multiversion.h"

namespace MERVO::Tessera::Func {
namespace {

using MarkKernel = ErrorCode (*)(const void* elements, void* marks, std::uint32_t count);

template <typename Real, typename Mark>
[[gnu::always_inline]] inline void MarkEach(
    const Real* __restrict elements, Mark* __restrict marks, std::uint32_t count)
{
    for (std::uint32_t i = 0; i < count; ++i) {
        marks[i] = static_cast<Mark>(elements[i] != elements[i]);
    }
}

template <typename Real, typename Mark>
TESSERA_WIDE_VECTORS void MarkEachWide(const Real* elements, Mark* marks, std::uint32_t count)
{
    MarkEach(elements, marks, count);
}

template <typename Real, typename Mark>
void MarkReals(const Real* elements, Mark* marks, std::uint32_t count)
{
    HasWideVectors() ? MarkEachWide(elements, marks, count) : MarkEach(elements, marks, count);
}

template <typename Real>
[[gnu::always_inline]] inline void CountEach(
    const Real* __restrict elements, std::uint8_t* __restrict counts, std::uint32_t count)
{
    for (std::uint32_t i = 0; i < count; ++i) {
        counts[i] = static_cast<std::uint8_t>(counts[i] + (elements[i] != elements[i] ? 1 : 0));
    }
}

template <typename Real>
TESSERA_WIDE_VECTORS void CountEachWide(const Real* elements, std::uint8_t* counts, std::uint32_t count)
{
    CountEach(elements, counts, count);
}

template <typename Real, typename Mark>
ErrorCode MarkCells(const void* elements, void* marks, std::uint32_t count)
{
    MarkReals(static_cast<const Real*>(elements), static_cast<Mark*>(marks), count);
    return ERROR_NONE;
}

template <typename Mark>
ErrorCode MarkNone(const void*, void* marks, std::uint32_t count)
{
    std::fill_n(static_cast<Mark*>(marks), count, Mark{});
    return ERROR_NONE;
}

template <typename Mark>
MarkKernel KernelFor(MERVO_TESSERA_TYPEID type)
{
    switch (type) {
    case TESSERA_FLOAT:
        return &MarkCells<float, Mark>;
    case TESSERA_DOUBLE:
        return &MarkCells<double, Mark>;
    default:
        return &MarkNone<Mark>;
    }
}

} // namespace

void MarkNans(const float* elements, bool* marks, std::uint32_t count) { MarkReals(elements, marks, count); }

void MarkNans(const double* elements, bool* marks, std::uint32_t count) { MarkReals(elements, marks, count); }

void CountNans(const float* elements, std::uint8_t* counts, std::uint32_t count)
{
    HasWideVectors() ? CountEachWide(elements, counts, count) : CountEach(elements, counts, count);
}

void CountNans(const double* elements, std::uint8_t* counts, std::uint32_t count)
{
    HasWideVectors() ? CountEachWide(elements, counts, count) : CountEach(elements, counts, count);
}

ErrorCode MarkNans(const Cursor& src, const Cursor& dst)
{
    const MERVO_TESSERA_TYPEID type = src->GetAttr().typeId;
    switch (dst->GetAttr().typeId) {
    case TESSERA_BOOL:
        return ForEachRun(src, dst, KernelFor<bool>(type));
    case TESSERA_INT32:
        return ForEachRun(src, dst, KernelFor<std::int32_t>(type));
    default:
        return ERROR_GENERAL;
    }
}

} // namespace MERVO::Tessera::Func
