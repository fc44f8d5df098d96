#include "tessera/core/number_texts.h"

#include "tessera/core/wide_number_texts.h"

namespace MERVO::Tessera {
namespace {

char* WriteNumber(char* first, std::int32_t value) { return WriteInteger(first, value); }
char* WriteNumber(char* first, std::uint32_t value) { return WriteInteger(first, value); }
char* WriteNumber(char* first, double value) { return WriteScientific(first, value); }

template <typename T>
void WriteAll(const T* values, std::size_t count, NumberText* texts)
{
    for (std::size_t i = HasWideVectors() ? WriteFours(values, count, texts) : 0; i < count; ++i) {
        char* const first = texts[i].characters.data();
        texts[i].size = static_cast<std::uint8_t>(WriteNumber(first, values[i]) - first);
    }
}

} // namespace

void WriteIntegers(const std::int32_t* values, std::size_t count, NumberText* texts) noexcept
{
    WriteAll(values, count, texts);
}

void WriteIntegers(const std::uint32_t* values, std::size_t count, NumberText* texts) noexcept
{
    WriteAll(values, count, texts);
}

void WriteScientifics(const double* values, std::size_t count, NumberText* texts) noexcept
{
    WriteAll(values, count, texts);
}

void WriteScientifics(const float* values, std::size_t count, NumberText* texts) noexcept
{
    WriteAll(values, count, texts);
}

} // namespace MERVO::Tessera
