#define _FILE_OFFSET_BITS 64 // before any header: 32-bit systems would not open files of 2 GiB and more

#include "tessera/operations/file_descriptor.h"

#include <fcntl.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace MERVO::Tessera {

FileDescriptor::FileDescriptor(const std::string& path, int flags, unsigned int permissions)
{
    if (path.find('\0') != std::string::npos) { // else another file would be opened
        errno = EINVAL;
        return;
    }
    number = Uninterrupted([&] { return ::open(path.c_str(), flags | O_CLOEXEC | O_NOCTTY, permissions); });
}

FileDescriptor::FileDescriptor(FileDescriptor&& other) noexcept : number(std::exchange(other.number, -1)) {}

FileDescriptor& FileDescriptor::operator=(FileDescriptor&& other) noexcept
{
    std::swap(number, other.number);
    return *this;
}

bool FileDescriptor::Close()
{
    const int closing = std::exchange(number, -1);
    return closing < 0 || ::close(closing) == 0;
}

std::string ReasonOf(int error) { return std::generic_category().message(error); }

} // namespace MERVO::Tessera
