#pragma once

#include <cstdint>
#include <span>

#include "tessera/core/block.h"
#include "tessera/functors/missing_cell.h"
#include "tessera/grouping/dense_keys.h"

namespace MERVO::Tessera {

/**
 * The rows of a table by key, those of one key in their order.
 *
 * As long as no key comes twice, its row is put down straight away; where one does, rows are counted first. Working
 * set: 4 bytes for each number that a key may be, and 4 per row where a key comes twice.
 */
class KeyedRows {
public:
    KeyedRows(const DenseKeys& keys, DenseKeys::Side side, std::uint32_t rowCount);

    /// False where memory was short; then there is nothing to be asked for.
    bool HasRoom() const { return places != nullptr; }
    /// Calls visit(rowsOf), where rowsOf(key) gives a key's rows; which of two forms it has is looked up but once.
    template <typename Visit>
    void WithRows(Visit visit) const
    {
        AreSingle() ? visit(SingleRows{places.get()}) : visit(CountedRows{places.get(), rows.get()});
    }
    /// Whether no key has two rows.
    bool AreSingle() const { return rows == nullptr; }
    /// The row of each key, or NO_ROW, where rows are single.
    const std::uint32_t* Singles() const { return places.get(); }

private:
    struct SingleRows {
        std::span<const std::uint32_t> operator()(std::uint32_t key) const
        {
            return {rows + key, rows[key] == Func::NO_ROW ? 0U : 1U};
        }

        const std::uint32_t* rows;
    };
    struct CountedRows {
        std::span<const std::uint32_t> operator()(std::uint32_t key) const
        {
            const std::uint32_t begin = key == 0 ? 0 : ends[key - 1];
            return {rows + begin, ends[key] - begin};
        }

        const std::uint32_t* ends;
        const std::uint32_t* rows;
    };

    bool PutSingly(const DenseKeys& keys, DenseKeys::Side side, std::uint32_t rowCount);
    void PutByCount(const DenseKeys& keys, DenseKeys::Side side, std::uint32_t rowCount);

    Block<std::uint32_t> places; ///< by key: its row; or else where its rows end
    Block<std::uint32_t> rows;
};

} // namespace MERVO::Tessera
