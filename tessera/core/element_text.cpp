#include "tessera/core/element_text.h"

#include <array>
#include <charconv>
#include <iostream>

#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"

namespace MERVO::Tessera {
namespace {

constexpr int SHOWN_DIGITS = 6;

template <typename T, typename... Format>
std::string NumberText(T value, Format... format)
{
    std::array<char, 32> text{};
    const auto written = std::to_chars(text.data(), text.data() + text.size(), value, format...);
    return {text.data(), written.ptr};
}

} // namespace

std::string ElementText(std::int64_t value) { return NumberText(value); }

std::string ElementText(std::uint64_t value) { return NumberText(value); }

std::string ElementText(double value) { return NumberText(value, std::chars_format::general, SHOWN_DIGITS); }

std::string ElementText(const std::string& value) { return value; }

std::string ElementText(const DateTime& value) { return value.ToString(); }

std::string ElementText(const DataFrame& value)
{
    return "[" + std::to_string(value.RowCount()) + " x " + std::to_string(value.ColumnCount()) + "]";
}

void PrintText(const std::string& text) { std::cout << text; }

void PrintElement(const std::string& text) { PrintText(text + ", "); }

void EndPrintedLine() { std::cout << std::endl; }

} // namespace MERVO::Tessera
