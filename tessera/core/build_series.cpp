#include "tessera/core/raw_texts.h"

#include <new>

#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"
#include "tessera/core/series.h"
#include "tessera/core/typed_series.h"

namespace MERVO::Tessera {
namespace {

using TextArray = Series<std::string, CONTAINER_ARRAY>;
using SeriesCreator = SeriesPtr (*)(const SeriesAttr&);

template <MERVO_TESSERA_TYPEID TYPE_ID, ContainerID CID>
SeriesPtr SeriesCreatorFunc(const SeriesAttr& attr)
try {
    return SeriesPtr(new (std::nothrow) Series<ValueTypes::At<TYPE_ID>, CID>(attr));
} catch (const std::bad_alloc&) { // for a node of a list
    return nullptr;
}

constexpr auto SERIES_CREATORS = ForEachValueType([](auto number) {
    constexpr auto typeId = static_cast<MERVO_TESSERA_TYPEID>(number());
    return std::array<SeriesCreator, CONTAINER_END>{
        &SeriesCreatorFunc<typeId, CONTAINER_ARRAY>, &SeriesCreatorFunc<typeId, CONTAINER_LIST>};
});

} // namespace

SeriesPtr BuildSeries(const SeriesAttr& attr, std::string name)
{
    if (!IsValueType(attr.typeId)) {
        LogError("TypeID should be in range of [TESSERA_TYPE_BEGIN, TESSERA_TYPE_END) ");
        return GetErrorSeries();
    }
    if (!IsContainer(attr.containerId)) {
        LogError("Container Type should be in range of [CONTAINER_BEGIN, CONTAINER_END) ");
        return GetErrorSeries();
    }
    SeriesPtr series =
        SERIES_CREATORS[static_cast<std::size_t>(attr.typeId)][static_cast<std::size_t>(attr.containerId)](attr);
    if (series == nullptr) {
        return GetErrorSeries();
    }
    series->SetName(std::move(name));
    return series;
}

RawTexts BuildRawTexts(std::uint32_t count, std::string name)
{
    const SeriesAttr attr{count, CONTAINER_ARRAY, TESSERA_STRING};
    auto series = std::unique_ptr<TextArray>(new (std::nothrow) TextArray(attr, RawCells{}));
    if (series == nullptr || series->FirstCell() == nullptr) {
        return {};
    }
    series->SetName(std::move(name));
    std::string* const cells = series->FirstCell();
    return {SeriesPtr(series.release()), cells};
}

bool CanForgetTexts(const BaseSeries& column) { return dynamic_cast<const TextArray*>(&column) != nullptr; }

void ForgetTexts(BaseSeries& column) { static_cast<TextArray&>(column).Forget(); }

} // namespace MERVO::Tessera
