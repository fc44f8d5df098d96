// Texts become cells as the C library's parsers say, by a cast and by the road of a file's fields; cells become texts
// as its printf says, and come back. Input: a byte that chooses, then lines of text, or the bytes of cells of one type.

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cfenv>
#include <cinttypes>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <limits>
#include <optional>
#include <sstream>

#include "fuzz/support/memory.h"
#include "fuzz/support/require.h"
#include "fuzz/support/tables.h"

namespace MERVO::Tessera::Fuzz {
namespace {

// ---- The C library

std::optional<DateTime> ParsedMoment(const std::string& text)
{
    ::tm fields = {};
    if (!text.empty() &&
        std::sscanf(text.c_str(), "%4d-%2d-%2d %2d:%2d:%2d", &fields.tm_year, &fields.tm_mon, &fields.tm_mday,
            &fields.tm_hour, &fields.tm_min, &fields.tm_sec) == EOF) {
        return std::nullopt;
    }
    fields.tm_year -= 1900;
    fields.tm_mon -= 1;
    fields.tm_isdst = -1;
    const std::time_t seconds = text.empty() ? 0 : std::mktime(&fields);
    return DateTime(seconds == static_cast<std::int32_t>(seconds) ? static_cast<long>(seconds) : -1);
}

/// A number below the smallest normal one is out of range, even one that is rounded up to it: there the C libraries
/// differ, Tessera does not.
std::optional<double> ParsedNumber(const std::string& text)
{
    errno = 0;
    const double value = std::strtod(text.c_str(), nullptr);
    if (errno == ERANGE) {
        return std::nullopt;
    }
    const int rounding = std::fegetround();
    std::fesetround(FE_TOWARDZERO);
    const double truncated = std::strtod(text.c_str(), nullptr);
    std::fesetround(rounding);
    constexpr double SMALLEST = std::numeric_limits<double>::min();
    return std::abs(value) == SMALLEST && std::abs(truncated) < SMALLEST ? std::nullopt : std::optional(value);
}

/// What a text becomes; nothing where it is refused.
template <typename T>
std::optional<T> Parsed(const std::string& text)
{
    errno = 0;
    T value{};
    if constexpr (std::is_same_v<T, std::string>) {
        return text;
    } else if constexpr (std::is_same_v<T, bool>) {
        return !text.empty();
    } else if constexpr (std::is_same_v<T, DateTime>) {
        return ParsedMoment(text);
    } else if constexpr (std::is_floating_point_v<T>) {
        if (text.empty()) {
            return std::numeric_limits<T>::quiet_NaN();
        }
        const std::optional<double> number = ParsedNumber(text);
        return number ? std::optional(static_cast<T>(*number)) : std::nullopt;
    } else if constexpr (std::is_signed_v<T>) {
        value = static_cast<T>(std::strtoll(text.c_str(), nullptr, 10));
    } else {
        value = static_cast<T>(std::strtoull(text.c_str(), nullptr, 10));
    }
    return errno == ERANGE ? std::nullopt : std::optional<T>(value);
}

template <typename T>
std::string Printed(T value)
{
    char text[32] = {};
    if constexpr (std::is_same_v<T, bool>) {
        return value ? "1" : "";
    } else if constexpr (std::is_same_v<T, DateTime>) {
        const std::time_t seconds = value.TimeStamp();
        ::tm fields = {};
        std::strftime(text, sizeof(text), "%Y-%m-%d %H:%M:%S", ::localtime_r(&seconds, &fields));
    } else if constexpr (std::is_floating_point_v<T>) {
        std::snprintf(text, sizeof(text), "%.5e", static_cast<double>(value));
    } else if constexpr (std::is_signed_v<T>) {
        std::snprintf(text, sizeof(text), "%" PRId64, static_cast<std::int64_t>(value));
    } else {
        std::snprintf(text, sizeof(text), "%" PRIu64, static_cast<std::uint64_t>(value));
    }
    return text;
}

template <typename T>
bool IsSame(const T& left, const T& right)
{
    if constexpr (std::is_same_v<T, DateTime>) {
        // Where clocks were put back, an hour comes twice; the C library takes the one that it thought of last.
        return left.ToString() == right.ToString() && std::labs(left.TimeStamp() - right.TimeStamp()) <= 3600;
    } else if constexpr (std::is_floating_point_v<T>) {
        return std::memcmp(&left, &right, sizeof(T)) == 0;
    } else {
        return left == right;
    }
}

// ---- The library

DataFrame Cast(const DataFrameRef& table, MERVO_TESSERA_TYPEID type)
{
    DataFrame result;
    const Func::FunctorFactory<Func::TypeCast, Func::UnaryBase, MERVO_TESSERA_TYPEID> cast{type};
    const ErrorCode code = result.ApplyInplace(cast, table);
    Require(code == result.GetError().code, "a cast's code is stored");
    return result;
}

template <typename T>
DataFrame TableOf(const std::vector<T>& cells)
{
    DataFrame table;
    Require(table.ReadVector(cells, {static_cast<unsigned int>(cells.size()), 1}) == 0, "a vector is read");
    return table;
}

template <typename T>
DataFrame FromFields(const std::vector<std::string>& texts)
{
    DataFrame table;
    const ErrorCode code = table.ReadFormVec(texts, 1, {TYPE_ID_OF<T>}, false);
    Require(code == table.GetError().code, "a reader's code is stored");
    return table;
}

template <typename T>
void RequireCells(const DataFrame& table, const std::vector<T>& wanted, const char* law)
{
    RequireSound(table, true);
    Require(table.GetError().code == ERROR_NONE && table.RowCount() == wanted.size(), law);
    const Cursor cursor = table.GetSlicedIterator(table.GetColumn(0));
    for (std::uint32_t row = 0; row < wanted.size(); ++row) {
        Require(IsSame<T>(GetValueFromIterator<T>(cursor, row), wanted[row]), law);
    }
}

template <typename T>
void CheckTexts(const std::vector<std::string>& texts)
{
    std::vector<std::string> accepted;
    std::vector<T> wanted;
    for (const std::string& text : texts) {
        if (const std::optional<T> value = Parsed<T>(text)) {
            accepted.push_back(text);
            wanted.push_back(*value);
        } else {
            Require(Cast(TableOf<std::string>({text}), TYPE_ID_OF<T>).GetError().code == ERROR_GENERAL,
                "a cast refuses what is out of range");
            Require(FromFields<T>({text}).GetError().code == ERROR_GENERAL, "a field out of range is refused");
        }
    }
    if (!accepted.empty()) {
        RequireCells(Cast(TableOf(accepted), TYPE_ID_OF<T>), wanted, "a text is cast as the C library parses it");
        RequireCells(FromFields<T>(accepted), wanted, "a field is read as the C library parses it");
    }
}

template <typename T>
void CheckCells(const std::uint8_t* data, std::size_t size)
{
    using Raw = std::conditional_t<std::is_same_v<T, bool>, std::uint8_t,
        std::conditional_t<std::is_same_v<T, DateTime>, std::int32_t, T>>;
    std::vector<T> cells;
    std::vector<std::string> texts;
    for (; size >= sizeof(Raw); data += sizeof(Raw), size -= sizeof(Raw)) {
        Raw raw;
        std::memcpy(&raw, data, sizeof(Raw));
        cells.push_back(static_cast<T>(raw));
        texts.push_back(Printed<T>(cells.back()));
    }
    if (cells.empty()) {
        return;
    }
    const DataFrame table = TableOf(cells);
    RequireCells(Cast(table, TESSERA_STRING), texts, "a cell is cast to what the C library prints");
    CheckTexts<T>(texts);
    if constexpr (!std::is_floating_point_v<T>) { // the others lose digits
        RequireCells(
            Cast(Cast(table, TESSERA_STRING), TYPE_ID_OF<T>), cells, "a cell survives the way to text and back");
    }
}

constexpr std::size_t TYPES_OF_TEXT = TESSERA_DATETIME + 1;

void CheckTextsAsAll(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    [&]<std::size_t... I>(std::index_sequence<I...>) { (CheckTexts<ValueTypes::At<I>>(lines), ...); }
    (std::make_index_sequence<TYPES_OF_TEXT>{});
}

template <std::size_t I>
void CheckCellsAs(std::size_t type, const std::uint8_t* data, std::size_t size)
{
    using T = ValueTypes::At<I>;
    if constexpr (!std::is_same_v<T, std::string>) {
        if (type == I) {
            CheckCells<T>(data, size);
        }
    }
}

} // namespace
} // namespace MERVO::Tessera::Fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace MERVO::Tessera;
    static const int isZoneSet = ::setenv("TZ", "EST5EDT,M3.2.0,M11.1.0", 1);
    Fuzz::Require(isZoneSet == 0, "a time zone is set");
    const Fuzz::MemoryBudget budget;
    if (size == 0) {
        return 0;
    }
    const std::size_t choice = *data % 32;
    if (choice >= Fuzz::TYPES_OF_TEXT) {
        Fuzz::CheckTextsAsAll({reinterpret_cast<const char*>(data + 1), size - 1});
    } else {
        [&]<std::size_t... I>(std::index_sequence<I...>) { (Fuzz::CheckCellsAs<I>(choice, data + 1, size - 1), ...); }
        (std::make_index_sequence<Fuzz::TYPES_OF_TEXT>{});
    }
    return 0;
}
