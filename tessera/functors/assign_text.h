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

[[gnu::noinline]] inline void MakeLongText(std::string* cell, const char* text, std::size_t length)
{
    std::construct_at(cell, text, length);
}

/// Constructs a text. Making one of constant length and cutting it are a few instructions inline, which takes half the
/// time of a call.
inline void MakeText(std::string* cell, const char* text, std::size_t length)
{
    if (length > READ_AHEAD) {
        MakeLongText(cell, text, length);
        return;
    }
    std::construct_at(cell, text, READ_AHEAD);
    cell->erase(length);
}

/// Constructs a text like one that is a cell itself.
inline void MakeText(std::string* cell, const std::string& text)
{
    if (text.capacity() >= READ_AHEAD) {
        MakeText(cell, text.data(), text.size());
    } else {
        MakeLongText(cell, text.data(), text.size());
    }
}

/// Assigns a text, if it is short by making it anew.
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
    MakeText(&cell, text, length);
    guard.isMade = true;
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
