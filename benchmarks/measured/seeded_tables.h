#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tessera/tessera.hpp"

/// Tables for measuring, the same on every machine and in every run.
namespace MERVO::Tessera::Bench {

/**
 * Records of nine columns: id1 and id2 are texts of 5 bytes with 100 values; id3 is a text of 12 bytes and id6 an int32
 * with `groups` values each; id4 and id5 are int32 with 100 values; v1 and v2 are small int32, v3 is a double below 100
 * with 6 decimals.
 * @param names the columns to make; all of them without any.
 */
DataFrame MakeRecords(std::uint32_t rows, std::uint32_t groups, const std::vector<std::string>& names = {});

/// All records' columns, but the texts of id3 have 1 to 15 bytes.
DataFrame MakeRecordsOfSizes(std::uint32_t rows, std::uint32_t groups);

/// Columns of doubles below 100, in which every `nanEvery`-th cell or so is NaN; none for 0.
DataFrame MakeNumbers(std::uint32_t rows, std::uint32_t columns, std::uint32_t nanEvery = 0, std::uint64_t seed = 2);

/// What a key of a side is: an int32, one that is far from the next, or a text of 9 bytes.
enum class SideKey : std::uint8_t { NEAR, FAR, TEXT };

/// A key that has each of `rows` values from the first one on, in no order; a double; and the columns of records with
/// so many groups, none for 0.
DataFrame MakeSide(std::uint32_t rows, std::uint32_t firstKey, SideKey form, std::uint32_t recordGroups = 0);

/// Stamps within a week, in no order, and two columns of doubles.
DataFrame MakeTimes(std::uint32_t rows);

/// The numbers below `rows` in no order.
std::vector<std::uint32_t> MakePermutation(std::uint32_t rows);

/// The records as a file of text that is removed at the end.
class RecordsFile {
public:
    RecordsFile(std::uint32_t rows, std::uint32_t groups);
    RecordsFile(const RecordsFile&) = delete;
    RecordsFile& operator=(const RecordsFile&) = delete;
    ~RecordsFile();

    const std::string& Path() const { return path; }
    static const DataFrame::Types& Types();

private:
    std::string path;
};

} // namespace MERVO::Tessera::Bench
