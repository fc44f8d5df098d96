#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <vector>

namespace MERVO::Tessera {

/// Columns of a table as the argument of a call: their positions or their names, in a list written out or a vector. It
/// is a view, which lives no longer than that call.
class ColumnList {
public:
    ColumnList() = default;
    ColumnList(std::initializer_list<std::uint32_t> list) : positions(list) {}
    ColumnList(std::initializer_list<std::string> list) : names(list) {}
    ColumnList(const std::vector<std::uint32_t>& list) : positions(list) {}
    ColumnList(const std::vector<std::string>& list) : names(list) {}

    /// One of them is empty.
    std::span<const std::uint32_t> Positions() const { return positions; }
    std::span<const std::string> Names() const { return names; }

private:
    std::span<const std::uint32_t> positions;
    std::span<const std::string> names;
};

} // namespace MERVO::Tessera
