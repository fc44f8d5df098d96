#include "tessera/numeric/replace.h"

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>

#include "tessera/core/date_time.h"
#include "tessera/core/memory_room.h"
#include "tessera/functors/cast_kernels.h"
#include "tessera/functors/cell_blocks.h"
#include "tessera/functors/cell_conversion.h"
#include "tessera/functors/element_walk.h"
#include "tessera/platform/multiversion.h"

namespace MERVO::Tessera::Func {
namespace {

// ---- Kernels, on cells as CellKernel has them. A value that is a string stands for itself, though.

template <typename T>
bool IsOld(const T& element, const T& oldValue)
{
    if constexpr (std::is_floating_point_v<T>) {
        return std::abs(element - oldValue) < std::numeric_limits<T>::epsilon(); // false beside NaN and infinities
    } else {
        return element == oldValue;
    }
}

using ReplaceKernel = void (*)(
    const void* cells, void* results, std::uint32_t count, const void* oldValue, const void* newValue);

template <typename T>
[[gnu::always_inline]] inline void ReplaceEach(const T* from, T* to, std::uint32_t count, T sought, T substitute)
{
    for (std::uint32_t i = 0; i < count; ++i) {
        to[i] = IsOld(from[i], sought) ? substitute : from[i];
    }
}

template <typename T>
TESSERA_WIDE_VECTORS void ReplaceEachWide(const T* from, T* to, std::uint32_t count, T sought, T substitute)
{
    ReplaceEach(from, to, count, sought, substitute);
}

template <typename T>
void ReplaceNumbers(const void* cells, void* results, std::uint32_t count, const void* oldValue, const void* newValue)
{
    const auto* from = static_cast<const T*>(cells);
    auto* to = static_cast<T*>(results);
    const T sought = *static_cast<const T*>(oldValue);
    const T substitute = *static_cast<const T*>(newValue);
    HasWideVectors() ? ReplaceEachWide(from, to, count, sought, substitute)
                     : ReplaceEach(from, to, count, sought, substitute);
}

void ReplaceTexts(const void* cells, void* results, std::uint32_t count, const void* oldValue, const void* newValue)
{
    const auto* from = static_cast<const std::string* const*>(cells);
    const auto* to = static_cast<std::string* const*>(results);
    const auto& sought = *static_cast<const std::string*>(oldValue);
    const auto& substitute = *static_cast<const std::string*>(newValue);
    for (std::uint32_t i = 0; i < count; ++i) {
        *to[i] = IsOld(*from[i], sought) ? substitute : *from[i];
    }
}

/// Types whose equality is that of their bits share a kernel.
constexpr auto KERNELS = ForEachValueType([](auto number) -> ReplaceKernel {
    using T = ValueTypes::At<number()>;
    if constexpr (std::is_same_v<T, bool>) {
        return &ReplaceNumbers<std::uint8_t>;
    } else if constexpr (std::is_same_v<T, DateTime>) {
        return &ReplaceNumbers<std::uint32_t>;
    } else if constexpr (std::is_same_v<T, std::string>) {
        return &ReplaceTexts;
    } else if constexpr (std::is_integral_v<T>) {
        return &ReplaceNumbers<std::make_unsigned_t<T>>;
    } else if constexpr (std::is_floating_point_v<T>) {
        return &ReplaceNumbers<T>;
    } else {
        return nullptr;
    }
});

// ---- Arguments

/// A cast takes any text but the empty one for true; here it is the number in it that counts.
ErrorCode ParseBool(const void* from, void* to, std::uint32_t)
{
    std::uint64_t number = 0;
    const auto& text = *static_cast<const std::string*>(from);
    if (FromText(text, number) != ERROR_NONE) {
        return TellRefusedText<std::uint64_t>(text);
    }
    *static_cast<bool*>(to) = number != 0;
    return ERROR_NONE;
}

CastKernel ConversionFor(MERVO_TESSERA_TYPEID from, MERVO_TESSERA_TYPEID to)
{
    return from == TESSERA_STRING && to == TESSERA_BOOL ? &ParseBool : CastKernelFor(from, to);
}

/// An argument as a cell of a column, once it has been converted.
class ConvertedArgument {
public:
    [[nodiscard]] ErrorCode Convert(const ReplaceArgument& argument, MERVO_TESSERA_TYPEID type)
    {
        void* const room = type == TESSERA_STRING ? static_cast<void*>(&text)
            : type == TESSERA_DATETIME            ? static_cast<void*>(&time)
                                                  : number.data();
        cell = room;
        const CastKernel convert = ConversionFor(argument.type, type);
        const ErrorCode code = convert == nullptr ? ErrorCode{ERROR_GENERAL} : convert(argument.cell, room, 1);
        if (code != ERROR_NONE && (type == TESSERA_STRING || type == TESSERA_DATETIME)) {
            LogError("Error on transforming replace Num from %s to %s", GetTypeNameById(argument.type).c_str(),
                GetTypeNameById(type).c_str());
        } else if (type == TESSERA_DATETIME) {
            const auto stamp = static_cast<std::int32_t>(time.TimeStamp());
            std::memcpy(number.data(), &stamp, sizeof stamp);
            cell = number.data();
        }
        return code;
    }
    const void* Cell() const { return cell; }

private:
    alignas(std::uint64_t) std::array<std::byte, sizeof(std::uint64_t)> number = {};
    std::string text;
    DateTime time;
    const void* cell = nullptr;
};

bool IsNan(const void* cell, MERVO_TESSERA_TYPEID type)
{
    return (type == TESSERA_FLOAT && std::isnan(*static_cast<const float*>(cell))) ||
        (type == TESSERA_DOUBLE && std::isnan(*static_cast<const double*>(cell)));
}

/// Whether a text can stand for all that it is to replace. They are counted only where it is long for so many cells.
bool HasRoomForTexts(const Cursor& src, const void* oldValue, const void* newValue)
{
    const auto& sought = *static_cast<const std::string*>(oldValue);
    const auto& substitute = *static_cast<const std::string*>(newValue);
    if (HasRoomFor(src->Length(), substitute.size())) {
        return true;
    }
    std::uint64_t found = 0;
    ForEachElement<std::string>(src, [&](const std::string& text) { found += text == sought ? 1 : 0; });
    return HasRoomFor(found, substitute.size());
}

ErrorCode ReplaceCells(
    const Cursor& src, const Cursor& dst, const ReplaceArgument& oldArgument, const ReplaceArgument& newArgument)
{
    const MERVO_TESSERA_TYPEID type = src->GetAttr().typeId;
    const ReplaceKernel replace = KERNELS[static_cast<std::size_t>(type)];
    if (replace == nullptr || dst->GetAttr().typeId != type) {
        return ERROR_GENERAL;
    }
    ConvertedArgument oldValue;
    ErrorCode code = oldValue.Convert(oldArgument, type);
    if (code != ERROR_NONE) {
        return code;
    }
    if (IsNan(oldValue.Cell(), type)) {
        LogError("the data you intend to replace is Nan, please use functor ReplaceNan");
        return ERROR_BAD_VALUE;
    }
    ConvertedArgument newValue;
    code = newValue.Convert(newArgument, type);
    if (code != ERROR_NONE) {
        return code;
    }
    if (type == TESSERA_STRING && !HasRoomForTexts(src, oldValue.Cell(), newValue.Cell())) {
        return ERROR_OUT_OF_MEMORY;
    }
    ForEachBlock(src, dst, true, [&](const void* cells, void* results, std::uint32_t count) {
        replace(cells, results, count, oldValue.Cell(), newValue.Cell());
    });
    return ERROR_NONE;
}

} // namespace

template <ContainerID CID>
std::string ReplaceBase<CID>::GetName() const
{
    return "Replace";
}

template <ContainerID CID>
SeriesAttr ReplaceBase<CID>::GetDstAttr(const Cursor& src) const
{
    return src->GetAttr();
}

template <ContainerID CID>
bool ReplaceBase<CID>::CheckParams(const Cursor& src, const Cursor& dst) const
{
    return src->Length() == dst->Length() && src->GetAttr().typeId == dst->GetAttr().typeId;
}

template <ContainerID CID>
template <typename T>
ErrorCode ReplaceBase<CID>::OnExecute(const Cursor& src, const Cursor& dst) const
{
    return ReplaceCells(src, dst, oldArgument, newArgument);
}

template class ReplaceBase<CONTAINER_ARRAY>;
template const UnaryTable<1> Unary<ReplaceBase<CONTAINER_ARRAY>, MutableArgs::DESTINATION>::transformTable;

} // namespace MERVO::Tessera::Func
