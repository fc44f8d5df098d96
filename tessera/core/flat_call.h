#pragma once

#include <cstdint>
#include <functional>

#include "tessera/core/data_frame_ref.h"
#include "tessera/tessera.h"

namespace MERVO::Tessera {

/// Logs that a call ran out of memory or room, and gives its code.
ErrorCode TellNoMemory(const char* call) noexcept;
/// In a handler: throws on whatever is not want of memory or room. A host's functor may throw what it likes, and what
/// it throws through a class is the host's to catch.
void PassOnAllButNoMemory();
/// In a handler: gives the same code, which the table then holds; passes on what a host's functor threw.
ErrorCode KeepNoMemory(const DataFrameView& table);

/// Runs the body of a flat call and returns its code. Whatever it throws becomes code 3, for only want of memory or
/// room throws here. `call` is the caller's __func__, for the message.
template <typename Body>
std::int32_t Guarded(const char* call, Body&& body) noexcept
{
    try {
        return body();
    } catch (...) {
        return TellNoMemory(call);
    }
}

/// Logs that a flat call was handed a null or unfit handle, and gives its code.
std::int32_t RefuseHandle(const char* call) noexcept;

/// The road of a unary or binary flat call once it is guarded: test, pick, apply, report. Defined beside the apply
/// paths.
std::int32_t ApplyUnaryTo(
    const char* call, MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, const UnaryFactory& make);
std::int32_t ApplyBinaryTo(const char* call, MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* lhs,
    const MERVO_TSR_CONTEXT* rhs, const BinaryFactory& make);

/**
 * A whole unary flat call: dst receives what the functor that `make` gives makes of src.
 * @return what dst's table has stored afterwards; 33: a handle is null or holds neither or both; 3: no memory.
 */
template <typename Make>
std::int32_t ApplyUnary(
    const char* call, MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, const Make& make) noexcept
{
    return Guarded(call, [&] { return ApplyUnaryTo(call, dst, src, std::cref(make)); });
}

/// The same from two sources, which the functor gets in this order.
template <typename Make>
std::int32_t ApplyBinary(const char* call, MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* lhs,
    const MERVO_TSR_CONTEXT* rhs, const Make& make) noexcept
{
    return Guarded(call, [&] { return ApplyBinaryTo(call, dst, lhs, rhs, std::cref(make)); });
}

} // namespace MERVO::Tessera
