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

template <ContainerID CID, typename Rule>
ErrorCode CombineCells(const Cursor& lhs, const Cursor& rhs, const Cursor& dst, Rule rule)
{
    return IsAnyAdrift(lhs, rhs, dst) ? ErrorCode{ERROR_GENERAL}
                                      : Common::BroadcastHelper<CID, bool, bool>(lhs, rhs, dst, rule);
}

SeriesAttr OneBool(const Cursor& src) { return WithType(WithLength(src->GetAttr(), 1), TESSERA_BOOL); }

bool IsOneBool(const Cursor& src, const Cursor& dst) { return dst->Length() == 1 && IsBool(src) && IsBool(dst); }

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

ErrorCode StoreBool(const Cursor& dst, bool value)
{
    return SetValueToIterator<bool>(dst, value, 0) ? ERROR_NONE : ERROR_GENERAL;
}

} // namespace

SeriesAttr Logical::GetDstAttr(const Cursor& lhs, const Cursor& rhs) { return Compare::GetDstAttr(lhs, rhs); }

bool Logical::CheckParams(const Cursor& lhs, const Cursor& rhs, const Cursor& dst)
{
    return Compare::CheckParams(lhs, rhs, dst) && IsBool(lhs);
}

template <ContainerID CID>
std::string And<CID>::GetName() const
{
    return "And";
}

template <ContainerID CID>
SeriesAttr And<CID>::GetDstAttr(const Cursor& lhs, const Cursor& rhs) const
{
    return Logical::GetDstAttr(lhs, rhs);
}

template <ContainerID CID>
bool And<CID>::CheckParams(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const
{
    return Logical::CheckParams(lhs, rhs, dst);
}

template <ContainerID CID>
template <typename T>
ErrorCode And<CID>::OnExecuteSIMD(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const
{
    return std::is_same_v<T, bool> ? CombineArrays(AND, lhs, rhs, dst) : ErrorCode{ERROR_GENERAL};
}

template <ContainerID CID>
template <typename T>
ErrorCode And<CID>::OnExecute(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const
{
    if constexpr (std::is_same_v<T, bool>) {
        return CombineCells<CID>(lhs, rhs, dst, [](bool left, bool right) { return left && right; });
    } else {
        return ERROR_GENERAL;
    }
}

template <ContainerID CID>
std::string Or<CID>::GetName() const
{
    return "Or";
}

template <ContainerID CID>
SeriesAttr Or<CID>::GetDstAttr(const Cursor& lhs, const Cursor& rhs) const
{
    return Logical::GetDstAttr(lhs, rhs);
}

template <ContainerID CID>
bool Or<CID>::CheckParams(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const
{
    return Logical::CheckParams(lhs, rhs, dst);
}

template <ContainerID CID>
template <typename T>
ErrorCode Or<CID>::OnExecuteSIMD(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const
{
    return std::is_same_v<T, bool> ? CombineArrays(OR, lhs, rhs, dst) : ErrorCode{ERROR_GENERAL};
}

template <ContainerID CID>
template <typename T>
ErrorCode Or<CID>::OnExecute(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const
{
    if constexpr (std::is_same_v<T, bool>) {
        return CombineCells<CID>(lhs, rhs, dst, [](bool left, bool right) { return left || right; });
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
        return CombineCells<CID>(src, src, dst, [](bool value, bool) { return !value; });
    } else {
        return ERROR_GENERAL;
    }
}

template <ContainerID CID>
std::string Any<CID>::GetName() const
{
    return "Any";
}

template <ContainerID CID>
SeriesAttr Any<CID>::GetDstAttr(const Cursor& src) const
{
    return OneBool(src);
}

template <ContainerID CID>
bool Any<CID>::CheckParams(const Cursor& src, const Cursor& dst) const
{
    return IsOneBool(src, dst);
}

template <ContainerID CID>
template <typename T>
ErrorCode Any<CID>::OnExecute(const Cursor& src, const Cursor& dst) const
{
    return std::is_same_v<T, bool> ? StoreBool(dst, Contains(src, true)) : ErrorCode{ERROR_GENERAL};
}

template <ContainerID CID>
std::string All<CID>::GetName() const
{
    return "All";
}

template <ContainerID CID>
SeriesAttr All<CID>::GetDstAttr(const Cursor& src) const
{
    return OneBool(src);
}

template <ContainerID CID>
bool All<CID>::CheckParams(const Cursor& src, const Cursor& dst) const
{
    return IsOneBool(src, dst);
}

template <ContainerID CID>
template <typename T>
ErrorCode All<CID>::OnExecute(const Cursor& src, const Cursor& dst) const
{
    return std::is_same_v<T, bool> ? StoreBool(dst, !Contains(src, false)) : ErrorCode{ERROR_GENERAL};
}

template class And<CONTAINER_ARRAY>;
template class Binary<And<CONTAINER_ARRAY>, MutableArgs::SOURCE>;
template class Or<CONTAINER_ARRAY>;
template class Binary<Or<CONTAINER_ARRAY>, MutableArgs::SOURCE>;
template class Not<CONTAINER_ARRAY>;
template class Unary<Not<CONTAINER_ARRAY>, MutableArgs::SOURCE>;
template class Any<CONTAINER_ARRAY>;
template class Unary<Any<CONTAINER_ARRAY>, MutableArgs::SOURCE>;
template class All<CONTAINER_ARRAY>;
template class Unary<All<CONTAINER_ARRAY>, MutableArgs::SOURCE>;

} // namespace MERVO::Tessera::Func
