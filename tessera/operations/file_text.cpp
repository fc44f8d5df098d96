#define _FILE_OFFSET_BITS 64 // before any header: 32-bit systems could not tell the size of files of 2 GiB and more

#include "tessera/operations/file_text.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "tessera/core/memory_room.h"
#include "tessera/platform/logger.h"

namespace MERVO::Tessera {
namespace {

constexpr std::size_t PIECE_BYTES = 256 * 1024; // still in the second cache when it is looked at

} // namespace

ErrorCode FileText::Fail(ErrorCode code, const char* what, int error) const
{
    LogError("Failed to %s %s: %s", what, name.c_str(), ReasonOf(error).c_str());
    return code;
}

ErrorCode FileText::Open(const std::string& path, std::size_t guardSize)
{
    name = path;
    guard = guardSize;
    file = FileDescriptor(path, O_RDONLY);
    struct stat status {};
    if (!file.IsOpen() || ::fstat(file.Get(), &status) != 0) {
        return Fail(ERROR_BAD_KIND, "open", errno);
    }
    if (!S_ISREG(status.st_mode) && !S_ISFIFO(status.st_mode)) { // a device may have no end
        return Fail(ERROR_BAD_KIND, "read", S_ISDIR(status.st_mode) ? EISDIR : EINVAL);
    }
    const auto expected = static_cast<std::uint64_t>(status.st_size);
    if (expected > std::numeric_limits<std::size_t>::max() || !Reserve(static_cast<std::size_t>(expected))) {
        return Fail(ERROR_OUT_OF_MEMORY, "read", ENOMEM);
    }
    return ERROR_NONE;
}

bool FileText::Reserve(std::size_t wanted)
{
    const std::size_t room = wanted + guard;
    const bool hasRoom = room >= wanted && HasRoomFor(std::uint64_t{room} + size, 1); // a pipe may have no end
    Block<char> block = hasRoom ? MakeBlock<char>(room) : nullptr;
    if (block == nullptr) {
        return false;
    }
    std::copy_n(bytes.get(), size, block.get());
    bytes = std::move(block);
    capacity = wanted;
    return true;
}

ErrorCode FileText::ReadPiece(bool& isComplete)
{
    // The guard takes what a file has grown by, or shows that it has not.
    const bool isFull = size == capacity + guard;
    if (isFull && !Reserve(size + std::max(size / 2, PIECE_BYTES))) {
        return Fail(ERROR_OUT_OF_MEMORY, "read", ENOMEM);
    }
    const std::size_t room = std::min(capacity + guard - size, PIECE_BYTES);
    const auto count = Uninterrupted([&] { return ::read(file.Get(), bytes.get() + size, room); });
    if (count < 0) {
        return Fail(ERROR_BAD_KIND, "read", errno);
    }
    size += static_cast<std::size_t>(count);
    isComplete = count == 0;
    if (isComplete) {
        if (size > capacity && !Reserve(size)) {
            return Fail(ERROR_OUT_OF_MEMORY, "read", ENOMEM);
        }
        std::memset(bytes.get() + size, '\n', guard);
    }
    return ERROR_NONE;
}

} // namespace MERVO::Tessera
