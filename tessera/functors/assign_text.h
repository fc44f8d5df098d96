#pragma once

#include <cstddef>
#include <memory>
#include <string>

namespace MERVO::Tessera::Func {

/// From the begin of a text that AssignText gets, so many characters can be read, however long it is.
inline constexpr std::size_t READ_AHEAD = 15;

/// Kept out of line, as it would be inlined whole where it is seldom needed.
[[gnu::noinline]] inline void AssignLongText(std::string& cell, const char* text, std::size_t length)
{
    cell.assign(text, length);
}

/// Assigns a text. Making one of constant length and cutting it are a few instructions inline, which takes half the
/// time of a call of assign.
inline void AssignText(std::string& cell, const char* text, std::size_t length)
{
    struct EmptyUnlessMade { // a cell whose successor could not be made must not stay destroyed
        ~EmptyUnlessMade()
        {
            if (!isMade) {
                std::construct_at(&cell);
            }
        }
        std::string& cell;
        bool isMade = false;
    };
    if (length > READ_AHEAD) {
        AssignLongText(cell, text, length);
        return;
    }
    std::destroy_at(&cell);
    EmptyUnlessMade guard{cell};
    std::construct_at(&cell, text, READ_AHEAD);
    guard.isMade = true;
    cell.erase(length);
}

/// Assigns a text that is a cell itself.
inline void AssignText(std::string& cell, const std::string& text)
{
    if (text.capacity() >= READ_AHEAD) {
        AssignText(cell, text.data(), text.size());
    } else {
        AssignLongText(cell, text.data(), text.size());
    }
}

} // namespace MERVO::Tessera::Func
