#define _FILE_OFFSET_BITS 64 // before any header: 32-bit systems would not open files of 2 GiB and more

#include "tessera/operations/file_replacement.h"

#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "tessera/platform/logger.h"

namespace MERVO::Tessera {
namespace {

constexpr mode_t NEW_FILE_PERMISSIONS = 0666; // from which the process's mask takes
constexpr mode_t PERMISSIONS = 0777;
constexpr mode_t SPECIAL_PERMISSIONS = 07000;

bool IsLink(const std::string& path)
{
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

std::string FolderOf(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

} // namespace

FileReplacement::~FileReplacement()
{
    if (!temporary.empty()) {
        ::unlink(temporary.c_str());
    }
    if (isMade) {
        ::unlink(target.c_str());
    }
}

bool FileReplacement::Fail(const char* what, int error) const
{
    LogError("Failed to %s %s: %s", what, target.c_str(), ReasonOf(error).c_str());
    return false;
}

bool FileReplacement::Open(const std::string& path)
{
    target = path;
    bool isNew = false;
    if (path.empty()) {
        return Fail("open", ENOENT);
    }
    previous = FileDescriptor(path, O_WRONLY); // finds out whether it may be written, and leaves it as it is
    if (!previous.IsOpen() && errno == ENOENT) {
        if (!IsLink(path)) {
            return OpenBeside();
        }
        previous = FileDescriptor(path, O_WRONLY | O_CREAT, NEW_FILE_PERMISSIONS); // where the link leads
        isNew = true;
    }
    struct stat status {};
    if (!previous.IsOpen() || ::fstat(previous.Get(), &status) != 0) {
        return Fail("open", errno);
    }
    if (!S_ISREG(status.st_mode)) {
        file = std::move(previous);
        return true;
    }
    std::array<char, PATH_MAX> resolved;
    if (::realpath(path.c_str(), resolved.data()) == nullptr) {
        return Fail("open", errno);
    }
    target = resolved.data();
    isMade = isNew && status.st_size == 0;
    return OpenBeside();
}

bool FileReplacement::OpenBeside()
{
    constexpr unsigned int LAST_ATTEMPT = 1000;
    struct stat status {};
    status.st_mode = NEW_FILE_PERMISSIONS;
    if (previous.IsOpen() && ::fstat(previous.Get(), &status) != 0) {
        return Fail("open", errno);
    }
    const std::string stem = FolderOf(target) + ".tessera-" + std::to_string(::getpid()) + "-";
    for (unsigned int attempt = 0;; ++attempt) {
        std::string name = stem + std::to_string(attempt);
        file = FileDescriptor(name, O_WRONLY | O_CREAT | O_EXCL, status.st_mode & PERMISSIONS);
        if (file.IsOpen()) {
            temporary = std::move(name);
            return true;
        }
        if (errno != EEXIST || attempt == LAST_ATTEMPT) {
            return Fail("write beside", errno);
        }
    }
}

bool FileReplacement::Write(const char* data, std::size_t count)
{
    while (count != 0) {
        const auto written = Uninterrupted([&] { return ::write(file.Get(), data, count); });
        if (written < 0) {
            return Fail("write", errno);
        }
        data += written;
        count -= static_cast<std::size_t>(written);
    }
    return true;
}

/// Does what the system allows; where it refuses, the new file's permissions are no wider than the ones before.
void FileReplacement::KeepAttributes()
{
    struct stat status {};
    if (::fstat(previous.Get(), &status) != 0) {
        return;
    }
    const bool isOwnerKept = ::fchown(file.Get(), status.st_uid, status.st_gid) == 0;
    const mode_t kept = isOwnerKept ? PERMISSIONS | SPECIAL_PERMISSIONS : PERMISSIONS;
    static_cast<void>(::fchmod(file.Get(), status.st_mode & kept));
}

bool FileReplacement::Commit()
{
    if (previous.IsOpen()) {
        KeepAttributes();
    }
    if (!file.Close()) {
        return Fail("write", errno);
    }
    if (!temporary.empty() && std::rename(temporary.c_str(), target.c_str()) != 0) {
        return Fail("replace", errno);
    }
    temporary.clear();
    isMade = false;
    return true;
}

} // namespace MERVO::Tessera
