#include <array>
#include <climits>
#include <cstdlib>

#include "tessera/core/data_frame_ref.h"

namespace MERVO::Tessera {

bool DataFrameRef::PathCheck(std::string& path)
{
    constexpr std::size_t LONGEST_PATH = 4096;
    static_assert(LONGEST_PATH >= PATH_MAX);
    std::array<char, LONGEST_PATH> resolved;
    const bool isPath = path.size() <= LONGEST_PATH && path.find('\0') == std::string::npos;
    if (!isPath || ::realpath(path.c_str(), resolved.data()) == nullptr) {
        return false;
    }
    path = resolved.data();
    return true;
}

} // namespace MERVO::Tessera
