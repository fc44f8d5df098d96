#include "tessera/numeric/interpolate.h"

#include <array>
#include <bit>
#include <limits>

#include "tessera/core/bit_bytes.h"
#include "tessera/functors/nan_marks.h"
#include "tessera/functors/type_cast.h"
#include "tessera/numeric/gaps.h"
#include "tessera/numeric/plain_nan.h"

namespace MERVO::Tessera::Func {
namespace {

template <typename Real>
Real OnTheLine(const Gap<Real>& gap, Real place)
{
    if (gap.before != gap.before) {
        return std::numeric_limits<Real>::quiet_NaN();
    }
    if (gap.after != gap.after) {
        return gap.before;
    }
    const Real steps = static_cast<Real>(gap.length) + Real{1};
    return WithPlainNan(place * (gap.after - gap.before) / steps + gap.before);
}

/// The places of NaN in a block of elements, as bits.
template <typename Real>
class NanPlaces {
public:
    static constexpr std::uint32_t LONGEST = 512;

    NanPlaces(const Real* elements, std::uint32_t count)
    {
        std::array<bool, LONGEST> marks;
        MarkNans(elements, marks.data(), count);
        PackBits(marks.data(), BitPosition(reinterpret_cast<std::uint8_t*>(words.data()), 0), count);
    }

    /// Calls visit(place) for each of them, in order.
    template <typename Visit>
    void ForEach(Visit&& visit) const
    {
        for (std::uint32_t i = 0; i < words.size(); ++i) {
            for (std::uint64_t word = words[i]; word != 0; word &= word - 1) {
                visit(i * WORD_BITS + static_cast<std::uint32_t>(std::countr_zero(word)));
            }
        }
    }

private:
    static constexpr std::uint32_t WORD_BITS = 64;
    std::array<std::uint64_t, LONGEST / WORD_BITS> words = {};
};

/// Copies block by block and then mends what was NaN there, since to look at each element alone would mean a
/// misprediction or two for each gap.
template <typename Real>
void InterpolateArray(const Real* from, Real* to, std::uint32_t count)
{
    for (std::uint32_t done = 0; done < count;) {
        const std::uint32_t first = done;
        const std::uint32_t length = std::min(count - first, NanPlaces<Real>::LONGEST);
        const NanPlaces<Real> missing(from + first, length);
        std::copy_n(from + first, length, to + first);
        std::uint32_t filled = 0;
        missing.ForEach([&](std::uint32_t place) {
            const std::uint32_t head = first + place;
            if (head < filled) {
                return;
            }
            std::uint32_t tail = head + 1;
            while (tail < count && from[tail] != from[tail]) {
                ++tail;
            }
            Real* target = to + head;
            FillGap(Gap<Real>{from[std::max(head, 1U) - 1], from[std::min(tail, count - 1)], tail - head}, target,
                OnTheLine<Real>);
            filled = tail;
        });
        done = std::max(first + length, filled); // a gap may go on beyond its block
    }
}

} // namespace

template <ContainerID CID>
std::string Interpolate<CID>::GetName() const
{
    return "Interpolate";
}

template <ContainerID CID>
SeriesAttr Interpolate<CID>::GetDstAttr(const Cursor& src) const
{
    const SeriesAttr attr = src->GetAttr();
    return WithType(attr, attr.typeId == TESSERA_FLOAT ? TESSERA_FLOAT : TESSERA_DOUBLE);
}

template <ContainerID CID>
bool Interpolate<CID>::CheckParams(const Cursor& src, const Cursor& dst) const
{
    const MERVO_TESSERA_TYPEID from = src->GetAttr().typeId;
    const MERVO_TESSERA_TYPEID to = dst->GetAttr().typeId;
    const bool isServed = from > TESSERA_BOOL && from <= TESSERA_DOUBLE;
    const bool fits = to == TESSERA_DOUBLE || (to == TESSERA_FLOAT && from == TESSERA_FLOAT);
    const std::uint32_t length = src->Length();
    return isServed && fits && length == dst->Length() && length != 0;
}

template <ContainerID CID>
template <typename T>
ErrorCode Interpolate<CID>::OnExecuteSIMD(const Cursor& src, const Cursor& dst) const
{
    if constexpr (std::is_floating_point_v<T>) {
        if (dst->GetAttr().typeId == TYPE_ID_OF<T>) {
            InterpolateArray(CursorAs<CONTAINER_ARRAY, T>(src).mHead, CursorAs<CONTAINER_ARRAY, T>(dst).mHead,
                std::min(src->Length(), dst->Length()));
            return ERROR_NONE;
        }
    }
    return ERROR_GENERAL;
}

template <ContainerID CID>
template <typename T>
ErrorCode Interpolate<CID>::OnExecute(const Cursor& src, const Cursor& dst) const
{
    if constexpr (std::is_floating_point_v<T>) {
        if (dst->GetAttr().typeId != TYPE_ID_OF<T>) {
            return ERROR_GENERAL;
        }
        CopyAndFillGaps<T>(src, dst, OnTheLine<T>);
        return ERROR_NONE;
    } else if constexpr (Arithmetic<T> && !std::is_same_v<T, bool>) {
        return TypeCastBase<CONTAINER_ARRAY>(TESSERA_DOUBLE).ProcessSeries(src, dst, true).code;
    } else {
        LogError("Interpolate does not support this Type");
        return ERROR_GENERAL;
    }
}

template class Interpolate<CONTAINER_ARRAY>;
template const UnaryTable<1> Unary<Interpolate<CONTAINER_ARRAY>, MutableArgs::SOURCE>::transformTable;

} // namespace MERVO::Tessera::Func
