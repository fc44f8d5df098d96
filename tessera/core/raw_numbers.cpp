#include "tessera/core/raw_numbers.h"

#include <new>
#include <type_traits>
#include <utility>

#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"
#include "tessera/core/typed_series.h"

namespace MERVO::Tessera {
namespace {

using Adopter = SeriesPtr (*)(const SeriesAttr& attr, Block<std::byte>&& numbers);

template <typename T>
SeriesPtr Adopt(const SeriesAttr& attr, Block<std::byte>&& numbers)
{
    Block<T> cells(reinterpret_cast<T*>(numbers.release()));
    return SeriesPtr(new (std::nothrow) Series<T, CONTAINER_ARRAY>(attr, std::move(cells)));
}

constexpr auto ADOPTERS = ForEachValueType([](auto number) -> Adopter {
    using T = ValueTypes::At<number()>;
    if constexpr (Arithmetic<T> && !std::is_same_v<T, bool>) {
        return &Adopt<T>;
    } else {
        return nullptr;
    }
});

} // namespace

SeriesPtr AdoptNumbers(MERVO_TESSERA_TYPEID type, std::uint32_t count, Block<std::byte> numbers, std::string name)
{
    SeriesPtr column = ADOPTERS[static_cast<std::size_t>(type)]({count, CONTAINER_ARRAY, type}, std::move(numbers));
    if (column != nullptr) {
        column->SetName(std::move(name));
    }
    return column;
}

} // namespace MERVO::Tessera
