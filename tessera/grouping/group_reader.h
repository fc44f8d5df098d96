#pragma once

#include <cstdint>
#include <utility>

#include "tessera/core/data_frame.h"

namespace MERVO::Tessera {

/// A walk over the groups of G, Groups or another kind, which outlive it. Nothing keeps it from leaving them: it gives
/// empty tables there. Readers are compared by their group numbers alone.
template <typename G>
class GroupReader {
public:
    GroupReader(std::uint32_t groupNumber, const G& groupsToRead) : group(groupNumber), groups(groupsToRead) {}

    GroupReader& operator++() { return *this += 1; }
    GroupReader operator++(int)
    {
        const GroupReader before(*this);
        ++*this;
        return before;
    }
    GroupReader& operator--() { return *this -= 1; }
    GroupReader operator--(int)
    {
        const GroupReader before(*this);
        --*this;
        return before;
    }
    GroupReader& operator+=(std::uint32_t count)
    {
        group += count;
        return *this;
    }
    GroupReader& operator-=(std::uint32_t count)
    {
        group -= count;
        return *this;
    }
    friend bool operator==(const GroupReader& left, const GroupReader& right) { return left.group == right.group; }

    /// Copies the group's rows.
    DataFrame GetGroup() const { return groups.CopyGroup(group); }
    /// Copies the group's rows of the key columns only.
    DataFrame GetLabel() const { return groups.CopyLabel(group); }
    /// Both, in this order.
    std::pair<DataFrame, DataFrame> operator*() const { return {GetGroup(), GetLabel()}; }

private:
    std::uint32_t group;
    const G& groups;
};

} // namespace MERVO::Tessera
