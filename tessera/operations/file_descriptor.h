#pragma once

#include <cerrno>
#include <string>

namespace MERVO::Tessera {

/// Owns an open file of the system.
class FileDescriptor {
public:
    FileDescriptor() = default;
    /// Opens as open(2) does, and goes on where a signal came between. Without success errno tells why.
    FileDescriptor(const std::string& path, int flags, unsigned int permissions = 0);
    FileDescriptor(FileDescriptor&& other) noexcept;
    FileDescriptor& operator=(FileDescriptor&& other) noexcept;
    ~FileDescriptor() { static_cast<void>(Close()); }

    bool IsOpen() const { return number >= 0; }
    int Get() const { return number; }
    /// False, with errno, if something written did not arrive after all.
    [[nodiscard]] bool Close();

private:
    int number = -1;
};

/// Repeats a call of the system until no signal comes between.
template <typename Call>
auto Uninterrupted(Call&& call)
{
    auto result = call();
    while (result < 0 && errno == EINTR) {
        result = call();
    }
    return result;
}

/// The system's words for an errno.
std::string ReasonOf(int error);

} // namespace MERVO::Tessera
