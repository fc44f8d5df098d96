#include "tessera/numeric/real_runs.h"

#include <algorithm>

namespace MERVO::Tessera::Func {
namespace {

template <typename T, typename Real>
void ConvertCells(const void* cells, Real* reals, std::uint32_t count)
{
    const T* const values = static_cast<const T*>(cells);
    for (std::uint32_t i = 0; i < count; ++i) {
        reals[i] = static_cast<Real>(values[i]);
    }
}

template <typename T, typename Real>
inline constexpr bool IS_SERVED = Arithmetic<T> && (std::is_same_v<Real, double> || std::is_same_v<T, Real>);

template <typename Real>
constexpr auto CONVERTERS = ForEachValueType([](auto number) -> void (*)(const void*, Real*, std::uint32_t) {
    using T = ValueTypes::At<number()>;
    if constexpr (IS_SERVED<T, Real>) {
        return &ConvertCells<T, Real>;
    } else {
        return nullptr;
    }
});

} // namespace

template <typename Real>
RealRuns<Real>::RealRuns(const Cursor& column)
    : cells(column), left(column->Length()),
      isArrayOfReal(column->IsMemoryContiguous() && column->GetAttr().typeId == TYPE_ID_OF<Real>),
      convert(CONVERTERS<Real>[static_cast<std::size_t>(column->GetAttr().typeId)])
{
}

template <typename Real>
std::span<const Real> RealRuns<Real>::Next(std::uint32_t most)
{
    std::uint32_t wanted = std::min(most, left);
    if (isArrayOfReal) {
        const std::span<const Real> run(static_cast<const Real*>(cells.Read(wanted)), wanted);
        cells.Skip(wanted);
        left -= wanted;
        return run;
    }
    wanted = std::min(wanted, BUFFERED);
    for (std::uint32_t done = 0; done < wanted;) {
        const std::uint32_t count = std::min(wanted - done, cells.Longest());
        convert(cells.Read(count), buffer.data() + done, count);
        cells.Skip(count);
        done += count;
    }
    left -= wanted;
    return {buffer.data(), wanted};
}

template class RealRuns<float>;
template class RealRuns<double>;

} // namespace MERVO::Tessera::Func
