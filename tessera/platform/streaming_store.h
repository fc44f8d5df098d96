#pragma once

#include <cstddef>

#include "tessera/platform/multiversion.h"

/// Stores that go past the caches, for results that are larger than these: a plain store reads the line first that it
/// alters, and drives another one out.
namespace MERVO::Tessera {

/// The bytes from which a result is streamed. Smaller ones are still in a cache that is shared, for whoever reads them.
inline constexpr std::size_t STREAMED_FROM = std::size_t{4} << 20;

#ifdef TESSERA_WIDE_VECTOR_BYTES
inline bool HasStreamingStores() { return HasWideVectors(); }
/// Copies bytes between places that don't overlap, lines of the cache past it. Other threads are sure to see them after
/// FinishStreaming.
void StreamBytes(std::byte* to, const std::byte* from, std::size_t count);
void FinishStreaming();
#else
constexpr bool HasStreamingStores() { return false; }
inline void StreamBytes(std::byte*, const std::byte*, std::size_t) {}
inline void FinishStreaming() {}
#endif

} // namespace MERVO::Tessera
