#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tessera/core/data_frame.h"
#include "tessera/operations/csv_lines.h"

namespace MERVO::Tessera {

/**
 * Columns on their way into a table, filled from texts.
 *
 * A text that can't be cast closes its column and those behind; that is told when all are filled.
 */
class CsvColumns {
public:
    /**
     * Builds the columns, one for each type.
     * @param names what they are called; without any "col_0", "col_1" and so on.
     * @return 0, or 3: no memory, or more rows than a column can have. The log tells.
     */
    [[nodiscard]] ErrorCode Build(
        const std::vector<std::string_view>& names, const DataFrame::Types& types, std::size_t rows);

    /// Columns in front of the first one that is closed.
    std::size_t OpenCount() const { return openCount; }
    /// Fills `count` cells of an open column, from row `first` on.
    void Fill(std::size_t column, std::size_t first, const FieldColumn& fields, std::size_t count);

    /// Gives the open columns to a table, in place of its own, and the error that closed the others.
    /// @return what the table has stored then; or 3: no memory, and the table keeps its columns.
    [[nodiscard]] ErrorCode MoveTo(DataFrame& table);

private:
    struct Target {
        SeriesPtr series;
        Cursor cursor;
        MERVO_TESSERA_TYPEID type;
    };

    Error TellRefusal() const;

    std::vector<Target> targets;
    std::size_t openCount = 0;
    std::string refused;
};

} // namespace MERVO::Tessera
