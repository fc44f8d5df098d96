#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace MERVO::Tessera {

/// The content of a line: without the CR and LF bytes at its end. A line without content has no field.
std::string_view LineContent(std::string_view line) noexcept;

/// Takes lines off the front of a text. A line ends in front of an LF, or with the text.
class LineWalk {
public:
    explicit LineWalk(std::string_view lines) : rest(lines) {}

    /// Gives the content of the next line; false behind the last one.
    bool Next(std::string_view& content) noexcept;
    /// The number of the line that Next gave last, counted from 1.
    std::size_t LineNumber() const { return number; }
    /// What Next has not passed yet.
    std::string_view Rest() const { return rest; }

private:
    std::string_view rest;
    std::size_t number = 0;
};

/// Calls visit(field) for each field of a line's content; returns their number. The separator has at least one byte.
template <typename Visit>
std::size_t ForEachField(std::string_view content, std::string_view separator, Visit&& visit)
{
    if (content.empty()) {
        return 0;
    }
    std::size_t count = 1;
    for (;; ++count) {
        const std::size_t found = content.find(separator);
        visit(content.substr(0, found));
        if (found == std::string_view::npos) {
            return count;
        }
        content.remove_prefix(found + separator.size());
    }
}

std::size_t CountFields(std::string_view content, std::string_view separator) noexcept;

/// Counts the lines with content of a text that grows piece by piece, while each piece is still in cache.
class LineCounter {
public:
    /// Takes the text as far as it has come. It may have moved, but begins with what was there.
    void Advance(std::string_view text) noexcept;
    /// The count, once the text is complete.
    std::size_t Finish(std::string_view text) noexcept;

private:
    std::size_t passed = 0;
    std::size_t count = 0;
};

/// Fields of one column in consecutive rows. From each field's begin FIELD_GUARD bytes can be read, however long it is.
class FieldColumn {
public:
    using Position = std::size_t;
    static constexpr std::size_t FIELD_GUARD = 16;

    /// A field begins `gap` bytes behind its position, and ends at the next position. Those of two rows are `rowStride`
    /// apart. All of them count from `textBase`.
    FieldColumn(const char* textBase, const Position* firstRow, std::size_t rowStride, std::size_t gap)
        : base(textBase), positions(firstRow), stride(rowStride), gapSize(gap)
    {
    }

    std::string_view operator[](std::size_t row) const
    {
        const Position* const place = positions + row * stride;
        const Position begin = place[0] + gapSize;
        return {base + begin, place[1] - begin};
    }

private:
    const char* base;
    const Position* positions;
    std::size_t stride;
    std::size_t gapSize;
};

/// Splits lines into rows of a fixed number of fields, a block of rows at a time.
class RowSplitter {
public:
    /// The LFs that must stand behind the text. They end its last line, and allow to look at many bytes at once.
    static constexpr std::size_t GUARD = 64;

    /// How much a block has at most, but for one line that has more.
    struct BlockSize {
        std::size_t positions = 16 * 1024; ///< one for each field and each line
        std::size_t bytes = 128 * 1024;    ///< of text; both together stay in the second cache
    };

    /**
     * Working set: the positions of a block.
     * @param lines          stands in front of the first line to split. Its text is guarded.
     * @param fieldSeparator must outlive the splitter.
     * @param columns        the fields that each line should have, 1 or more.
     */
    RowSplitter(LineWalk lines, std::string_view fieldSeparator, std::size_t columns, BlockSize blockSize);

    /// Splits the next rows; false at the end, and for a line of another number of fields.
    bool Next();

    /// Of the block that Next gave; 1 or more.
    std::size_t RowCount() const { return rows; }
    FieldColumn Column(std::size_t column) const { return {base, &positions[column], rowStride, separator.size()}; }

    /// The line because of which Next gave false; number 0 at the end.
    struct Misfit {
        std::size_t lineNumber = 0;
        std::size_t fieldCount = 0;
    };
    const Misfit& GetMisfit() const { return misfit; }

private:
    using Position = FieldColumn::Position;

    void SplitByByte();
    void SplitBySeparator();
    Position* EndLine(Position* place, Position nextLine);
    void NoteMisfit();

    std::string_view rest;
    std::size_t lineNumber;
    std::string_view separator;
    std::size_t columnCount;
    std::size_t rowStride;
    std::size_t rowLimit;
    std::size_t byteLimit;
    const char* base = nullptr;
    std::size_t rows = 0;
    Misfit misfit;
    /// For each row: where a separator in front of its first field would begin, and the end of each field, from `base`.
    std::vector<Position> positions;
    Position* openRow = nullptr;
};

} // namespace MERVO::Tessera
