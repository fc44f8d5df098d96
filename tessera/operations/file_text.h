#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "tessera/core/block.h"
#include "tessera/core/error.h"
#include "tessera/operations/file_descriptor.h"

namespace MERVO::Tessera {

/// A regular file or a pipe, read whole into memory, piece by piece.
class FileText {
public:
    /// Opens the file and makes room for it. Once it is complete, guardSize LFs stand behind its bytes, 1 or more.
    /// @return 0, or 2: it can't be read; 3: no memory. The log tells why.
    [[nodiscard]] ErrorCode Open(const std::string& path, std::size_t guardSize);
    /// Reads the next piece; what there was may move. `isComplete` tells that nothing was left. Returns as Open.
    [[nodiscard]] ErrorCode ReadPiece(bool& isComplete);

    /// What was read until now.
    std::string_view View() const { return {bytes.get(), size}; }

private:
    ErrorCode Fail(ErrorCode code, const char* what, int error) const;
    bool Reserve(std::size_t wanted);

    std::string name;
    FileDescriptor file;
    Block<char> bytes;
    std::size_t size = 0;
    std::size_t capacity = 0;
    std::size_t guard = 0; ///< behind the capacity
};

} // namespace MERVO::Tessera
