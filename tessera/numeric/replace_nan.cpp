#include "tessera/numeric/replace_nan.h"

#include "tessera/functors/cell_blocks.h"
#include "tessera/functors/cell_conversion.h"
#include "tessera/functors/copy_series.h"

namespace MERVO::Tessera::Func {
namespace {

/// Value types whose text is parsed as a number.
template <typename T>
inline constexpr bool IS_PARSED = Arithmetic<T> && !std::is_same_v<T, bool>;

template <typename Real>
void ReplaceEach(const Real* from, Real* to, std::uint32_t count, Real value)
{
    for (std::uint32_t i = 0; i < count; ++i) {
        to[i] = from[i] == from[i] ? from[i] : value;
    }
}

ErrorCode Copy(const Cursor& src, const Cursor& dst)
{
    return CopySeries<CONTAINER_ARRAY>().ProcessSeries(src, dst, true).code;
}

/// The type whose kernel serves T: in all integers nothing is missing, so that only their parser counts.
template <typename T>
using ServedAs = std::conditional_t<std::is_floating_point_v<T>, T,
    std::conditional_t<std::is_signed_v<T>, std::int64_t, std::uint64_t>>;

/// Parses the replacement, which must do even where nothing can be missing, and copies.
template <typename T>
ErrorCode ParseAndReplace(const std::string& text, const Cursor& src, const Cursor& dst)
{
    using Number = std::conditional_t<std::is_floating_point_v<T>, double, T>;
    Number number{};
    if (FromText(text, number) != ERROR_NONE) {
        return TellRefusedText<Number>(text);
    }
    if constexpr (std::is_floating_point_v<T>) {
        const auto value = static_cast<T>(number);
        ForEachBlock(src, dst, true, [value](const void* from, void* to, std::uint32_t count) {
            ReplaceEach(static_cast<const T*>(from), static_cast<T*>(to), count, value);
        });
        return ERROR_NONE;
    } else {
        return Copy(src, dst);
    }
}

template <typename T>
bool IsOfType(const Cursor& cursor)
{
    return cursor->GetAttr().typeId == TYPE_ID_OF<T>;
}

} // namespace

template <ContainerID CID>
std::string ReplaceNanBase<CID>::GetName() const
{
    return "ReplaceNan";
}

template <ContainerID CID>
SeriesAttr ReplaceNanBase<CID>::GetDstAttr(const Cursor& src) const
{
    return src->GetAttr();
}

template <ContainerID CID>
bool ReplaceNanBase<CID>::CheckParams(const Cursor& src, const Cursor& dst) const
{
    return src->Length() == dst->Length();
}

template <ContainerID CID>
template <typename T>
ErrorCode ReplaceNanBase<CID>::OnExecuteSIMD(const Cursor& src, const Cursor& dst) const
{
    if constexpr (IS_PARSED<T>) {
        return IsOfType<T>(src) ? ParseAndReplace<ServedAs<T>>(replacement, src, dst) : ERROR_GENERAL;
    } else if constexpr (std::is_same_v<T, std::string> || std::is_same_v<T, DateTime>) {
        const bool hasBlocks = !IsOfType<T>(src) ||
            (CursorAs<CONTAINER_ARRAY, T>(src).mHead != nullptr && CursorAs<CONTAINER_ARRAY, T>(dst).mHead != nullptr);
        if (!hasBlocks) {
            LogError("nothing in lhs or dst");
            return ERROR_EMPTY_CURSOR;
        }
    }
    return ERROR_GENERAL;
}

template <ContainerID CID>
template <typename T>
ErrorCode ReplaceNanBase<CID>::OnExecute(const Cursor& src, const Cursor& dst) const
{
    if (!IsOfType<T>(src)) {
        return ERROR_GENERAL;
    }
    if constexpr (IS_PARSED<T>) {
        return ParseAndReplace<ServedAs<T>>(replacement, src, dst);
    } else if constexpr (std::is_same_v<T, DateTime>) {
        const ErrorCode code = DateTime().StringToTime(replacement);
        return code == ERROR_NONE ? Copy(src, dst) : code;
    } else {
        return Copy(src, dst);
    }
}

template class ReplaceNanBase<CONTAINER_ARRAY>;
template const UnaryTable<1> Unary<ReplaceNanBase<CONTAINER_ARRAY>, MutableArgs::DESTINATION>::transformTable;

} // namespace MERVO::Tessera::Func
