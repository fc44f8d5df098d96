#include "tessera/functors/logic.h"

#include "tessera/core/bit_scan.h"
#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"
#include "tessera/functors/broadcast.h"
#include "tessera/functors/comparison.h"
#include "tessera/functors/logic_bits.h"

namespace MERVO::Tessera::Func {
namespace {

bool IsBool(const Cursor& cursor) { return cursor->GetAttr().typeId == TESSERA_BOOL; }

BitPosition BitsOf(const Cursor& cursor) { return CursorAs<CONTAINER_ARRAY, bool>(cursor).mHead; }

/// True for an array cursor of cells that do not exist, as a host may have made it.
bool IsAdrift(const Cursor& cursor)
{
    return cursor->IsMemoryContiguous() && cursor->Length() != 0 && BitsOf(cursor).byte == nullptr;
}

bool IsAnyAdrift(const Cursor& lhs, const Cursor& rhs, const Cursor& dst)
{
    return IsAdrift(lhs) || IsAdrift(rhs) || IsAdrift(dst);
}

/// The forms of an operation on packed bits: with other bits, and with one.
struct BitOperation {
    void (*withBits)(BitPosition left, BitPosition right, BitPosition to, std::uint32_t count);
    void (*withOne)(BitPosition left, bool right, BitPosition to, std::uint32_t count);
};
constexpr BitOperation AND{&AndBits, &AndBits};
constexpr BitOperation OR{&OrBits, &OrBits};

ErrorCode CombineArrays(const BitOperation& operation, const Cursor& lhs, const Cursor& rhs, const Cursor& dst)
{
    const std::uint32_t count = dst->Length();
    const bool isLeftOne = lhs->Length() < 2;
    const bool isOneValue = isLeftOne || rhs->Length() < 2;
    if (lhs->Length() == 0 || rhs->Length() == 0) {
        return ERROR_NONE;
    }
    if (isOneValue && IsAdrift(dst) && !IsAdrift(lhs) && !IsAdrift(rhs)) {
        for (std::uint32_t i = 0; i < count; ++i) {
            LogError("mHead is invalid");
        }
        return ERROR_NONE;
    }
    if (IsAnyAdrift(lhs, rhs, dst)) {
        LogError("Input is nullptr while executing BoolCalcution.");
        return ERROR_GENERAL;
    }
    if (isOneValue) {
        const Cursor& one = isLeftOne ? lhs : rhs;
        operation.withOne(BitsOf(isLeftOne ? rhs : lhs), *BitsOf(one), BitsOf(dst), count);
    } else {
        operation.withBits(BitsOf(lhs), BitsOf(rhs), BitsOf(dst), count);
    }
    return ERROR_NONE;
}

template <typename Rule>
ErrorCode CombineCells(const Cursor& lhs, const Cursor& rhs, const Cursor& dst, Rule rule)
{
    return IsAnyAdrift(lhs, rhs, dst) ? ErrorCode{ERROR_GENERAL}
                                      : Common::BroadcastHelper<CONTAINER_ARRAY, bool, bool>(lhs, rhs, dst, rule);
}

bool Contains(const Cursor& src, bool wanted)
{
    if (src->IsMemoryContiguous()) {
        const auto& bits = CursorAs<CONTAINER_ARRAY, bool>(src);
        return FindBit(bits.mHead, bits.mTail, wanted) != bits.mTail;
    }
    const auto& nodes = CursorAs<CONTAINER_LIST, bool>(src);
    ListPosition<bool> place = nodes.mHead;
    while (place != nodes.mTail && *place != wanted) {
        ++place;
    }
    return place != nodes.mTail;
}

} // namespace

SeriesAttr Logical::GetDstAttr(const Cursor& lhs, const Cursor& rhs) { return Compare::GetDstAttr(lhs, rhs); }

bool Logical::CheckParams(const Cursor& lhs, const Cursor& rhs, const Cursor& dst)
{
    return Compare::CheckParams(lhs, rhs, dst) && IsBool(lhs);
}

template <typename F, bool IS_AND>
std::string BoolCombination<F, IS_AND>::GetName() const
{
    return IS_AND ? "And" : "Or";
}

template <typename F, bool IS_AND>
SeriesAttr BoolCombination<F, IS_AND>::GetDstAttr(const Cursor& lhs, const Cursor& rhs) const
{
    return Logical::GetDstAttr(lhs, rhs);
}

template <typename F, bool IS_AND>
bool BoolCombination<F, IS_AND>::CheckParams(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const
{
    return Logical::CheckParams(lhs, rhs, dst);
}

template <typename F, bool IS_AND>
template <typename T>
ErrorCode BoolCombination<F, IS_AND>::OnExecuteSIMD(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const
{
    return std::is_same_v<T, bool> ? CombineArrays(IS_AND ? AND : OR, lhs, rhs, dst) : ErrorCode{ERROR_GENERAL};
}

template <typename F, bool IS_AND>
template <typename T>
ErrorCode BoolCombination<F, IS_AND>::OnExecute(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const
{
    if constexpr (std::is_same_v<T, bool>) {
        return CombineCells(
            lhs, rhs, dst, [](bool left, bool right) { return IS_AND ? left && right : left || right; });
    } else {
        return ERROR_GENERAL;
    }
}

template <ContainerID CID>
std::string Not<CID>::GetName() const
{
    return "Not";
}

template <ContainerID CID>
SeriesAttr Not<CID>::GetDstAttr(const Cursor& src) const
{
    return WithType(src->GetAttr(), TESSERA_BOOL);
}

template <ContainerID CID>
bool Not<CID>::CheckParams(const Cursor& src, const Cursor& dst) const
{
    return IsBool(src) && IsBool(dst) && src->Length() == dst->Length();
}

template <ContainerID CID>
template <typename T>
ErrorCode Not<CID>::OnExecuteSIMD(const Cursor& src, const Cursor& dst) const
{
    if (!std::is_same_v<T, bool> || IsAdrift(src) || IsAdrift(dst)) {
        return ERROR_GENERAL;
    }
    InvertBits(BitsOf(src), BitsOf(dst), dst->Length());
    return ERROR_NONE;
}

template <ContainerID CID>
template <typename T>
ErrorCode Not<CID>::OnExecute(const Cursor& src, const Cursor& dst) const
{
    if constexpr (std::is_same_v<T, bool>) {
        return CombineCells(src, src, dst, [](bool value, bool) { return !value; });
    } else {
        return ERROR_GENERAL;
    }
}

template <typename F, bool DECISIVE>
std::string BoolFold<F, DECISIVE>::GetName() const
{
    return DECISIVE ? "Any" : "All";
}

template <typename F, bool DECISIVE>
SeriesAttr BoolFold<F, DECISIVE>::GetDstAttr(const Cursor& src) const
{
    return WithType(WithLength(src->GetAttr(), 1), TESSERA_BOOL);
}

template <typename F, bool DECISIVE>
bool BoolFold<F, DECISIVE>::CheckParams(const Cursor& src, const Cursor& dst) const
{
    return dst->Length() == 1 && IsBool(src) && IsBool(dst);
}

template <typename F, bool DECISIVE>
template <typename T>
ErrorCode BoolFold<F, DECISIVE>::OnExecute(const Cursor& src, const Cursor& dst) const
{
    if constexpr (std::is_same_v<T, bool>) {
        return SetValueToIterator<bool>(dst, Contains(src, DECISIVE) == DECISIVE, 0) ? ERROR_NONE : ERROR_GENERAL;
    } else {
        return ERROR_GENERAL;
    }
}

template class BoolCombination<And<CONTAINER_ARRAY>, true>;
template const BinaryTable<1> Binary<And<CONTAINER_ARRAY>, MutableArgs::SOURCE>::transformTable;
template class BoolCombination<Or<CONTAINER_ARRAY>, false>;
template const BinaryTable<1> Binary<Or<CONTAINER_ARRAY>, MutableArgs::SOURCE>::transformTable;
template class Not<CONTAINER_ARRAY>;
template const UnaryTable<1> Unary<Not<CONTAINER_ARRAY>, MutableArgs::SOURCE>::transformTable;
template class BoolFold<Any<CONTAINER_ARRAY>, true>;
template const UnaryTable<1> Unary<Any<CONTAINER_ARRAY>, MutableArgs::SOURCE>::transformTable;
template class BoolFold<All<CONTAINER_ARRAY>, false>;
template const UnaryTable<1> Unary<All<CONTAINER_ARRAY>, MutableArgs::SOURCE>::transformTable;

} // namespace MERVO::Tessera::Func
