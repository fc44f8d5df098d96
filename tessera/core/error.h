#pragma once

#include <cstdint>
#include <string>

namespace MERVO::Tessera {

/// The number by which every operation reports: 0 is success, the others are those of ErrorNumber.
using ErrorCode = std::int32_t;

enum ErrorNumber : ErrorCode {
    ERROR_NONE = 0,          ///< success; a table in this state is healthy
    ERROR_GENERAL = 1,       ///< an operation, conversion or kernel failed, or does not serve the value type
    ERROR_BAD_KIND = 2,      ///< bad kind of argument or state: container, separator, file, a table that is not empty
    ERROR_OUT_OF_MEMORY = 3, ///< no memory or no room for the result
    ERROR_OUT_OF_RANGE = 4,  ///< an index or range is out of limits
    ERROR_BAD_VALUE = 5,     ///< invalid parameter value, or a functor was handed no cursor
    ERROR_FAILED_TABLE = 6,  ///< names or a transposition were asked of a table that can't give them
    ERROR_EMPTY_TABLE = 7,   ///< a table without columns or rows where content is needed
    ERROR_EMPTY_CURSOR = 12, ///< a functor found an empty source or destination
    ERROR_BAD_SHAPE = 15,    ///< a column could not be built, or loaded data do not fit their shape
    ERROR_NOT_BOOLEAN = 17,  ///< a boolean table was required
    ERROR_MIXED_CONTAINERS = 18,   ///< a functor asks for another container than the destination has
    ERROR_NO_BROADCAST = 19,       ///< two inputs cannot broadcast
    ERROR_WINDOW_SIZE = 20,        ///< a window used as destination differs in size
    ERROR_PARAMETERS_REFUSED = 21, ///< a functor refused its cursors, or had no working storage
    ERROR_MIXED_TYPES = 22,        ///< one value type is needed and the table mixes several
    ERROR_NULL_HANDLE = 33,        ///< a flat call received a null handle, or one that fails its check
    ERROR_LOAD_FAILED = 34,        ///< loading a typed buffer into a table failed
    ERROR_BAD_BUFFER = 36          ///< a typed read received a bad buffer
};

/// What a table, or one run of a functor, has to tell.
struct Error {
    ErrorCode code = ERROR_NONE;
    std::string message;
};

} // namespace MERVO::Tessera
