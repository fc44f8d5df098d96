#pragma once

#include <cstddef>
#include <string>

#include "tessera/operations/file_descriptor.h"
#include "tessera/operations/quiet_signals.h"

namespace MERVO::Tessera {

/**
 * Writes a file so that it is there as a whole or not at all.
 *
 * What goes to a regular file, or to a new one, is written beside it and put in its place at the end, with the owner
 * and the permissions of the one before. A link stays a link. Anything else, a device or a pipe, is written straight.
 */
class FileReplacement {
public:
    FileReplacement() = default;
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;
    /// Leaves what was there before, unless Commit has replaced it.
    ~FileReplacement();

    /// False, with an error in the log, when the system refuses; so are the next two.
    [[nodiscard]] bool Open(const std::string& path);
    [[nodiscard]] bool Write(const char* data, std::size_t count);
    [[nodiscard]] bool Commit();

private:
    bool OpenBeside();
    void KeepAttributes();
    bool Fail(const char* what, int error) const;

    QuietSignals quiet;
    FileDescriptor file;
    FileDescriptor previous; ///< what is to be replaced, if there is something
    std::string target;
    std::string temporary; ///< empty where the target itself is written
    bool isMade = false;   ///< whether the target is an empty file of ours until Commit
};

} // namespace MERVO::Tessera
