#include "tessera/operations/csv_lines.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <limits>

namespace MERVO::Tessera {
namespace {

/// Has a bit for each of as many bytes.
using Mask = std::size_t;
constexpr std::size_t MASK_BYTES = std::numeric_limits<Mask>::digits;
static_assert(MASK_BYTES <= RowSplitter::GUARD);

constexpr std::size_t BITS = 8;
constexpr auto BIT_OF_BYTE = [] {
    std::array<std::uint8_t, MASK_BYTES> bits = {};
    for (std::size_t i = 0; i < MASK_BYTES; ++i) {
        bits[i] = static_cast<std::uint8_t>(1U << (i % BITS));
    }
    return bits;
}();

/// Marks separators and line feeds. The first loop is one for vectors; the second sums the bits of 8 bytes in a byte.
Mask MarkEnds(const char* text, char separator)
{
    std::array<std::uint8_t, MASK_BYTES> bits;
    for (std::size_t i = 0; i < MASK_BYTES; ++i) {
        const auto isEnd = static_cast<std::uint8_t>((text[i] == separator) | (text[i] == '\n'));
        bits[i] = static_cast<std::uint8_t>(-isEnd & BIT_OF_BYTE[i]);
    }
    Mask mask = 0;
    for (std::size_t i = 0; i < MASK_BYTES; i += BITS) {
        std::uint64_t eight = 0;
        std::memcpy(&eight, &bits[i], sizeof(eight));
        mask |= static_cast<Mask>((eight * 0x0101010101010101) >> 56) << i;
    }
    return mask;
}

/// Tells whether the line that ends in front of `position` has content; only CRs behind it are looked at.
bool HasContent(const char* text, std::size_t position)
{
    while (position != 0 && text[position - 1] == '\r') {
        --position;
    }
    return position != 0 && text[position - 1] != '\n';
}

/// Line feeds, and those that may end an empty line: behind another, or a CR.
struct LineEnds {
    std::size_t count = 0;
    std::size_t suspects = 0;
};

/// Sums in bytes, of which many fit in a register; `text` has a byte in front.
LineEnds CountLineEnds(const char* text, std::size_t size)
{
    constexpr std::size_t BYTE_SUM_HOLDS = 128;
    LineEnds total;
    while (size != 0) {
        const std::size_t stretch = std::min(size, BYTE_SUM_HOLDS);
        std::uint8_t ends = 0;
        std::uint8_t suspects = 0;
        for (std::size_t i = 0; i < stretch; ++i) {
            const char before = *(text + i - 1);
            const bool isEnd = text[i] == '\n';
            const bool isBehindEnd = (before == '\n') | (before == '\r');
            ends = static_cast<std::uint8_t>(ends + isEnd);
            suspects = static_cast<std::uint8_t>(suspects + (isEnd & isBehindEnd));
        }
        total.count += ends;
        total.suspects += suspects;
        text += stretch;
        size -= stretch;
    }
    return total;
}

std::size_t CountLinesWithContent(const char* text, std::size_t from, std::size_t to)
{
    std::size_t count = 0;
    while (from != to) {
        const void* const found = std::memchr(text + from, '\n', to - from);
        if (found == nullptr) {
            break;
        }
        const auto position = static_cast<std::size_t>(static_cast<const char*>(found) - text);
        count += HasContent(text, position) ? 1 : 0;
        from = position + 1;
    }
    return count;
}

} // namespace

std::string_view LineContent(std::string_view line) noexcept
{
    std::size_t size = line.size();
    while (size != 0 && (line[size - 1] == '\r' || line[size - 1] == '\n')) {
        --size;
    }
    return line.substr(0, size);
}

bool LineWalk::Next(std::string_view& content) noexcept
{
    if (rest.empty()) {
        return false;
    }
    const std::size_t size = std::min(rest.find('\n'), rest.size());
    content = LineContent(rest.substr(0, size));
    rest.remove_prefix(std::min(size + 1, rest.size()));
    ++number;
    return true;
}

std::size_t CountFields(std::string_view content, std::string_view separator) noexcept
{
    return ForEachField(content, separator, [](std::string_view) {});
}

void LineCounter::Advance(std::string_view text) noexcept
{
    constexpr std::size_t STRETCH = 4096;
    while (passed != text.size()) {
        const std::size_t to = passed == 0 ? 1 : std::min(passed + STRETCH, text.size());
        const LineEnds ends = passed == 0 ? LineEnds{0, 1} : CountLineEnds(text.data() + passed, to - passed);
        count += ends.suspects == 0 ? ends.count : CountLinesWithContent(text.data(), passed, to);
        passed = to;
    }
}

std::size_t LineCounter::Finish(std::string_view text) noexcept
{
    Advance(text);
    return count + (HasContent(text.data(), text.size()) ? 1 : 0);
}

RowSplitter::RowSplitter(LineWalk lines, std::string_view fieldSeparator, std::size_t columns, BlockSize blockSize)
    : rest(lines.Rest()), lineNumber(lines.LineNumber()), separator(fieldSeparator), columnCount(columns),
      rowStride(columns + 1), rowLimit(std::max<std::size_t>(blockSize.positions / rowStride, 1)),
      byteLimit(blockSize.bytes), positions(rowLimit * rowStride + 2 + MASK_BYTES)
{
}

bool RowSplitter::Next()
{
    rows = 0;
    base = rest.data();
    openRow = positions.data();
    openRow[0] = 0 - separator.size();
    const bool isByte = separator.size() == 1 && separator.front() != '\n' && separator.front() != '\r';
    isByte ? SplitByByte() : SplitBySeparator();
    rest.remove_prefix(std::min(openRow[0] + separator.size(), rest.size()));
    return rows != 0 && misfit.lineNumber == 0;
}

void RowSplitter::SplitByByte()
{
    Position* place = openRow + 1;
    for (Position at = 0; at <= rest.size(); at += MASK_BYTES) {
        for (Mask mask = MarkEnds(base + at, separator.front()); mask != 0; mask &= mask - 1) {
            const Position found = at + static_cast<Position>(std::countr_zero(mask));
            *place++ = found;
            if (base[found] == '\n') {
                while (place[-1] != place[-2] + 1 && base[place[-1] - 1] == '\r') {
                    --place[-1];
                }
                place = EndLine(place, found + 1);
                if (place == nullptr) {
                    return;
                }
            }
        }
        if (place > openRow + rowStride + 1) { // too long already, whatever follows
            NoteMisfit();
            return;
        }
    }
}

void RowSplitter::SplitBySeparator()
{
    LineWalk walk(rest);
    std::string_view content;
    Position* place = openRow + 1;
    while (place != nullptr && walk.Next(content)) {
        ForEachField(content, separator, [&](std::string_view field) {
            if (place <= openRow + rowStride) { // one field too many is enough to see
                *place++ = static_cast<Position>(field.data() - base) + field.size();
            }
        });
        place = EndLine(place, static_cast<Position>(walk.Rest().data() - base));
    }
}

/// Takes the line whose fields end at the positions up to `place` for a row, if it has content. Gives the place for the
/// next line's first end; null if the block is full, or the line is a misfit.
RowSplitter::Position* RowSplitter::EndLine(Position* place, Position nextLine)
{
    const auto fieldCount = static_cast<std::size_t>(place - openRow) - 1;
    const bool isEmpty = fieldCount == 0 || (fieldCount == 1 && openRow[1] == openRow[0] + separator.size());
    if (!isEmpty && fieldCount != columnCount) {
        NoteMisfit();
        return nullptr;
    }
    ++lineNumber;
    if (!isEmpty) {
        ++rows;
        openRow = place;
    }
    openRow[0] = nextLine - separator.size();
    const bool isFull = rows == rowLimit || (rows != 0 && nextLine >= byteLimit);
    return isFull ? nullptr : openRow + 1;
}

void RowSplitter::NoteMisfit()
{
    LineWalk walk(rest.substr(openRow[0] + separator.size()));
    std::string_view content;
    walk.Next(content);
    misfit = {lineNumber + 1, CountFields(content, separator)};
}

} // namespace MERVO::Tessera
