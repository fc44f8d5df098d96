#pragma once

#include "tessera/core/data_frame.h"

namespace MERVO::Tessera {

/**
 * The end of a column of tables. However deep tables are nested, they go without a deep stack: those far down wait
 * until the others are gone.
 */
class NestedRelease {
public:
    NestedRelease() = default;
    NestedRelease(const NestedRelease&) = delete;
    NestedRelease& operator=(const NestedRelease&) = delete;
    /// Comes when the cells are gone.
    ~NestedRelease();

    /// Comes before them: takes the tables out of cells that are too far down. Without memory for the list of those
    /// that wait they go at once, on the stack.
    template <typename Place>
    void Begin(Place head, Place tail) noexcept
    {
        hasBegun = true;
        if (IsFarDown()) {
            for (; head != tail && Postpone(*head); ++head) {
            }
        }
    }

private:
    static bool IsFarDown() noexcept;
    static bool Postpone(DataFrame& table) noexcept;

    bool hasBegun = false; ///< else the column was never whole
};

} // namespace MERVO::Tessera
